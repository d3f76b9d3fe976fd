#include "corvane/coordination/aggregate_completion_guide.hpp"

#include "corvane/completion/completion_error.hpp"
#include "corvane/observation/observation_tracking.hpp"
#include "corvane/testing/captured_log.hpp"
#include "corvane/testing/recording_feature.hpp"
#include "corvane/testing/test_main_loop.hpp"
#include "corvane/testing/thrown.hpp"

#include <boost/asio/error.hpp>

#include <gtest/gtest.h>

#include <tuple>

namespace corvane {

namespace {

using testing::CapturedLog;
using testing::LogEntry;
using Priority = CompletionItem::Priority;
using ItemStatus = CompletionItem::CompletionStatus;
using spdlog::level::debug;
using spdlog::level::err;
using spdlog::level::info;

constexpr const char* kLogger = "Corvane.CompletionGuide";

CompletionItem item(std::string id, ItemStatus status, Priority priority,
                    std::optional<std::string> category = std::nullopt) {
  return CompletionItem(std::move(id), "Title", "Description", std::move(status), priority, std::move(category));
}

std::vector<std::string> idsOf(const std::vector<CompletionItem>& items) {
  std::vector<std::string> ids;
  for (const auto& found : items) ids.push_back(found.id);
  return ids;
}

LogEntry statusLine(const CompletionStatus& status) {
  return {kLogger, debug, "📊 Completion status updated: " + describe(status)};
}

class AggregateCompletionGuideTest : public ::testing::Test {
 protected:
  // Files `items` under a feature named `entityId`.
  void add(const std::string& entityId, std::vector<CompletionItem> items) {
    guide->add(std::move(items), testing::RecordingFeature(entityId, std::make_shared<testing::Journal>()));
  }

  // The entries written since the last call.
  std::vector<LogEntry> newEntries() {
    auto entries = log.entries();
    std::vector<LogEntry> fresh(entries.begin() + static_cast<std::ptrdiff_t>(seen), entries.end());
    seen = entries.size();
    return fresh;
  }

  // Records every status the guide announces.
  ObservationConnection recordStatuses(std::vector<CompletionStatus>& statuses) {
    return guide->observe("completionStatus", [this, &statuses] { statuses.push_back(guide->completionStatus()); });
  }

  // Required done, optional open: executable, and deriving `hasOptionalItems(count: 1)`.
  void addExecutableItems() {
    add("app", {item("name", ItemStatus::completed(), Priority::required),
                item("subtitle", ItemStatus::missing(), Priority::optional)});
  }

