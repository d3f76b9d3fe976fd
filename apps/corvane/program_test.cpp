// The corvane program itself, as a CI script runs it: what reaches the exit status when
// standard output goes nowhere.
#include "cli.hpp"

#include "cli_test_support.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace corvane::cli {
namespace {

struct Outcome {
  int status;  // the exit status, or 128 + the signal that ended the program, as a shell says
  std::string err;
};

// Runs the program with `arguments` and standard output on `out`, as a shell would: with
// SIGPIPE at its default, whatever this test process does with it.
Outcome runProgram(std::vector<std::string> arguments, int out) {
  std::string name = "corvane";
  std::vector<char*> argv = {name.data()};
  for (auto& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  int errPipe[2];
  if (::pipe(errPipe) != 0) throw std::runtime_error("pipe");
  const pid_t child = ::fork();
  if (child == 0) {
    std::signal(SIGPIPE, SIG_DFL);
    ::dup2(out, STDOUT_FILENO);
    ::dup2(errPipe[1], STDERR_FILENO);
    ::close(errPipe[0]);
    ::execv(CORVANE_PROGRAM, argv.data());
    ::_exit(127);
  }
  ::close(errPipe[1]);
  Outcome outcome{-1, {}};
  char buffer[4096];
  for (ssize_t n; (n = ::read(errPipe[0], buffer, sizeof buffer)) > 0;)
    outcome.err.append(buffer, static_cast<std::size_t>(n));
  ::close(errPipe[0]);
  int status = 0;
  ::waitpid(child, &status, 0);
  outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return outcome;
}

TEST(ProgramTest, AReportThatCannotBeWrittenIsStatus2WithAMessage) {
  for (const std::string target : {"a pipe nobody reads", "a full disk"}) {
    SCOPED_TRACE(target);
    int out = -1;
    int ends[2] = {-1, -1};
    if (target == "a full disk") {
      out = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
      if (out < 0) GTEST_SKIP() << "no /dev/full";
    } else {
      ASSERT_EQ(::pipe(ends), 0);
      ::close(ends[0]);  // what `| head -1` leaves once it has its line
      out = ends[1];
    }
    const auto outcome = runProgram({"check", testing::sourceSample().string()}, out);
    ::close(out);
    EXPECT_EQ(outcome.status, exitUsageOrInput);
    EXPECT_EQ(outcome.err, "corvane: cannot write the report to standard output\n");
  }
}

}  // namespace
}  // namespace corvane::cli
