#include "corvane/store/closest_match.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace corvane::store {
namespace {

using ::testing::Optional;

TEST(EditDistanceTest, CountsEditsIgnoringCaseWithSwapsAsOne) {
  struct Case {
    const char* a;
    const char* b;
    std::size_t distance;
  };
  const std::vector<Case> cases = {
      {"", "", 0},
      {"", "abc", 3},
      {"abc", "", 3},
      {"length", "lenght", 1},
      {"de-de", "de-DE", 0},
      {"en_GB", "en-GB", 0},
      {"en-SU", "en-US", 1},
      {"ca", "abc", 3},
      {"kitten", "sitting", 3},
      {"en-US-x1", "en-US", 3},
      {"ab", "ba", 1},
      {"abc", "acb", 1},
  };
  for (const auto& [a, b, distance] : cases) {
    EXPECT_EQ(editDistance(a, b), distance) << a << " / " << b;
    EXPECT_EQ(editDistance(b, a), distance) << "the distance is symmetric: " << b << " / " << a;
  }
}

TEST(ClosestMatchTest, SuggestsTheNearestCandidateWithinTheLimit) {
  const std::vector<std::string> locales = {"en-AU", "en-GB", "en-US", "de-DE"};
  EXPECT_THAT(closestMatch("en_us", locales, 2), Optional(std::string("en-US")));
  EXPECT_THAT(closestMatch("en-UK", locales, 2), Optional(std::string("en-US")));
  EXPECT_THAT(closestMatch("en-XX", locales, 2), Optional(std::string("en-AU"))) << "a tie goes to the first";
  EXPECT_EQ(closestMatch("fr-FR", locales, 2), std::nullopt);
  EXPECT_EQ(closestMatch("en-US", {}, 2), std::nullopt);
}

}  // namespace
}  // namespace corvane::store
