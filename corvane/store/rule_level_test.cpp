#include "corvane/store/rule_level.hpp"

#include <gtest/gtest.h>

namespace corvane::store {
namespace {

TEST(RuleLevelTest, NamesReadBackAndNothingElseParses) {
  for (const auto level : kRuleLevels) EXPECT_EQ(parseRuleLevel(levelName(level)), level);
  for (const auto* other : {"", "Blocker", "rejectionRisk", "rejection_risk", "off", "error", "blocker "}) {
    EXPECT_EQ(parseRuleLevel(other), std::nullopt) << other;
  }
}

}  // namespace
}  // namespace corvane::store
