#include "corvane/results/validation_result.hpp"

#include "corvane/testing/captured_lines.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace corvane {
namespace {

using Severity = ValidationSeverity;
using ActionType = ActionGuidance::Action::ActionType;

// A valid info verdict that is not an opportunity: its impact says otherwise.
ValidationResult plainInfo(std::string message) {
  return ValidationResult(true, Severity::info, std::move(message), std::nullopt, std::nullopt,
                          BusinessImpact::suboptimal("listing"), std::nullopt, std::nullopt);
}

ValidationResult localizationOpportunity() {
  return ValidationResult::opportunity("Localize", "More downloads",
                                       {"Add language", "Translate", ActionType::manual({"Pick"})});
}

ValidationResult validWarning(std::string message) {
  return ValidationResult(true, Severity::warning, std::move(message));
}

class CombineTest : public ::testing::Test {
 protected:
  testing::CapturedLines printed;
};

// --- invalid results: highest display priority, earliest on ties -------------------------

TEST_F(CombineTest, EqualDisplayPrioritiesKeepTheFirst) {
  const auto first = ValidationResult::failure(Severity::error, "first");
  const auto second = ValidationResult::failure(Severity::error, "second");
  EXPECT_EQ(ValidationResult::combine({first, second}).message, "first");
  EXPECT_EQ(ValidationResult::combine({second, first}).message, "second");

  // A later candidate must be strictly greater to take over.
  const auto low = ValidationResult::failure(Severity::warning, "low");
  const auto highA = ValidationResult::failure(Severity::critical, "high A");
  const auto highB = ValidationResult::failure(Severity::critical, "high B");
  EXPECT_EQ(ValidationResult::combine({low, highA, highB}).message, "high A");
}

TEST_F(CombineTest, ExplicitDisplayPriorityCompetesWithSeverityDefaults) {
  const auto tooLongError = ValidationResult::tooLong("Name", 30, 40, [] {});                  // error, 700
  const auto tooLongCritical = ValidationResult::tooLong("Name", 30, 90, [] {});               // critical, 900
  const auto plainError = ValidationResult::failure(Severity::error, "plain error");           // 800
  const auto plainCritical = ValidationResult::failure(Severity::critical, "plain critical");  // 1000
  const auto required = ValidationResult::required("Name");                                    // critical, 1000
  const auto badFormat = ValidationResult::invalidFormat("Email", "a@b.c");                    // error, 950

  EXPECT_EQ(ValidationResult::combine({tooLongError, plainError}), plainError);
  EXPECT_EQ(ValidationResult::combine({plainError, tooLongError}), plainError);
  EXPECT_EQ(ValidationResult::combine({tooLongCritical, required}), required);
  EXPECT_EQ(ValidationResult::combine({tooLongCritical, plainCritical}), plainCritical);
  EXPECT_EQ(ValidationResult::combine({required, plainCritical}), required);
  EXPECT_EQ(ValidationResult::combine({plainCritical, required}), plainCritical);
  // An error with a high explicit priority outranks a critical one with a lower priority.
  EXPECT_EQ(ValidationResult::combine({tooLongCritical, badFormat}), badFormat);
}

TEST_F(CombineTest, AnyInvalidResultBeatsEveryValidOne) {
  const auto lowInvalid = ValidationResult::failure(Severity::none, "barely invalid");  // 0
  const auto winner =
      ValidationResult::combine({ValidationResult::validRequired("Name"), localizationOpportunity(), validWarning("w"),
                                 lowInvalid, ValidationResult(true, Severity::critical, "valid critical")});
  EXPECT_EQ(winner, lowInvalid);
  EXPECT_TRUE(printed.lines().empty());
}

// --- valid results: opportunity, then warning, then info, then none ----------------------

TEST_F(CombineTest, OpportunityBeatsWarningEvenWhenSecond) {
  const auto warning = ValidationResult::missingOptional("Subtitle", "Be found", {});
  const auto opportunity = localizationOpportunity();
  EXPECT_EQ(ValidationResult::combine({warning, opportunity}), opportunity);
  // Plain info verdicts count as opportunities too.
  EXPECT_EQ(ValidationResult::combine({warning, ValidationResult::info("Tip")}).message, "Tip");
  EXPECT_EQ(ValidationResult::combine({validWarning("w"), ValidationResult::info()}), ValidationResult::info());
}

TEST_F(CombineTest, WarningBeatsInfoAndInfoBeatsNone) {
  EXPECT_EQ(ValidationResult::combine({plainInfo("info"), validWarning("warning")}).message, "warning");
  EXPECT_EQ(ValidationResult::combine({ValidationResult::validRequired("Name"), plainInfo("info")}).message, "info");
  EXPECT_TRUE(printed.lines().empty());
}

TEST_F(CombineTest, FirstWinsWithinEachClass) {
  const auto firstOpportunity = ValidationResult::info("first tip");
  EXPECT_EQ(ValidationResult::combine({validWarning("w"), firstOpportunity, localizationOpportunity()}),
            firstOpportunity);
  EXPECT_EQ(ValidationResult::combine({plainInfo("i"), validWarning("w1"), validWarning("w2")}).message, "w1");
  EXPECT_EQ(ValidationResult::combine({plainInfo("i1"), plainInfo("i2")}).message, "i1");
  EXPECT_EQ(ValidationResult::combine({ValidationResult::validRequired("A"), ValidationResult::validRequired("B")}),
            ValidationResult::validRequired("A"));
}

TEST_F(CombineTest, PlainValidResultIsReturnedAndAnnounced) {
  const auto required = ValidationResult::validRequired("Name");
  EXPECT_EQ(ValidationResult::combine({required}), required);
  EXPECT_EQ(printed.lines(), std::vector<std::string>{
                                 "Returning validRequired result: Name is valid \xE2\x80\xA2 Required for App Store "
                                 "submission"});

  // Valid error or critical results rank below it.
  printed.clear();
  EXPECT_EQ(ValidationResult::combine(
                {ValidationResult(true, Severity::error, "valid error"), ValidationResult::validRequired("Title")}),
            ValidationResult::validRequired("Title"));
  EXPECT_EQ(printed.lines(), std::vector<std::string>{"Returning validRequired result: Title is valid \xE2\x80\xA2 "
                                                      "Required for App Store submission"});
}

TEST_F(CombineTest, OnlyValidErrorsOrCriticalsYieldTheValidConstant) {
  const auto combined = ValidationResult::combine(
      {ValidationResult(true, Severity::error, "valid error"), ValidationResult(true, Severity::critical, "c")});
  EXPECT_EQ(combined, ValidationResult::valid());
  EXPECT_TRUE(printed.lines().empty());
}

TEST_F(CombineTest, EmptyListYieldsTheValidConstant) {
  EXPECT_EQ(ValidationResult::combine({}), ValidationResult::valid());
  EXPECT_EQ(ValidationResult::combine(std::vector<ValidationResult>{}), ValidationResult::valid());
  EXPECT_EQ(ValidationResult::combine({}).message, "");
  EXPECT_TRUE(printed.lines().empty());
}

TEST_F(CombineTest, SpanAndListFormsAgree) {
  const std::vector<ValidationResult> results{validWarning("w"), plainInfo("i"), ValidationResult::required("Name"),
                                              ValidationResult::tooLong("Name", 10, 30, [] {})};
  EXPECT_EQ(ValidationResult::combine(results), ValidationResult::required("Name"));
  EXPECT_EQ(ValidationResult::combine({results[0], results[1], results[2], results[3]}),
            ValidationResult::combine(results));
}

}  // namespace
}  // namespace corvane
