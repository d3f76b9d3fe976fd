// The corvane command-line checker; the work happens in corvane_cli_core.
#include "cli.hpp"

#include "corvane/support/logging.hpp"

#include <spdlog/common.h>

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
  const int status = corvane::cli::runCli(arguments, std::cout, std::cerr, terminal);
  std::cout.flush();
  if (std::cout) return status;
  // A full disk or a closed pipe: the report is lost, so the run cannot count as passed.
  std::cerr << "corvane: cannot write the report to standard output\n";
  return corvane::cli::exitUsageOrInput;
}
