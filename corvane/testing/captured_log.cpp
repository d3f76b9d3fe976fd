#include "corvane/testing/captured_log.hpp"

#include "corvane/support/logging.hpp"

#include <spdlog/sinks/base_sink.h>

#include <mutex>

namespace corvane::testing {

class CapturedLog::Sink final : public spdlog::sinks::base_sink<std::mutex> {
 public:
  std::vector<LogEntry> entries() {
    std::lock_guard lock(mutex_);
    return entries_;
  }

 protected:
  void sink_it_(const spdlog::details::log_msg& message) override {
    entries_.push_back(LogEntry{std::string(message.logger_name.begin(), message.logger_name.end()), message.level,
                                std::string(message.payload.begin(), message.payload.end())});
  }
  void flush_() override {}

 private:
  std::vector<LogEntry> entries_;
};

CapturedLog::CapturedLog() : sink_(std::make_shared<Sink>()), previous_(logSinks()) {
  setLogSinks({sink_});
  setLogLevel(spdlog::level::debug);
}

CapturedLog::~CapturedLog() {
  setLogSinks(previous_);
  setLogLevel(spdlog::level::info);
}

void PrintTo(const LogEntry& entry, std::ostream* out) {
  const auto level = spdlog::level::to_string_view(entry.level);
  *out << entry.logger << " [" << std::string_view(level.data(), level.size()) << "] " << entry.message;
}

std::vector<LogEntry> CapturedLog::entries() const {
  return sink_->entries();
}

std::vector<std::string> CapturedLog::messages(const std::string& loggerName) const {
  std::vector<std::string> result;
  for (auto& entry : entries()) {
    if (entry.logger == loggerName) result.push_back(entry.message);
  }
  return result;
}

}  // namespace corvane::testing
