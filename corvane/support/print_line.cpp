#include "corvane/support/print_line.hpp"

#include <cstdio>
#include <mutex>
#include <utility>

namespace corvane {
namespace {

struct LineOutputState {
  std::mutex mutex;
  LineOutput output;
};

LineOutputState& state() {
  static LineOutputState instance;
  return instance;
}

}  // namespace

void printLine(std::string_view line) {
  auto& s = state();
  std::lock_guard lock(s.mutex);
  if (s.output) {
    s.output(line);
    return;
  }
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
}

LineOutput setLineOutput(LineOutput output) {
  auto& s = state();
  std::lock_guard lock(s.mutex);
  return std::exchange(s.output, std::move(output));
}

}  // namespace corvane
