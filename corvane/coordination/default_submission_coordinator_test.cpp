#include "corvane/coordination/default_submission_coordinator.hpp"

#include "corvane/testing/captured_lines.hpp"
#include "corvane/testing/captured_log.hpp"
#include "corvane/testing/recording_feature.hpp"
#include "corvane/testing/test_main_loop.hpp"

#include <gtest/gtest.h>

namespace corvane {

namespace {

using spdlog::level::debug;
using spdlog::level::err;
using spdlog::level::info;
using testing::CapturedLog;
using testing::Journal;
using testing::LogEntry;
using testing::RecordingFeature;

constexpr const char* kLogger = "Corvane.SimpleCoordination";

std::vector<std::string> entityIdsOf(const AggregateValidator& validator) {
  std::vector<std::string> ids;
  for (const auto& entity : validator.entities()) ids.push_back(entity->entityId());
  return ids;
}

class DefaultSubmissionCoordinatorTest : public ::testing::Test {
 protected:
  std::shared_ptr<RecordingFeature> feature(std::string id, std::string description = {}) {
    return std::make_shared<RecordingFeature>(std::move(id), journal, !description.empty(), std::move(description));
  }

  // The entries written since the last call.
  std::vector<LogEntry> newEntries() {
    auto entries = log.entries();
    std::vector<LogEntry> fresh(entries.begin() + static_cast<std::ptrdiff_t>(seen), entries.end());
    seen = entries.size();
    return fresh;
  }

