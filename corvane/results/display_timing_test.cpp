#include "corvane/results/display_timing.hpp"
#include "corvane/results/display_behavior.hpp"

#include <gtest/gtest.h>

namespace corvane {
namespace {

// Both timing types have the same cases and must behave alike.
template <class Timing>
class DisplayTimingTest : public ::testing::Test {};

using TimingTypes = ::testing::Types<DisplayTiming, DisplayBehavior::DisplayTiming>;
TYPED_TEST_SUITE(DisplayTimingTest, TimingTypes);

TYPED_TEST(DisplayTimingTest, EachFactoryAnswersOnlyItsOwnQuery) {
  using T = TypeParam;
  const std::vector<T> timings{T::delayed(3.0), T::immediate(), T::onInteraction(), T::onBlur(), T::onFocus()};
  for (std::size_t i = 0; i < timings.size(); ++i) {
    const T& t = timings[i];
    const std::vector<bool> answers{t.isDelayed(), t.isImmediate(), t.isOnInteraction(), t.isOnBlur(), t.isOnFocus()};
    for (std::size_t j = 0; j < answers.size(); ++j) {
      EXPECT_EQ(answers[j], i == j) << describe(t) << " query " << j;
    }
  }
  ASSERT_NE(T::delayed(2.5).template getIf<typename T::Delayed>(), nullptr);
  EXPECT_EQ(T::delayed(2.5).template getIf<typename T::Delayed>()->seconds, 2.5);
  EXPECT_EQ(T::immediate().template getIf<typename T::Delayed>(), nullptr);
}

TYPED_TEST(DisplayTimingTest, EqualityComparesCaseAndDelay) {
  using T = TypeParam;
  EXPECT_EQ(T::delayed(3.0), T::delayed(3.0));
  EXPECT_NE(T::delayed(3.0), T::delayed(3.5));
  EXPECT_EQ(T::onBlur(), T::onBlur());
  EXPECT_NE(T::onBlur(), T::onFocus());
  EXPECT_NE(T::immediate(), T::delayed(0.0));
}

TYPED_TEST(DisplayTimingTest, DescribesCase) {
  using T = TypeParam;
  EXPECT_EQ(describe(T::delayed(3.0)), "delayed(seconds: 3.0)");
  EXPECT_EQ(describe(T::delayed(0.25)), "delayed(seconds: 0.25)");
  EXPECT_EQ(describe(T::immediate()), "immediate");
  EXPECT_EQ(describe(T::onInteraction()), "onInteraction");
  EXPECT_EQ(describe(T::onBlur()), "onBlur");
  EXPECT_EQ(describe(T::onFocus()), "onFocus");
}

TEST(DisplayBehavior, EqualityComparesTimingPriorityAndStyle) {
  using Timing = DisplayBehavior::DisplayTiming;
  using Style = DisplayBehavior::DisplayStyle;
  const DisplayBehavior base{.timing = Timing::delayed(3.0), .priority = 300, .style = Style::suggestion};
  EXPECT_EQ(base, (DisplayBehavior{.timing = Timing::delayed(3.0), .priority = 300, .style = Style::suggestion}));
  EXPECT_NE(base, (DisplayBehavior{.timing = Timing::delayed(2.0), .priority = 300, .style = Style::suggestion}));
  EXPECT_NE(base, (DisplayBehavior{.timing = Timing::onBlur(), .priority = 300, .style = Style::suggestion}));
  EXPECT_NE(base, (DisplayBehavior{.timing = Timing::delayed(3.0), .priority = 301, .style = Style::suggestion}));
  EXPECT_NE(base, (DisplayBehavior{.timing = Timing::delayed(3.0), .priority = 300, .style = Style::info}));
  EXPECT_NE(base, (DisplayBehavior{.timing = Timing::delayed(3.0), .priority = 300, .style = std::nullopt}));
}

}  // namespace
}  // namespace corvane
