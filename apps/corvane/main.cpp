// The corvane command-line checker; the work happens in corvane_cli_core.
#include "cli.hpp"

#include "corvane/support/logging.hpp"

#include <spdlog/common.h>

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include <unistd.h>

int main(int argc, char** argv) {
  // The completion guide logs its steps; on a command line only warnings matter.
  corvane::setLogLevel(spdlog::level::warn);
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  const char* noColor = std::getenv("NO_COLOR");
  const corvane::cli::Terminal terminal{.isTerminal = ::isatty(STDOUT_FILENO) == 1,
                                        .noColor = noColor != nullptr && *noColor != '\0'};
  // A reader that goes away early (`corvane check | head`) must not end the program
  // before it can say so: writes then fail with EPIPE, which runCli reports with status 2.
  std::signal(SIGPIPE, SIG_IGN);
  return corvane::cli::runCli(arguments, std::cout, std::cerr, terminal);
}