  std::shared_ptr<Journal> journal = std::make_shared<Journal>();
  CapturedLog log;
  std::size_t seen = 0;
  testing::TestMainLoop loop;
  DefaultSubmissionCoordinator coordinator;
};

TEST_F(DefaultSubmissionCoordinatorTest, StartsEmptyAndUninitialisedWithTheGivenConfiguration) {
  EXPECT_EQ(newEntries(), (std::vector<LogEntry>{{kLogger, debug, "🔧 SimpleSubmissionCoordinator initialized"}}));
  EXPECT_FALSE(coordinator.isInitialized());
  EXPECT_EQ(coordinator.entityCount(), 0u);
  EXPECT_TRUE(coordinator.registeredEntityIds().empty());
  EXPECT_FALSE(coordinator.isRegistered(""));
  EXPECT_EQ(coordinator.configuration().maxConcurrentValidations, 3);

  const DefaultSubmissionCoordinator custom(
      SubmissionConfiguration(false, true, false, SubmissionConfiguration::AutoSubmitStrategy::onCompletion,
                              SubmissionConfiguration::ValidationStrategy::batch(), 7));
  EXPECT_EQ(custom.configuration().maxConcurrentValidations, 7);
}

TEST_F(DefaultSubmissionCoordinatorTest, RegisteringFilesTheFeatureHereAndWithTheValidator) {
  newEntries();
  coordinator.register_(feature("zeta"));
  coordinator.register_(feature("alpha"));

  EXPECT_EQ(coordinator.entityCount(), 2u);
  EXPECT_EQ(coordinator.registeredEntityIds(), (std::vector<std::string>{"zeta", "alpha"}));
  EXPECT_TRUE(coordinator.isRegistered("alpha"));
  EXPECT_FALSE(coordinator.isRegistered("beta"));
  EXPECT_EQ(entityIdsOf(*coordinator.aggregateValidator()), (std::vector<std::string>{"zeta", "alpha"}));
  // Both views of the validator are the one the features were filed with.
  EXPECT_EQ(coordinator.validator(), coordinator.aggregateValidator());
  EXPECT_EQ(newEntries(), (std::vector<LogEntry>{
                              {kLogger, info, "📝 Registering entity: zeta"},
                              {kLogger, info, "✅ Entity zeta registered with validator"},
                              {kLogger, info, "📝 Registering entity: alpha"},
                              {kLogger, info, "✅ Entity alpha registered with validator"},
                          }));
}

TEST_F(DefaultSubmissionCoordinatorTest, ASecondFeatureUnderAHeldIdIsRefused) {
  auto original = feature("app", "Name");
  coordinator.register_(original);
  newEntries();

  coordinator.register_(original);
  coordinator.register_(feature("app", "Impostor"));

  EXPECT_EQ(coordinator.entityCount(), 1u);
  EXPECT_EQ(coordinator.aggregateValidator()->entities(), (std::vector<std::shared_ptr<SubmissionFeature>>{original}));
  EXPECT_EQ(coordinator.changeTracker()->changeDescription(), "Name");
  EXPECT_EQ(newEntries(), (std::vector<LogEntry>{
                              {kLogger, err, "⚠️ Entity app already registered"},
                              {kLogger, err, "⚠️ Entity app already registered"},
                          }));
}

TEST_F(DefaultSubmissionCoordinatorTest, UnregisteringRemovesTheFeatureHereAndFromTheValidator) {
  coordinator.register_(feature("app"));
  coordinator.register_(feature("user"));
  newEntries();

  // An unknown feature only logs the refusal.
  coordinator.unregister(feature("ghost"));
  EXPECT_EQ(coordinator.registeredEntityIds(), (std::vector<std::string>{"app", "user"}));
  EXPECT_EQ(entityIdsOf(*coordinator.aggregateValidator()), (std::vector<std::string>{"app", "user"}));
  EXPECT_EQ(newEntries(), (std::vector<LogEntry>{{kLogger, err, "⚠️ Entity ghost not found"}}));

  coordinator.unregister(feature("app"));  // matched by id, not by object

  EXPECT_EQ(coordinator.registeredEntityIds(), (std::vector<std::string>{"user"}));
  EXPECT_FALSE(coordinator.isRegistered("app"));
  EXPECT_EQ(entityIdsOf(*coordinator.aggregateValidator()), (std::vector<std::string>{"user"}));
  EXPECT_EQ(coordinator.aggregateValidator()->entityValidators().count("app"), 0u);
  EXPECT_EQ(newEntries(), (std::vector<LogEntry>{
                              {kLogger, info, "🗑️ Unregistering entity: app"},
                              {kLogger, info, "✅ Entity app unregistered"},
                          }));
}

TEST_F(DefaultSubmissionCoordinatorTest, InitializingTwiceLogsOnce) {
  newEntries();
  loop.run(coordinator.initialize());
  EXPECT_TRUE(coordinator.isInitialized());
  loop.run(coordinator.initialize());
  EXPECT_TRUE(coordinator.isInitialized());
  EXPECT_EQ(newEntries(), (std::vector<LogEntry>{
                              {kLogger, info, "🚀 Initializing SimpleSubmissionCoordinator"},
                              {kLogger, info, "✅ SimpleSubmissionCoordinator initialized"},
                          }));
}

TEST_F(DefaultSubmissionCoordinatorTest, TeardownEmptiesTheRegistryButLeavesTheValidatorAsItWas) {
  auto app = feature("app");
  coordinator.register_(app);
  coordinator.register_(feature("user"));
  loop.run(coordinator.initialize());
  newEntries();

  loop.run(coordinator.teardown());

  EXPECT_EQ(coordinator.entityCount(), 0u);
  EXPECT_TRUE(coordinator.registeredEntityIds().empty());
  EXPECT_FALSE(coordinator.isInitialized());
  EXPECT_EQ(coordinator.changeTracker()->changeDescription(), "No changes");
  EXPECT_EQ(entityIdsOf(*coordinator.aggregateValidator()), (std::vector<std::string>{"app", "user"}));
  EXPECT_EQ(newEntries(), (std::vector<LogEntry>{
                              {kLogger, info, "🧹 Tearing down SimpleSubmissionCoordinator"},
                              {kLogger, info, "✅ Teardown complete"},
                          }));

  // The validator was never told, so registering again lists the feature a second time.
  coordinator.register_(app);
  EXPECT_EQ(entityIdsOf(*coordinator.aggregateValidator()), (std::vector<std::string>{"app", "user", "app"}));

  // Teardown runs in either state, and a later initialize logs again.
  loop.run(coordinator.teardown());
  loop.run(coordinator.initialize());
  EXPECT_TRUE(coordinator.isInitialized());
  const auto entries = newEntries();
  ASSERT_EQ(entries.size(), 6u);
  EXPECT_EQ(entries[4].message, "🚀 Initializing SimpleSubmissionCoordinator");
}

TEST_F(DefaultSubmissionCoordinatorTest, EveryReadOfTheTrackerIsAFreshSnapshot) {
  coordinator.register_(feature("app", "Name"));
  const auto first = coordinator.changeTracker();
  coordinator.register_(feature("user", "Email"));
  const auto second = coordinator.changeTracker();

  EXPECT_EQ(first->changeDescription(), "Name");
  EXPECT_EQ(second->changeDescription(), "Name, Email");
}

TEST_F(DefaultSubmissionCoordinatorTest, EveryReadOfTheGuideIsAFreshSnapshot) {
  using ItemStatus = CompletionItem::CompletionStatus;
  using Priority = CompletionItem::Priority;
  const auto item = [](std::string id, ItemStatus status, Priority priority) {
    return CompletionItem(std::move(id), "Title", "Description", std::move(status), priority, std::nullopt);
  };
  coordinator.register_(feature("empty"));
  const auto first = coordinator.completionGuide();
  auto app = feature("app");
  app->completionItems = {item("name", ItemStatus::missing(), Priority::required),
                          item("subtitle", ItemStatus::optional(), Priority::optional),
                          item("keywords", ItemStatus::optional(), Priority::recommended)};
  coordinator.register_(app);
  const auto second = coordinator.completionGuide();

  EXPECT_EQ(first->completionProgress().totalItems, 0);
  EXPECT_EQ(first->completionStatus(), CompletionStatus::notStarted());
  EXPECT_EQ(second->completionProgress().totalItems, 3);
  EXPECT_EQ(second->completionStatus(), CompletionStatus::inProgress(0, 1));

  // The guide re-reads its features: completing the required item completes the submission.
  app->completionItems[0].status = ItemStatus::completed();
  EXPECT_EQ(second->completionStatus(), CompletionStatus::readyForSubmission());
}

TEST_F(DefaultSubmissionCoordinatorTest, ChangesAreAnnouncedOnlyWhenSomethingChanges) {
  std::vector<std::string> announced;
  auto registry = coordinator.observe("registeredEntities", [&] { announced.push_back("registeredEntities"); });
  auto state = coordinator.observe("isInitialized", [&] { announced.push_back("isInitialized"); });
  auto app = feature("app");

  coordinator.register_(app);
  coordinator.register_(app);            // refused
  coordinator.unregister(feature("x"));  // unknown
  loop.run(coordinator.initialize());
  loop.run(coordinator.initialize());  // already initialised
  coordinator.unregister(app);
  loop.run(coordinator.teardown());

  EXPECT_EQ(announced, (std::vector<std::string>{"registeredEntities", "isInitialized", "registeredEntities",
                                                 "registeredEntities", "isInitialized"}));
}

}  // namespace
}  // namespace corvane
