#include "corvane/submission/aggregate_validator.hpp"

#include "corvane/observation/observation_tracking.hpp"
#include "corvane/testing/recording_feature.hpp"
#include "corvane/testing/test_main_loop.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <tuple>

namespace corvane {

namespace testing {

// Files extra issue producers, which registration alone never does, so that the
// derivations can be checked against real issues.
struct AggregateValidatorAccess {
  static void file(AggregateValidator& validator, const std::string& entityId,
                   AggregateValidator::IssueProducer producer) {
    validator.entityValidators_[entityId].push_back(std::move(producer));
  }
};

}  // namespace testing

namespace {

using testing::AggregateValidatorAccess;
using testing::Journal;
using testing::RecordingFeature;
using Severity = SubmissionValidationIssue::Severity;
using Issues = std::vector<SubmissionValidationIssue>;

SubmissionValidationIssue issue(std::string id, Severity severity) {
  return SubmissionValidationIssue{std::move(id), severity, "Title", "Description", {}, {}, {}};
}

std::vector<std::string> idsOf(const Issues& issues) {
  std::vector<std::string> ids;
  for (const auto& found : issues) ids.push_back(found.id);
  return ids;
}

std::vector<std::string> entityIdsOf(const AggregateValidator& validator) {
  std::vector<std::string> ids;
  for (const auto& entity : validator.entities()) ids.push_back(entity->entityId());
  return ids;
}

// totalIssues, errorCount, warningCount and isValid of a summary taken now.
std::tuple<std::int64_t, std::int64_t, std::int64_t, bool> summaryOf(const AggregateValidator& validator) {
  const auto summary = validator.getValidationSummary();
  return {summary.totalIssues, summary.errorCount, summary.warningCount, summary.isValid};
}

class AggregateValidatorTest : public ::testing::Test {
 protected:
  std::shared_ptr<RecordingFeature> feature(std::string id) {
    return std::make_shared<RecordingFeature>(std::move(id), journal);
  }

