#include "corvane/coordination/pure_swift_ui_completion_guide.hpp"

#include "corvane/completion/completion_error.hpp"
#include "corvane/testing/captured_log.hpp"
#include "corvane/testing/recording_feature.hpp"
#include "corvane/testing/test_main_loop.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

namespace corvane {
namespace {

using Priority = CompletionItem::Priority;
using ItemStatus = CompletionItem::CompletionStatus;

CompletionItem item(std::string id, ItemStatus status, Priority priority) {
  return CompletionItem(std::move(id), "Title", "Description", std::move(status), priority, std::nullopt);
}

// completed, total, required, optional and blocked items.
std::array<std::int64_t, 5> countsOf(const CompletionProgress& p) {
  return {p.completedItems, p.totalItems, p.requiredItems, p.optionalItems, p.blockedItems};
}

std::vector<std::string> idsOf(const std::vector<CompletionItem>& items) {
  std::vector<std::string> ids;
  for (const auto& found : items) ids.push_back(found.id);
  return ids;
}

// A feature whose checklist the test sets, counting how often it is asked for it.
class ItemsFeature final : public testing::RecordingFeature {
 public:
  explicit ItemsFeature(std::string id, std::vector<CompletionItem> initialItems = {})
      : RecordingFeature(std::move(id), std::make_shared<testing::Journal>()), items(std::move(initialItems)) {}

  std::vector<CompletionItem> createCompletionItems() const override {
    ++requests;
    return items;
  }

  std::vector<CompletionItem> items;
  mutable int requests = 0;
};

class PureSwiftUICompletionGuideTest : public ::testing::Test {
 protected:
  static PureSwiftUICompletionGuide guideOver(std::vector<std::shared_ptr<ItemsFeature>> features) {
    return PureSwiftUICompletionGuide({features.begin(), features.end()});
  }

  // The error `executeCompletion()` fails with, or nothing when it succeeds.
  std::optional<CompletionError::Kind> executionFailure(PureSwiftUICompletionGuide& guide) {
    try {
      loop.run(guide.executeCompletion());
      return std::nullopt;
    } catch (const CompletionError& error) {
      return error.kind();
    }
  }

  testing::TestMainLoop loop;
};

TEST_F(PureSwiftUICompletionGuideTest, WithoutItemsNothingHasStartedAndCompletionSucceeds) {
  auto noFeatures = guideOver({});
  auto noItems = guideOver({std::make_shared<ItemsFeature>("a"), std::make_shared<ItemsFeature>("b")});
  for (auto* guide : {&noFeatures, &noItems}) {
    EXPECT_EQ(guide->completionStatus(), CompletionStatus::notStarted());
    EXPECT_TRUE(guide->canComplete());
    EXPECT_EQ(countsOf(guide->completionProgress()), (std::array<std::int64_t, 5>{0, 0, 0, 0, 0}));
    EXPECT_EQ(executionFailure(*guide), std::nullopt);
  }
}

TEST_F(PureSwiftUICompletionGuideTest, StatusLooksAtRequiredItemsOnly) {
  auto feature = std::make_shared<ItemsFeature>("a");
  auto guide = guideOver({feature});

  feature->items = {item("o", ItemStatus::missing(), Priority::optional),
                    item("r", ItemStatus::missing(), Priority::recommended)};
  EXPECT_EQ(guide.completionStatus(), CompletionStatus::notStarted());
  EXPECT_TRUE(guide.canComplete());

  feature->items = {item("r1", ItemStatus::completed(), Priority::required),
                    item("c", ItemStatus::missing(), Priority::critical),
                    item("o", ItemStatus::blocked("waiting"), Priority::optional)};
  EXPECT_EQ(guide.completionStatus(), CompletionStatus::inProgress(1, 2));
  EXPECT_FALSE(guide.canComplete());

  feature->items = {item("r", ItemStatus::completed(), Priority::required),
                    item("c", ItemStatus::completed(), Priority::critical),
                    item("o", ItemStatus::missing(), Priority::optional),
                    item("b", ItemStatus::blocked("waiting"), Priority::recommended)};
  EXPECT_EQ(guide.completionStatus(), CompletionStatus::readyForSubmission());
  EXPECT_TRUE(guide.canComplete());
  EXPECT_EQ(executionFailure(guide), std::nullopt);

  // A blocked required item is not done either.
  feature->items = {item("r", ItemStatus::blocked("no icon"), Priority::required)};
  EXPECT_FALSE(guide.canComplete());
  EXPECT_EQ(executionFailure(guide), CompletionError::Kind::requirementsNotMet);
}

TEST_F(PureSwiftUICompletionGuideTest, ProgressCountsEverythingButBlockedItems) {
  auto guide = guideOver({std::make_shared<ItemsFeature>(
      "a", std::vector{item("r1", ItemStatus::completed(), Priority::required),
                       item("r2", ItemStatus::blocked("no icon"), Priority::required),
                       item("o", ItemStatus::blocked("no screenshots"), Priority::optional),
                       item("n", ItemStatus::completed(), Priority::recommended)})});
  EXPECT_EQ(countsOf(guide.completionProgress()), (std::array<std::int64_t, 5>{2, 4, 2, 2, 0}));
  EXPECT_EQ(guide.completionStatus(), CompletionStatus::inProgress(1, 2));
}

TEST_F(PureSwiftUICompletionGuideTest, ItemsFollowFeatureOrderAndAreSplitByPriority) {
  auto guide = guideOver(
      {std::make_shared<ItemsFeature>("a", std::vector{item("a-opt", ItemStatus::missing(), Priority::optional),
                                                       item("a-crit", ItemStatus::missing(), Priority::critical)}),
       std::make_shared<ItemsFeature>("b", std::vector{item("b-req", ItemStatus::missing(), Priority::required),
                                                       item("b-rec", ItemStatus::missing(), Priority::recommended)})});
  EXPECT_EQ(idsOf(guide.requiredItems()), (std::vector<std::string>{"a-crit", "b-req"}));
  EXPECT_EQ(idsOf(guide.optionalItems()), (std::vector<std::string>{"a-opt", "b-rec"}));
}

TEST_F(PureSwiftUICompletionGuideTest, EveryReadAsksTheFeaturesAfresh) {
  auto feature = std::make_shared<ItemsFeature>("a", std::vector{item("r", ItemStatus::missing(), Priority::required)});
  auto guide = guideOver({feature});
  EXPECT_EQ(guide.completionStatus(), CompletionStatus::inProgress(0, 1));
  const int afterFirstRead = feature->requests;
  EXPECT_GE(afterFirstRead, 1);

  feature->items.front().status = ItemStatus::completed();
  EXPECT_EQ(guide.completionStatus(), CompletionStatus::readyForSubmission());
  EXPECT_GT(feature->requests, afterFirstRead);
}

TEST_F(PureSwiftUICompletionGuideTest, RefreshAndExecutionChangeNothingAndLogNothing) {
  testing::CapturedLog log;
  auto feature = std::make_shared<ItemsFeature>("a", std::vector{item("r", ItemStatus::missing(), Priority::required)});
  auto guide = guideOver({feature});
  loop.run(guide.refreshCompletion());
  EXPECT_EQ(executionFailure(guide), CompletionError::Kind::requirementsNotMet);
  EXPECT_EQ(guide.completionStatus(), CompletionStatus::inProgress(0, 1));
  EXPECT_EQ(feature->items.front().status, ItemStatus::missing());
  EXPECT_TRUE(log.entries().empty());
}

}  // namespace
}  // namespace corvane
