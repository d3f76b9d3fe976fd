#include "corvane/support/uuid.hpp"

#include <gtest/gtest.h>

#include <regex>
#include <set>

namespace corvane {
namespace {

TEST(Uuid, CanonicalVersionFourTextInEitherCase) {
  const std::regex lower("^[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}$");
  const std::regex upper("^[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}$");
  std::set<std::string> seen;
  for (int i = 0; i < 100; ++i) {
    const auto a = newUuidString();
    const auto b = newUppercaseUuidString();
    EXPECT_TRUE(std::regex_match(a, lower)) << a;
    EXPECT_TRUE(std::regex_match(b, upper)) << b;
    seen.insert(a);
    seen.insert(b);
  }
  EXPECT_EQ(seen.size(), 200u);
}

}  // namespace
}  // namespace corvane
