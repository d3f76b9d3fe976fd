#include "corvane/support/describe.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <stdexcept>

namespace corvane {
namespace {

TEST(Describe, RendersScalarsAsTheirPlainText) {
  EXPECT_EQ(describe(std::string("Foo Bar")), "Foo Bar");
  EXPECT_EQ(describe("quoted \"as is\""), "quoted \"as is\"");
  EXPECT_EQ(describe(std::string_view("")), "");
  EXPECT_EQ(describe(true), "true");
  EXPECT_EQ(describe(false), "false");
  EXPECT_EQ(describe(0), "0");
  EXPECT_EQ(describe(-17), "-17");
  EXPECT_EQ(describe(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
  EXPECT_EQ(describe(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
  EXPECT_EQ(describe(1234567), "1234567") << "no digit grouping";
}

TEST(Describe, DoublesKeepAFractionAndRoundTrip) {
  EXPECT_EQ(describe(0.5), "0.5");
  EXPECT_EQ(describe(0.0), "0.0");
  EXPECT_EQ(describe(1.0), "1.0");
  EXPECT_EQ(describe(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(describe(2.0f / 3.0f), "0.6666666865348816") << "a float renders as the double it widens to";
  EXPECT_EQ(describe(1e16), "1e+16");
  EXPECT_EQ(describe(1e-5), "1e-05");
  EXPECT_EQ(describe(std::numeric_limits<double>::quiet_NaN()), "nan");
  EXPECT_EQ(describe(-std::numeric_limits<double>::infinity()), "-inf");
}

TEST(Describe, ListsQuoteAndEscapeTheirStrings) {
  EXPECT_EQ(describe(std::vector<std::string>{"a", "b"}), R"(["a", "b"])");
  EXPECT_EQ(describe(std::vector<std::string>{}), "[]");
  EXPECT_EQ(describe(std::vector<std::string>{"say \"hi\"", "back\\slash", "line\nbreak"}),
            R"(["say \"hi\"", "back\\slash", "line\nbreak"])");
  EXPECT_EQ(describe(std::vector<int>{1, 2, 3}), "[1, 2, 3]");
  EXPECT_EQ(describe(std::vector<std::vector<int>>{{1}, {}}), "[[1], []]");
}

TEST(Describe, OptionalsRenderTheirValueOrNil) {
  EXPECT_EQ(describe(std::optional<int>{}), "nil");
  EXPECT_EQ(describe(std::optional<std::string>{"x"}), "x");
}

}  // namespace

namespace custom {
struct Point {
  int x;
  int y;
};
std::string describe(const Point& point) {
  return "(" + corvane::describe(point.x) + ", " + corvane::describe(point.y) + ")";
}
}  // namespace custom

namespace {

TEST(Describe, TypesOfOtherNamespacesTakePartThroughTheirOwnOverload) {
  static_assert(Describable<custom::Point>);
  EXPECT_EQ(describe(std::vector<custom::Point>{{1, 2}, {3, 4}}), "[(1, 2), (3, 4)]");
}

TEST(ErrorDescription, UsesWhatOfStandardExceptionsOnly) {
  EXPECT_EQ(errorDescription(std::make_exception_ptr(std::runtime_error("disk full"))), "disk full");
  EXPECT_EQ(errorDescription(std::make_exception_ptr(42)), "unknown error");
  EXPECT_EQ(errorDescription(nullptr), "unknown error");
}

}  // namespace
}  // namespace corvane
