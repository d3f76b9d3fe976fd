#include "corvane/support/print_line.hpp"

#include "corvane/testing/captured_lines.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace corvane {
namespace {

TEST(PrintLine, WritesToStandardOutputByDefault) {
  ::testing::internal::CaptureStdout();
  printLine("🔧 first");
  printLine("");
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "🔧 first\n\n");
}

TEST(PrintLine, AReplacedOutputReceivesLinesAndIsRestored) {
  std::vector<std::string> outer;
  LineOutput previous = setLineOutput([&](std::string_view line) { outer.emplace_back(line); });
  {
    testing::CapturedLines inner;
    printLine("inner");
    EXPECT_EQ(inner.lines(), std::vector<std::string>{"inner"});
  }
  printLine("outer");
  setLineOutput(std::move(previous));
  EXPECT_EQ(outer, std::vector<std::string>{"outer"});
}

}  // namespace
}  // namespace corvane
