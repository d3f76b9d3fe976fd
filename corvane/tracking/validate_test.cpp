#include "corvane/tracking/validate.hpp"

#include <gtest/gtest.h>

#include <string>

namespace corvane {
namespace {

ValidationResult nonEmpty(const std::string& value) {
  return value.empty() ? ValidationResult::failure(ValidationSeverity::error, "empty") : ValidationResult::valid();
}

TEST(Validate, AnUntouchedWrapperShowsValidWhateverItsRules) {
  Validate<std::string> field("", {nonEmpty});
  EXPECT_EQ(field.projectedValue(), ValidationResult::valid());
  EXPECT_EQ(field.validate().message, "empty") << "the rules themselves do fail";
  EXPECT_FALSE(field.isDirty());
}

TEST(Validate, DirtinessIsOneWay) {
  Validate<std::string> field("", {nonEmpty});
  field.setWrappedValue("");
  EXPECT_FALSE(field.isDirty()) << "the initial value again is no edit";
  field.setWrappedValue("x");
  field.setWrappedValue("");
  EXPECT_TRUE(field.isDirty());
  EXPECT_EQ(field.projectedValue().message, "empty");
  EXPECT_EQ(field.initialValue(), "");
}

TEST(Validate, TheLastRuleDecides) {
  Validate<std::string> field("a", {nonEmpty, [](const std::string&) { return ValidationResult::info("second"); }});
  field.mutateWrappedValue([](std::string& value) { value.clear(); });
  EXPECT_TRUE(field.isDirty());
  EXPECT_EQ(field.projectedValue(), ValidationResult::info("second"));
  Validate<int> bare(1);
  bare.setWrappedValue(2);
  EXPECT_EQ(bare.projectedValue(), ValidationResult::valid());
}

}  // namespace
}  // namespace corvane
