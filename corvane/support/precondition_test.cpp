#include "corvane/support/precondition.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace corvane {
namespace {

using Limits = std::numeric_limits<std::int64_t>;

TEST(CheckedArithmetic, ReturnsExactResultsInRange) {
  EXPECT_EQ(checkedAdd<std::int64_t>(Limits::max() - 1, 1), Limits::max());
  EXPECT_EQ(checkedSubtract<std::int64_t>(Limits::min() + 1, 1), Limits::min());
  EXPECT_EQ(checkedMultiply<std::int64_t>(Limits::max() / 2, 2), Limits::max() - 1);
  EXPECT_EQ(checkedSubtract<std::int64_t>(3, 10), -7);
  EXPECT_EQ(checkedAdd<std::size_t>(1, 2), 3u);
}

using CheckedArithmeticDeathTest = ::testing::Test;

TEST_F(CheckedArithmeticDeathTest, OverflowIsAPreconditionFailure) {
  EXPECT_DEATH((void)checkedAdd<std::int64_t>(Limits::max(), 1), "precondition failed: integer overflow in addition");
  EXPECT_DEATH((void)checkedSubtract<std::int64_t>(Limits::min(), 1), "integer overflow in subtraction");
  EXPECT_DEATH((void)checkedMultiply<std::int64_t>(Limits::max() / 2 + 1, 2), "integer overflow in multiplication");
  EXPECT_DEATH((void)checkedSubtract<std::size_t>(0, 1), "integer overflow in subtraction");
}

TEST_F(CheckedArithmeticDeathTest, PreconditionMacroAbortsWithItsMessageAndLocation) {
  EXPECT_DEATH(CORVANE_PRECONDITION(1 + 1 == 3, "arithmetic is broken"),
               "precondition failed: arithmetic is broken \\(.*precondition_test.cpp:[0-9]+\\)");
  CORVANE_PRECONDITION(1 + 1 == 2, "never shown");  // a holding condition does nothing
}

}  // namespace
}  // namespace corvane
