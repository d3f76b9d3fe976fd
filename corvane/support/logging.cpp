#include "corvane/support/logging.hpp"

#include <spdlog/sinks/dist_sink.h>
#include <spdlog/sinks/stdout_color_sinks.h>
#include <spdlog/spdlog.h>

#include <map>
#include <mutex>
#include <string>

namespace corvane {
namespace {

// Every Corvane logger writes to one distributing sink, so that replacing the host's sinks
// reaches loggers that classes already hold, without touching a logger's own sink list.
struct LoggingState {
  std::mutex mutex;
  std::shared_ptr<spdlog::sinks::dist_sink_mt> distributor = [] {
    auto sink = std::make_shared<spdlog::sinks::dist_sink_mt>();
    sink->add_sink(std::make_shared<spdlog::sinks::stderr_color_sink_mt>());
    return sink;
  }();
  spdlog::level::level_enum level = spdlog::level::info;
  std::map<std::string, std::shared_ptr<spdlog::logger>, std::less<>> loggers;
};

LoggingState& state() {
  static LoggingState instance;
  return instance;
}

}  // namespace

std::shared_ptr<spdlog::logger> logger(std::string_view category) {
  auto& s = state();
  std::lock_guard lock(s.mutex);
  std::string name = std::string(kLogSubsystem) + "." + std::string(category);
  if (auto found = s.loggers.find(name); found != s.loggers.end()) return found->second;
  auto created = std::make_shared<spdlog::logger>(name, s.distributor);
  created->set_level(s.level);
  created->flush_on(spdlog::level::err);
  s.loggers.emplace(name, created);
  return created;
}

void setLogSinks(std::vector<std::shared_ptr<spdlog::sinks::sink>> sinks) {
  auto& s = state();
  std::lock_guard lock(s.mutex);
  s.distributor->set_sinks(std::move(sinks));
}

std::vector<std::shared_ptr<spdlog::sinks::sink>> logSinks() {
  auto& s = state();
  std::lock_guard lock(s.mutex);
  return s.distributor->sinks();
}

void setLogLevel(spdlog::level::level_enum level) {
  auto& s = state();
  std::lock_guard lock(s.mutex);
  s.level = level;
  for (auto& [name, existing] : s.loggers) existing->set_level(level);
}

}  // namespace corvane
