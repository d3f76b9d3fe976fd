#pragma once

#include <spdlog/common.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace spdlog::sinks {
class sink;
}

namespace corvane::testing {

/// One entry written to a Corvane logger.
struct LogEntry {
  std::string logger;
  spdlog::level::level_enum level;
  std::string message;
  friend bool operator==(const LogEntry&, const LogEntry&) = default;
};

/// "<logger> [<level>] <message>", so that failed comparisons read well.
void PrintTo(const LogEntry& entry, std::ostream* out);

/// Routes every Corvane logger to an in-memory sink at debug level while it lives, then
/// restores the previous sinks and level (info).
class CapturedLog {
 public:
  CapturedLog();
  ~CapturedLog();
  CapturedLog(const CapturedLog&) = delete;
  CapturedLog& operator=(const CapturedLog&) = delete;

  /// The entries written so far, in order.
  std::vector<LogEntry> entries() const;
  /// The messages of the entries written to `loggerName`, in order.
  std::vector<std::string> messages(const std::string& loggerName) const;

 private:
  class Sink;
  std::shared_ptr<Sink> sink_;
  std::vector<std::shared_ptr<spdlog::sinks::sink>> previous_;
};

}  // namespace corvane::testing
