#pragma once

#include <memory>
#include <string_view>
#include <vector>

namespace spdlog {
class logger;
namespace sinks {
class sink;
}
namespace level {
enum level_enum : int;
}
}  // namespace spdlog

namespace corvane {

/// The subsystem part of every logger name.
inline constexpr std::string_view kLogSubsystem = "Corvane";

/// The logger named "Corvane.<category>", created on first use. Every Corvane logger writes
/// to the library's sink list (one standard-error sink by default) at the library's level
/// (info by default). Messages are passed as arguments, never as format strings.
std::shared_ptr<spdlog::logger> logger(std::string_view category);

/// Replaces the sinks of every Corvane logger, existing and future. A host routes the
/// library's entries to a file or the system journal this way. Safe while other threads log.
void setLogSinks(std::vector<std::shared_ptr<spdlog::sinks::sink>> sinks);

/// The sinks that Corvane loggers currently write to.
std::vector<std::shared_ptr<spdlog::sinks::sink>> logSinks();

/// Sets the level of every Corvane logger, existing and future.
void setLogLevel(spdlog::level::level_enum level);

}  // namespace corvane