  CapturedLog log;
  std::size_t seen = 0;
  testing::TestMainLoop loop;
  std::shared_ptr<AggregateCompletionGuide> guide = AggregateCompletionGuide::create();
};

TEST_F(AggregateCompletionGuideTest, AFreshGuideHasNothingToDo) {
  EXPECT_EQ(newEntries(), (std::vector<LogEntry>{{kLogger, debug, "🔧 AggregateCompletionGuide initialized"}}));
  EXPECT_EQ(guide->completionStatus(), CompletionStatus::notStarted());
  EXPECT_TRUE(guide->canComplete());
  EXPECT_EQ(guide->completionPercentage(), 0.0);
  EXPECT_EQ(guide->nextActionItem(), std::nullopt);
  EXPECT_TRUE(guide->registeredEntityIds().empty());
  EXPECT_TRUE(guide->entitiesWithIncompleteItems().empty());
  EXPECT_EQ(guide->configuration().maxConcurrentValidations, 3);

  const auto custom = AggregateCompletionGuide::create(
      SubmissionConfiguration(true, true, true, SubmissionConfiguration::AutoSubmitStrategy::automatic,
                              SubmissionConfiguration::ValidationStrategy::immediate(), 1));
  EXPECT_EQ(custom->configuration().maxConcurrentValidations, 1);
}

TEST_F(AggregateCompletionGuideTest, AnEmptyListRegistersTheIdWithoutStartingAnything) {
  newEntries();
  add("app", {});
  EXPECT_EQ(guide->registeredEntityIds(), (std::vector<std::string>{"app"}));
  EXPECT_EQ(guide->completionStatus(), CompletionStatus::notStarted());
  EXPECT_FALSE(guide->hasIncompleteItems("app"));
  EXPECT_EQ(newEntries(), (std::vector<LogEntry>{{kLogger, debug, "✅ Added 0 completion items for entity: app"},
                                                 statusLine(CompletionStatus::notStarted())}));
}

TEST_F(AggregateCompletionGuideTest, AddingForAKnownIdReplacesItsItemsInPlace) {
  add("app",
      {item("a", ItemStatus::missing(), Priority::required), item("b", ItemStatus::missing(), Priority::optional),
       item("c", ItemStatus::missing(), Priority::optional)});
  add("user", {item("u", ItemStatus::missing(), Priority::required)});
  newEntries();
  add("app",
      {item("d", ItemStatus::completed(), Priority::required), item("e", ItemStatus::missing(), Priority::optional)});

  EXPECT_EQ(idsOf(guide->getItems("app")), (std::vector<std::string>{"d", "e"}));
  EXPECT_EQ(guide->registeredEntityIds(), (std::vector<std::string>{"app", "user"}));
  EXPECT_EQ(guide->completionProgress().totalItems, 3);
  EXPECT_EQ(newEntries(), (std::vector<LogEntry>{{kLogger, debug, "✅ Added 2 completion items for entity: app"},
                                                 statusLine(CompletionStatus::inProgress(1, 3))}));
}

struct StatusCase {
  const char* name;
  std::vector<CompletionItem> items;
  CompletionStatus expected;
  bool canComplete;
  friend void PrintTo(const StatusCase& c, std::ostream* out) { *out << c.name; }
};

class AggregateCompletionGuideStatusTest : public AggregateCompletionGuideTest,
                                           public ::testing::WithParamInterface<StatusCase> {};

// The status takes the first matching rule; completing needs every required item done
// and nothing blocked.
TEST_P(AggregateCompletionGuideStatusTest, TheFirstMatchingRuleDecides) {
  add("app", GetParam().items);
  EXPECT_EQ(guide->completionStatus(), GetParam().expected) << describe(guide->completionStatus());
  EXPECT_EQ(newEntries().back(), statusLine(GetParam().expected));
  EXPECT_EQ(guide->canComplete(), GetParam().canComplete);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, AggregateCompletionGuideStatusTest,
    ::testing::Values(StatusCase{"BlockedBeatsEverythingElse",
                                 {item("r", ItemStatus::completed(), Priority::required),
                                  item("o", ItemStatus::blocked("needs icon"), Priority::optional),
                                  item("p", ItemStatus::blocked("needs review"), Priority::recommended)},
                                 CompletionStatus::hasBlockingIssues(2),
                                 false},
                      StatusCase{"AllCompletedIsReady",
                                 {item("r", ItemStatus::completed(), Priority::critical),
                                  item("o", ItemStatus::completed(), Priority::optional)},
                                 CompletionStatus::readyForSubmission(),
                                 true},
                      StatusCase{"OptionalLeftWithRequiredDone",
                                 {item("r", ItemStatus::completed(), Priority::required),
                                  item("o", ItemStatus::missing(), Priority::optional),
                                  item("p", ItemStatus::inProgress(), Priority::recommended),
                                  item("q", ItemStatus::completed(), Priority::optional)},
                                 CompletionStatus::hasOptionalItems(2),
                                 true},
                      StatusCase{"OnlyOptionalItemsLeftOpen",
                                 {item("o", ItemStatus::optional(), Priority::optional)},
                                 CompletionStatus::hasOptionalItems(1),
                                 true},
                      StatusCase{"RequiredLeftIsInProgress",
                                 {item("c", ItemStatus::missing(), Priority::critical),
                                  item("o", ItemStatus::missing(), Priority::optional)},
                                 CompletionStatus::inProgress(0, 2),
                                 false},
                      StatusCase{"RequiredLeftWithOptionalDone",
                                 {item("r", ItemStatus::inProgress(), Priority::required),
                                  item("o", ItemStatus::completed(), Priority::optional)},
                                 CompletionStatus::inProgress(1, 2),
                                 false}),
    [](const ::testing::TestParamInfo<StatusCase>& param) { return std::string(param.param.name); });

TEST_F(AggregateCompletionGuideTest, RemovingReDerivesAndUnknownIdsAreNoError) {
  add("app", {item("r", ItemStatus::completed(), Priority::required)});
  add("user", {item("b", ItemStatus::blocked("no email"), Priority::required)});
  ASSERT_EQ(guide->completionStatus(), CompletionStatus::hasBlockingIssues(1));
  newEntries();

  guide->remove("ghost");
  guide->remove("user");

  EXPECT_EQ(guide->registeredEntityIds(), (std::vector<std::string>{"app"}));
  EXPECT_EQ(guide->completionStatus(), CompletionStatus::readyForSubmission());
  EXPECT_EQ(newEntries(), (std::vector<LogEntry>{
                              {kLogger, debug, "🗑️ Removed completion items for entity: ghost"},
                              statusLine(CompletionStatus::hasBlockingIssues(1)),
                              {kLogger, debug, "🗑️ Removed completion items for entity: user"},
                              statusLine(CompletionStatus::readyForSubmission()),
                          }));
  guide->remove("app");
  EXPECT_EQ(guide->completionStatus(), CompletionStatus::notStarted());
}

TEST_F(AggregateCompletionGuideTest, ResetEmptiesTheGuideWithoutDerivingTheStatus) {
  add("app", {item("r", ItemStatus::missing(), Priority::required)});
  std::vector<CompletionStatus> statuses;
  auto recording = recordStatuses(statuses);
  newEntries();

  guide->reset();

  EXPECT_TRUE(guide->registeredEntityIds().empty());
  EXPECT_EQ(guide->completionStatus(), CompletionStatus::notStarted());
  EXPECT_EQ(statuses, (std::vector<CompletionStatus>{CompletionStatus::notStarted()}));
  EXPECT_EQ(newEntries(), (std::vector<LogEntry>{{kLogger, info, "🔄 Resetting completion guide"},
                                                 {kLogger, info, "✅ Completion guide reset complete"}}));
}

TEST_F(AggregateCompletionGuideTest, QueriesWalkEntitiesInTheOrderTheyWereAdded) {
  add("user", {item("u-opt", ItemStatus::missing(), Priority::optional, "Profile"),
               item("u-req", ItemStatus::completed(), Priority::required)});
  add("app", {item("a-crit", ItemStatus::blocked("no icon"), Priority::critical, "Media"),
              item("a-rec", ItemStatus::completed(), Priority::recommended, "Profile"),
              item("a-req", ItemStatus::missing(), Priority::required)});
  add("done", {item("d", ItemStatus::completed(), Priority::optional)});

  EXPECT_EQ(guide->registeredEntityIds(), (std::vector<std::string>{"user", "app", "done"}));
  EXPECT_EQ(idsOf(guide->requiredItems()), (std::vector<std::string>{"u-req", "a-crit", "a-req"}));
  EXPECT_EQ(idsOf(guide->optionalItems()), (std::vector<std::string>{"u-opt", "a-rec", "d"}));
  EXPECT_TRUE(guide->getItems("ghost").empty());

  const auto groups = guide->getItemsByCategory();
  ASSERT_EQ(groups.size(), 3u);
  EXPECT_EQ(idsOf(groups.at("General")), (std::vector<std::string>{"u-req", "a-req", "d"}));
  EXPECT_EQ(idsOf(groups.at("Profile")), (std::vector<std::string>{"u-opt", "a-rec"}));
  EXPECT_EQ(idsOf(groups.at("Media")), (std::vector<std::string>{"a-crit"}));

  const auto progress = guide->completionProgress();
  EXPECT_EQ(std::tie(progress.completedItems, progress.totalItems, progress.requiredItems, progress.optionalItems,
                     progress.blockedItems),
            std::tuple(3, 6, 3, 3, 1));
  EXPECT_EQ(guide->completionPercentage(), 0.5);

  EXPECT_TRUE(guide->hasIncompleteItems("user"));
  EXPECT_FALSE(guide->hasIncompleteItems("done"));
  EXPECT_FALSE(guide->hasIncompleteItems("ghost"));
  EXPECT_EQ(guide->entitiesWithIncompleteItems(), (std::vector<std::string>{"user", "app"}));
}

TEST_F(AggregateCompletionGuideTest, NextActionIsTheFirstOpenItemOfTheHighestPriority) {
  add("app", {item("done-critical", ItemStatus::completed(), Priority::critical),
              item("first-required", ItemStatus::missing(), Priority::required),
              item("second-required", ItemStatus::missing(), Priority::required)});
  add("user", {item("optional", ItemStatus::missing(), Priority::optional)});
  EXPECT_EQ(guide->nextActionItem()->id, "first-required");

  // Status plays no part: a blocked critical item outranks missing required ones.
  add("user", {item("blocked-critical", ItemStatus::blocked("no icon"), Priority::critical),
               item("later-critical", ItemStatus::missing(), Priority::critical)});
  EXPECT_EQ(guide->nextActionItem()->id, "blocked-critical");

  guide->reset();
  add("app",
      {item("r", ItemStatus::completed(), Priority::required), item("o", ItemStatus::missing(), Priority::optional)});
  EXPECT_EQ(guide->nextActionItem()->id, "o");
  add("app", {item("r", ItemStatus::completed(), Priority::required)});
  EXPECT_EQ(guide->nextActionItem(), std::nullopt);
}

TEST_F(AggregateCompletionGuideTest, RefreshReDerivesTheStatusAndLogs) {
  add("app", {item("r", ItemStatus::missing(), Priority::required)});
  add("user", {});
  newEntries();
  loop.run(guide->refreshCompletion());
  EXPECT_EQ(newEntries(), (std::vector<LogEntry>{{kLogger, info, "🔄 Refreshing completion state for 2 entities"},
                                                 statusLine(CompletionStatus::inProgress(0, 1)),
                                                 {kLogger, info, "✅ Completion state refreshed"}}));
}

TEST_F(AggregateCompletionGuideTest, ExecutionIsRefusedWhileARequiredItemIsOpenOrAnyItemIsBlocked) {
  const std::vector<std::vector<CompletionItem>> unready{
      {item("r", ItemStatus::missing(), Priority::required)},
      {item("r", ItemStatus::completed(), Priority::required),
       item("o", ItemStatus::blocked("later"), Priority::optional)},
  };
  for (const auto& items : unready) {
    add("app", items);
    const auto before = guide->completionStatus();
    std::vector<CompletionStatus> statuses;
    auto recording = recordStatuses(statuses);
    newEntries();

    const auto refused = testing::thrown<CompletionError>([&] { loop.run(guide->executeCompletion()); });
    EXPECT_EQ(refused ? refused->kind() : CompletionError::Kind::unknown, CompletionError::Kind::requirementsNotMet);

    EXPECT_EQ(guide->completionStatus(), before);
    EXPECT_TRUE(statuses.empty());
    EXPECT_EQ(guide->getItems("app"), items);
    EXPECT_EQ(newEntries(),
              (std::vector<LogEntry>{{kLogger, err, "⚠️ Cannot execute completion - requirements not met"}}));
  }
}

TEST_F(AggregateCompletionGuideTest, ExecutionSucceedsAfterItsWaitAndLeavesTheGuideReady) {
  addExecutableItems();
  add("user", {});
  ASSERT_EQ(guide->completionStatus(), CompletionStatus::hasOptionalItems(1));
  std::vector<CompletionStatus> statuses;
  auto recording = recordStatuses(statuses);
  newEntries();

  loop.run(guide->executeCompletion());

  EXPECT_EQ(statuses, (std::vector<CompletionStatus>{CompletionStatus::inProgress(1, 2),
                                                     CompletionStatus::readyForSubmission()}));
  EXPECT_EQ(newEntries(), (std::vector<LogEntry>{{kLogger, info, "🚀 Executing completion for 2 entities"},
                                                 {kLogger, info, "🎉 Completion executed successfully"}}));

  // The stored verdict stays until something derives it again.
  EXPECT_EQ(guide->completionStatus(), CompletionStatus::readyForSubmission());
  loop.run(guide->refreshCompletion());
  EXPECT_EQ(guide->completionStatus(), CompletionStatus::hasOptionalItems(1));
}

TEST_F(AggregateCompletionGuideTest, CancellingExecutionMidWaitRestoresTheDerivedStatusAndRethrowsAsIs) {
  addExecutableItems();
  std::weak_ptr<AggregateCompletionGuide> watched = guide;
  // A CompletionError would be rethrown here and fail the test: the abort must pass as is.
  const auto error = loop.cancelWhileWaiting(guide->executeCompletion(), [&] {
    EXPECT_EQ(guide->completionStatus(), CompletionStatus::inProgress(1, 2));
    newEntries();
    // The waiting execution keeps the guide alive after its owner lets go.
    guide.reset();
    EXPECT_FALSE(watched.expired());
  });
  EXPECT_EQ(error.code(), boost::asio::error::operation_aborted);
  const std::string description = error.what();
  EXPECT_EQ(newEntries(), (std::vector<LogEntry>{{kLogger, err, "❌ Completion execution failed: " + description},
                                                 statusLine(CompletionStatus::hasOptionalItems(1))}));
  EXPECT_TRUE(watched.expired());
}

TEST_F(AggregateCompletionGuideTest, ObserversOfTheStatusHearEveryWriteAndItemChanges) {
  std::vector<CompletionStatus> statuses;
  auto recording = recordStatuses(statuses);
  bool itemsChanged = false;
  withObservationTracking([&] { return guide->requiredItems(); }, [&] { itemsChanged = true; });

  add("app", {item("r", ItemStatus::missing(), Priority::required)});
  guide->remove("ghost");  // the same verdict is announced again

  EXPECT_TRUE(itemsChanged);
  EXPECT_EQ(statuses,
            (std::vector<CompletionStatus>{CompletionStatus::inProgress(0, 1), CompletionStatus::inProgress(0, 1)}));
}

// Resource limits: 1,000 items for each of ten entities; every derived figure still adds up.
TEST_F(AggregateCompletionGuideTest, ThousandItemsPerEntityKeepEveryCountAndOrder) {
  constexpr int kEntities = 10;
  constexpr int kItems = 1000;
  const auto itemsOf = [](int entity, bool allDone) {
    std::vector<CompletionItem> items;
    for (int i = 0; i < kItems; ++i) {
      const bool done = allDone || i % 2 == 0;
      items.push_back(item("e" + std::to_string(entity) + "-" + std::to_string(i),
                           done ? ItemStatus::completed() : ItemStatus::missing(),
                           i % 4 == 1 ? Priority::required : Priority::optional, "group" + std::to_string(i % 3)));
    }
    return items;
  };
  for (int entity = 0; entity < kEntities; ++entity) add("entity" + std::to_string(entity), itemsOf(entity, false));

  const auto progress = guide->completionProgress();
  EXPECT_EQ(progress.totalItems, kEntities * kItems);
  EXPECT_EQ(progress.completedItems, kEntities * kItems / 2);
  EXPECT_EQ(progress.requiredItems, kEntities * kItems / 4);
  EXPECT_EQ(guide->requiredItems().size(), std::size_t{kEntities * kItems / 4});
  EXPECT_EQ(guide->optionalItems().size(), std::size_t{kEntities * kItems * 3 / 4});
  EXPECT_DOUBLE_EQ(guide->completionPercentage(), 0.5);
  EXPECT_EQ(guide->getItems("entity3").size(), std::size_t{kItems});
  EXPECT_EQ(guide->getItems("entity3")[999].id, "e3-999");
  const auto groups = guide->getItemsByCategory();
  ASSERT_EQ(groups.size(), 3u);
  EXPECT_EQ(groups.at("group0").size(), std::size_t{kEntities * 334});
  EXPECT_EQ(groups.at("group0").front().id, "e0-0");
  EXPECT_EQ(guide->entitiesWithIncompleteItems().size(), std::size_t{kEntities});
  // Item 1 of the first entity: the first open required item.
  EXPECT_EQ(guide->nextActionItem()->id, "e0-1");
  EXPECT_FALSE(guide->canComplete());

  // Every entity finished, one removed: the figures follow.
  for (int entity = 0; entity < kEntities; ++entity) add("entity" + std::to_string(entity), itemsOf(entity, true));
  guide->remove("entity0");
  EXPECT_EQ(guide->completionProgress().totalItems, (kEntities - 1) * kItems);
  EXPECT_EQ(guide->completionProgress().completedItems, (kEntities - 1) * kItems);
  EXPECT_TRUE(guide->entitiesWithIncompleteItems().empty());
  EXPECT_EQ(guide->nextActionItem(), std::nullopt);
  EXPECT_TRUE(guide->canComplete());
}

}  // namespace
}  // namespace corvane