  std::shared_ptr<Journal> journal = std::make_shared<Journal>();
  AggregateValidator validator;
};

TEST_F(AggregateValidatorTest, AFreshValidatorReportsSuccess) {
  EXPECT_TRUE(validator.isValid());
  EXPECT_TRUE(validator.blockingIssues().empty());
  EXPECT_TRUE(validator.warningIssues().empty());
  EXPECT_EQ(validator.validationState(), SubmissionValidationState::valid());
  EXPECT_EQ(summaryOf(validator), std::tuple(0, 0, 0, true));
  EXPECT_TRUE(validator.getValidationSummary().lastValidation.has_value());
}

TEST_F(AggregateValidatorTest, RegisteringTwiceListsTwiceButFilesOneSilentProducer) {
  auto first = feature("a");
  auto other = feature("b");
  validator.register_(first);
  validator.register_(other);
  validator.register_(first);

  EXPECT_EQ(entityIdsOf(validator), (std::vector<std::string>{"a", "b", "a"}));
  EXPECT_EQ(validator.entities()[0], first);
  EXPECT_EQ(validator.entities()[2], first);
  ASSERT_EQ(validator.entityValidators().size(), 2u);
  ASSERT_EQ(validator.entityValidators().at("a").size(), 1u);
  EXPECT_TRUE(validator.entityValidators().at("a").front()().empty());
  EXPECT_TRUE(validator.isValid());
  EXPECT_EQ(validator.validationState(), SubmissionValidationState::valid());

  // One unregister removes every listing of the id, and only of that id.
  validator.unregister(*first);
  EXPECT_EQ(entityIdsOf(validator), (std::vector<std::string>{"b"}));
  EXPECT_EQ(validator.entityValidators().count("a"), 0u);
  EXPECT_EQ(validator.entityValidators().count("b"), 1u);
}

TEST_F(AggregateValidatorTest, UnregisterMatchesByEntityIdAndIgnoresUnknownIds) {
  validator.register_(feature("a"));
  validator.unregister(*feature("unknown"));
  EXPECT_EQ(entityIdsOf(validator), (std::vector<std::string>{"a"}));
  EXPECT_EQ(validator.entityValidators().size(), 1u);

  // Another object carrying the same id counts as the same entity.
  validator.unregister(*feature("a"));
  EXPECT_TRUE(validator.entities().empty());
  EXPECT_TRUE(validator.entityValidators().empty());
}

TEST_F(AggregateValidatorTest, ReRegisteringReplacesWhatWasFiledUnderTheId) {
  auto app = feature("app");
  validator.register_(app);
  AggregateValidatorAccess::file(validator, "app", [] { return Issues{issue("e", Severity::error)}; });
  ASSERT_FALSE(validator.isValid());

  validator.register_(app);
  EXPECT_EQ(validator.entityValidators().at("app").size(), 1u);
  EXPECT_TRUE(validator.isValid());
}

TEST_F(AggregateValidatorTest, DerivedValuesSortCollectedIssuesBySeverity) {
  AggregateValidatorAccess::file(validator, "b", [] {
    return Issues{issue("b-warning", Severity::warning), issue("b-error", Severity::error)};
  });
  AggregateValidatorAccess::file(validator, "a", [] {
    return Issues{issue("a-info", Severity::info), issue("a-error", Severity::error)};
  });
  AggregateValidatorAccess::file(validator, "a", [] { return Issues{issue("a-warning", Severity::warning)}; });

  // Producers are collected in id order, each id's producers in filing order.
  EXPECT_FALSE(validator.isValid());
  EXPECT_EQ(idsOf(validator.blockingIssues()), (std::vector<std::string>{"a-error", "b-error"}));
  EXPECT_EQ(idsOf(validator.warningIssues()), (std::vector<std::string>{"a-warning", "b-warning"}));
  const auto state = validator.validationState();
  ASSERT_TRUE(state.isInvalid());
  EXPECT_EQ(idsOf(state.getIf<SubmissionValidationState::Invalid>()->issues),
            (std::vector<std::string>{"a-info", "a-error", "a-warning", "b-warning", "b-error"}));
  EXPECT_FALSE(state.canProceed());
  EXPECT_EQ(summaryOf(validator), std::tuple(5, 2, 2, false));
}

TEST_F(AggregateValidatorTest, WarningsAndInfosAloneStayValidButMakeTheStateInvalid) {
  AggregateValidatorAccess::file(validator, "a", [] {
    return Issues{issue("w", Severity::warning), issue("i", Severity::info)};
  });
  EXPECT_TRUE(validator.isValid());
  EXPECT_TRUE(validator.blockingIssues().empty());
  EXPECT_EQ(idsOf(validator.warningIssues()), (std::vector<std::string>{"w"}));
  const auto state = validator.validationState();
  EXPECT_EQ(state, SubmissionValidationState::invalid({issue("w", Severity::warning), issue("i", Severity::info)}));
  EXPECT_TRUE(state.canProceed());
  EXPECT_EQ(summaryOf(validator), std::tuple(2, 0, 1, true));
}

TEST_F(AggregateValidatorTest, IsValidReadsEveryListedFeaturesChangeFlag) {
  auto first = feature("a");
  auto second = feature("b");
  second->setChanged(true);
  validator.register_(first);
  validator.register_(second);
  validator.register_(first);

  EXPECT_TRUE(validator.isValid());
  EXPECT_EQ(first->unsavedChangeReads, 2);
  EXPECT_EQ(second->unsavedChangeReads, 1);
}

TEST_F(AggregateValidatorTest, ValidatePassesWithoutRunningAnyProducer) {
  int producerCalls = 0;
  validator.register_(feature("a"));
  AggregateValidatorAccess::file(validator, "a", [&] {
    ++producerCalls;
    return Issues{issue("e", Severity::error)};
  });
  testing::TestMainLoop loop;

  const auto before = std::chrono::system_clock::now();
  const auto result = loop.run(validator.validate());
  const auto after = std::chrono::system_clock::now();

  EXPECT_TRUE(result.isValid);
  EXPECT_TRUE(result.issues.empty());
  EXPECT_GE(result.validatedAt, before);
  EXPECT_LE(result.validatedAt, after);
  EXPECT_EQ(producerCalls, 0);
}

TEST_F(AggregateValidatorTest, EverySummaryIsStampedWhenTaken) {
  const auto before = std::chrono::system_clock::now();
  const auto first = validator.getValidationSummary();
  ASSERT_TRUE(first.lastValidation);
  // Let the clock tick past the first stamp, so that a stamp taken once and reused shows.
  while (std::chrono::system_clock::now() <= *first.lastValidation) {
  }
  const auto second = validator.getValidationSummary();
  const auto after = std::chrono::system_clock::now();
  ASSERT_TRUE(second.lastValidation);
  EXPECT_GE(*first.lastValidation, before);
  EXPECT_LT(*first.lastValidation, *second.lastValidation);
  EXPECT_LE(*second.lastValidation, after);
}

TEST_F(AggregateValidatorTest, RegistrationAnnouncesBothCollections) {
  std::vector<std::string> announced;
  auto entities = validator.observe("entities", [&] { announced.push_back("entities"); });
  auto producers = validator.observe("entityValidators", [&] { announced.push_back("entityValidators"); });
  auto app = feature("app");

  bool verdictChanged = false;
  withObservationTracking([&] { return validator.isValid(); }, [&] { verdictChanged = true; });
  validator.register_(app);
  EXPECT_TRUE(verdictChanged);
  validator.unregister(*app);
  EXPECT_EQ(announced, (std::vector<std::string>{"entities", "entityValidators", "entities", "entityValidators"}));
}

}  // namespace
}  // namespace corvane
