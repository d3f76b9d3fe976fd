#include "corvane/entities/example_app_info_entity.hpp"

#include "corvane/observation/observation_tracking.hpp"
#include "corvane/submission/any_submission_validation_rule.hpp"
#include "corvane/submission/submission_validation_result.hpp"
#include "corvane/testing/captured_lines.hpp"
#include "corvane/testing/test_main_loop.hpp"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/error.hpp>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace corvane {
namespace {

using Lines = std::vector<std::string>;
using Status = CompletionItem::CompletionStatus;
using Priority = CompletionItem::Priority;
using Result = SubmissionValidationResult;

class ExampleAppInfoEntityTest : public ::testing::Test {
 protected:
  // Runs every rule of `maker` on `subject` and returns the results in rule order.
  std::vector<Result> judge(const ExampleAppInfoEntity& maker, const ExampleAppInfoEntity& subject) {
    std::vector<Result> results;
    for (const auto& rule : maker.createValidationRules()) results.push_back(loop.run(rule.validate(subject)));
    return results;
  }
  std::vector<Result> judgeName(std::string name) {
    entity->appName()->setValue(std::move(name));
    return judge(*entity, *entity);
  }

  testing::TestMainLoop loop;
  testing::CapturedLines output;
  std::shared_ptr<ExampleAppInfoEntity> entity = ExampleAppInfoEntity::create();
};

TEST_F(ExampleAppInfoEntityTest, IdentifiesItselfWithDistinctEntityAndFeatureIds) {
  EXPECT_EQ(entity->entityId(), "example-app-info");
  EXPECT_EQ(entity->entityName(), "App Information");
  EXPECT_EQ(entity->featureId(), "app-basic-information");
  for (const auto& field : {entity->appName(), entity->subtitle(), entity->appDescription()}) {
    EXPECT_EQ(field->value(), "");
    EXPECT_FALSE(field->hasUnsavedChanges());
  }
  EXPECT_NE(entity->appName(), entity->subtitle());
  EXPECT_NE(entity->subtitle(), entity->appDescription());
}

TEST_F(ExampleAppInfoEntityTest, ChangeQuestionsTraceTheirAnswers) {
  EXPECT_FALSE(entity->hasUnsavedChanges());
  EXPECT_EQ(entity->changeDescription(), "");
  EXPECT_EQ(output.lines(),
            (Lines{
                "📊 Entity hasUnsavedChanges: false (appName: false, subtitle: false, description: false)",
                "📝 changedPropertiesDescription: ''",
            }));
  entity->subtitle()->setValue("Fast");
  entity->appDescription()->setValue("Long text");
  output.clear();
  EXPECT_TRUE(entity->hasUnsavedChanges());
  EXPECT_EQ(entity->changeDescription(), "Subtitle, Description");
  EXPECT_EQ(output.lines(), (Lines{
                                "📊 Entity hasUnsavedChanges: true (appName: false, subtitle: true, description: true)",
                                "📝 changedPropertiesDescription: 'Subtitle, Description'",
                            }));
  entity->appName()->setValue("Corvane");
  output.clear();
  EXPECT_EQ(entity->changeDescription(), "App Name, Subtitle, Description");
  entity->subtitle()->setValue("");
  entity->appDescription()->setValue("");
  output.clear();
  EXPECT_EQ(entity->changeDescription(), "App Name");
  EXPECT_TRUE(entity->hasUnsavedChanges());
  EXPECT_EQ(output.lines(), (Lines{
                                "📝 changedPropertiesDescription: 'App Name'",
                                "📊 Entity hasUnsavedChanges: true (appName: true, subtitle: false, description: false)",
                            }));
}

TEST_F(ExampleAppInfoEntityTest, HasUpdatesTracesTheUnsavedLineFirst) {
  EXPECT_FALSE(entity->hasUpdates());
  entity->appDescription()->setValue("x");
  EXPECT_TRUE(entity->hasUpdates());
  EXPECT_EQ(output.lines(),
            (Lines{
                "📊 Entity hasUnsavedChanges: false (appName: false, subtitle: false, description: false)",
                "🔄 Entity hasUpdates: false - SwiftUI will auto-update!",
                "🔄 ChangeTrackingField changed: x (hasUnsavedChanges: true)",
                "📊 Entity hasUnsavedChanges: true (appName: false, subtitle: false, description: true)",
                "🔄 Entity hasUpdates: true - SwiftUI will auto-update!",
            }));
}

TEST_F(ExampleAppInfoEntityTest, ObserversOfHasUpdatesHearAboutFieldEdits) {
  int refreshes = 0;
  withObservationTracking([&] { return entity->hasUpdates(); }, [&] { ++refreshes; });
  entity->subtitle()->setValue("New");
  EXPECT_EQ(refreshes, 1);

  // Replacing a field object is announced too.
  withObservationTracking([&] { return entity->hasUpdates(); }, [&] { ++refreshes; });
  entity->setSubtitle(std::make_shared<ExampleAppInfoEntity::Field>("other"));
  EXPECT_EQ(refreshes, 2);
}

TEST_F(ExampleAppInfoEntityTest, ReplacedFieldsAreTheOnesConsulted) {
  auto name = std::make_shared<ExampleAppInfoEntity::Field>("Saved");
  name->setValue("Edited");
  entity->setAppName(name);
  EXPECT_EQ(entity->appName(), name);
  EXPECT_TRUE(entity->hasUnsavedChanges());
  EXPECT_EQ(entity->changeDescription(), "App Name");
  entity->discardChanges();
  EXPECT_EQ(name->value(), "Saved");
}

TEST_F(ExampleAppInfoEntityTest, FreshEntityFailsBothRulesWithoutEntityIds) {
  const auto rules = entity->createValidationRules();
  ASSERT_EQ(rules.size(), 2u);
  for (const auto& rule : rules) {
    EXPECT_EQ(rule.id.size(), 36u) << rule.id;
    EXPECT_EQ(rule.id.find_first_of("abcdef"), std::string::npos) << rule.id;
  }
  EXPECT_NE(rules[0].id, rules[1].id);
  EXPECT_NE(entity->createValidationRules()[0].id, rules[0].id) << "each call makes fresh ids";

  const auto results = judge(*entity, *entity);
  ASSERT_EQ(results.size(), 2u);
  EXPECT_FALSE(results[0].isValid);
  ASSERT_EQ(results[0].issues.size(), 1u);
  EXPECT_EQ(results[0].issues[0].description, "App name is required");
  EXPECT_EQ(results[0].issues[0].title, "Validation Error");
  EXPECT_FALSE(results[0].issues[0].entityId);
  EXPECT_FALSE(results[1].isValid);
  ASSERT_EQ(results[1].issues.size(), 1u);
  EXPECT_EQ(results[1].issues[0].description, "App name must be at least 3 characters");
  EXPECT_FALSE(results[1].issues[0].entityId);
}

TEST_F(ExampleAppInfoEntityTest, RulesAreIndependentAndCountCharacters) {
  const auto ab = judgeName("ab");
  EXPECT_TRUE(ab[0].isValid);
  EXPECT_EQ(ab[0].validatedAt, Result::valid().validatedAt) << "a pass is the shared valid result";
  EXPECT_FALSE(ab[1].isValid);

  const auto abc = judgeName("abc");
  EXPECT_TRUE(abc[0].isValid && abc[0].issues.empty());
  EXPECT_TRUE(abc[1].isValid && abc[1].issues.empty());

  // Two characters in six bytes still fall short; three emoji characters are enough.
  EXPECT_FALSE(judgeName("e\u0301e\u0301")[1].isValid);
  EXPECT_TRUE(judgeName("\U0001F44D\U0001F3FD\U0001F44D\U0001F3FD\U0001F44D\U0001F3FD")[1].isValid);
}

TEST_F(ExampleAppInfoEntityTest, RulesJudgeTheEntityTheyAreGiven) {
  auto other = ExampleAppInfoEntity::create();
  other->appName()->setValue("Other app");
  for (const auto& result : judge(*entity, *other)) EXPECT_TRUE(result.isValid);
  for (const auto& result : judge(*other, *entity)) EXPECT_FALSE(result.isValid);

  const AnySubmissionValidationRule bound(entity->createValidationRules()[1], other);
  EXPECT_TRUE(loop.run(bound.validate()).isValid);
}

TEST_F(ExampleAppInfoEntityTest, CompletionItemsFollowTheFields) {
  const std::string category = "Basic Information";
  EXPECT_EQ(
      entity->createCompletionItems(),
      (std::vector<CompletionItem>{
          {"app-name-set", "App Name", "Set your app's display name", Status::missing(), Priority::required, category},
          {"subtitle-set", "Subtitle", "Add a subtitle to help users discover your app", Status::optional(),
           Priority::recommended, category},
          {"description-set", "Description", "Provide a detailed description of your app", Status::optional(),
           Priority::optional, category},
      }));
  entity->appName()->setValue("Corvane");
  entity->appDescription()->setValue("Edits metadata");
  const auto items = entity->createCompletionItems();
  ASSERT_EQ(items.size(), 3u);
  EXPECT_EQ(items[0].status, Status::completed());
  EXPECT_EQ(items[1].status, Status::optional());
  EXPECT_EQ(items[2].status, Status::completed());
  entity->subtitle()->setValue(" ");
  EXPECT_EQ(entity->createCompletionItems()[1].status, Status::completed());
}

TEST_F(ExampleAppInfoEntityTest, SaveChangesWaitsThenMarksEveryFieldSaved) {
  entity->appName()->setValue("Corvane");
  entity->subtitle()->setValue("Metadata");
  entity->appDescription()->setValue("Edits");
  output.clear();
  loop.run(entity->saveChanges());
  EXPECT_TRUE(output.lines().empty()) << "saving prints nothing";
  EXPECT_EQ(entity->appName()->savedValue(), "Corvane");
  EXPECT_EQ(entity->subtitle()->savedValue(), "Metadata");
  EXPECT_EQ(entity->appDescription()->savedValue(), "Edits");
  EXPECT_FALSE(entity->hasUnsavedChanges());
}

TEST_F(ExampleAppInfoEntityTest, SaveChangesSuspendsBeforeSaving) {
  entity->appName()->setValue("Corvane");
  bool finished = false;
  boost::asio::co_spawn(loop.context(), entity->saveChanges(), [&](std::exception_ptr) { finished = true; });
  loop.drain();
  EXPECT_FALSE(finished);
  EXPECT_TRUE(entity->appName()->hasUnsavedChanges()) << "nothing is saved before the wait ends";
  loop.context().restart();
  loop.context().run();
  EXPECT_TRUE(finished);
  EXPECT_FALSE(entity->appName()->hasUnsavedChanges());
}

TEST_F(ExampleAppInfoEntityTest, CancelledSaveSavesNothing) {
  entity->appName()->setValue("Corvane");
  EXPECT_EQ(loop.cancelWhileWaiting(entity->saveChanges()).code(), boost::asio::error::operation_aborted);
  EXPECT_EQ(entity->appName()->savedValue(), "");
  EXPECT_TRUE(entity->appName()->hasUnsavedChanges());
}

TEST_F(ExampleAppInfoEntityTest, ASaveKeepsTheEntityAlive) {
  std::weak_ptr<ExampleAppInfoEntity> watched = entity;
  auto name = entity->appName();
  name->setValue("Corvane");
  auto operation = entity->saveChanges();
  entity.reset();
  ASSERT_FALSE(watched.expired());
  loop.run(std::move(operation));
  EXPECT_FALSE(name->hasUnsavedChanges());
  EXPECT_TRUE(watched.expired());
}

TEST_F(ExampleAppInfoEntityTest, DiscardRestoresTheFieldsInOrder) {
  entity->appName()->setValue("Corvane");
  entity->appDescription()->setValue("Edits");
  output.clear();
  entity->discardChanges();
  EXPECT_EQ(output.lines(), (Lines{
                                "🔄 ChangeTrackingField changed:  (hasUnsavedChanges: false)",
                                "🔄 ChangeTrackingField changed:  (hasUnsavedChanges: false)",
                                "🔄 ChangeTrackingField changed:  (hasUnsavedChanges: false)",
                            }));
  EXPECT_EQ(entity->appName()->value(), "");
  EXPECT_EQ(entity->appDescription()->value(), "");
}

TEST_F(ExampleAppInfoEntityTest, ChangeTrackerForwardsToTheEntity) {
  const auto tracker = entity->createChangeTracker();
  EXPECT_EQ(tracker.entityId(), "example-app-info");
  EXPECT_EQ(tracker.entity(), entity);
  entity->subtitle()->setValue("Metadata");
  EXPECT_TRUE(tracker.canSubmit());
  EXPECT_EQ(tracker.changeDescription(), "Subtitle");
  loop.run(tracker.submit());
  EXPECT_FALSE(tracker.hasUnsavedChanges());
  EXPECT_EQ(entity->subtitle()->savedValue(), "Metadata");
}

TEST(ExampleAppInfoEntityDeathTest, FieldsCannotBeRemoved) {
  auto entity = ExampleAppInfoEntity::create();
  EXPECT_DEATH(entity->setAppName(nullptr), "precondition failed: .*cannot be null");
  EXPECT_DEATH(entity->setSubtitle(nullptr), "precondition failed: .*cannot be null");
  EXPECT_DEATH(entity->setAppDescription(nullptr), "precondition failed: .*cannot be null");
}

}  // namespace
}  // namespace corvane
