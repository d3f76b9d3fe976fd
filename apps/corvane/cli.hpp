#pragma once

#include <filesystem>
#include <ostream>
#include <span>
#include <string>

namespace corvane::cli {

/// Exit statuses of the `corvane` program.
enum ExitStatus : int {
  /// Nothing blocks submission (also --help and --version).
  exitReady = 0,
  /// Something blocks submission.
  exitBlocked = 1,
  /// A usage error or bad input (nothing was written), a failed write (every file put
  /// back), or a report that could not be written.
  exitUsageOrInput = 2,
};

/// What the program learns from its surroundings, passed in so tests can choose.
struct Terminal {
  /// Whether standard output is a terminal.
  bool isTerminal = false;
  /// Whether NO_COLOR is set to a non-empty value.
  bool noColor = false;
};

/// Runs the `corvane` command line `arguments` (without the program name), writing the
/// report to `out` and errors to `err`, and returns the exit status. Colour is used only
/// on a terminal without NO_COLOR and never in JSON. When `out` fails (a full disk, a
/// closed pipe; with SIGPIPE ignored) the status is `exitUsageOrInput` and `err` says
/// so, and whether fixes were written all the same.
int runCli(std::span<const std::string> arguments, std::ostream& out, std::ostream& err, Terminal terminal);

/// The usage text printed by --help.
std::string usageText();

}  // namespace corvane::cli
