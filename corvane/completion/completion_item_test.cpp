#include "corvane/completion/completion_item.hpp"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <functional>
#include <tuple>
#include <vector>

namespace corvane {
namespace {

using Priority = CompletionItem::Priority;
using Status = CompletionItem::CompletionStatus;

TEST(CompletionItemPriority, RawValuesAreOneToFourInDeclarationOrderAndNothingElseParses) {
  const auto all = CompletionItem::allPriorities();
  EXPECT_EQ(all, (std::array{Priority::optional, Priority::recommended, Priority::required, Priority::critical}));
  for (std::size_t i = 0; i < all.size(); ++i) {
    const int raw = static_cast<int>(i) + 1;
    EXPECT_EQ(rawValue(all[i]), raw);
    EXPECT_EQ(CompletionItem::priorityFromRawValue(raw), all[i]) << raw;
  }
  for (int raw : {0, 5, -1, -4, 100, INT_MIN, INT_MAX}) {
    EXPECT_FALSE(CompletionItem::priorityFromRawValue(raw)) << raw;
  }
}

TEST(CompletionItemPriority, OrdersByDeclarationAndGroupsIntoRequiredAndOptional) {
  const auto all = CompletionItem::allPriorities();
  for (std::size_t i = 0; i < all.size(); ++i) {
    for (std::size_t j = 0; j < all.size(); ++j) {
      EXPECT_EQ(all[i] < all[j], i < j) << i << " vs " << j;
    }
  }
  // The upper two are required.
  for (std::size_t i = 0; i < all.size(); ++i) EXPECT_EQ(isRequired(all[i]), i >= 2) << i;
}

TEST(CompletionItemStatus, EachCaseAnswersOnlyItsOwnQuery) {
  const std::vector<Status> statuses{Status::blocked("r"), Status::completed(), Status::missing(), Status::optional(),
                                     Status::inProgress()};
  for (std::size_t i = 0; i < statuses.size(); ++i) {
    const Status& status = statuses[i];
    const std::vector<bool> answers{status.isBlocked(), status.isCompleted(), status.isMissing(), status.isOptional(),
                                    status.isInProgress()};
    for (std::size_t j = 0; j < answers.size(); ++j) EXPECT_EQ(answers[j], i == j) << i << " query " << j;
    for (std::size_t j = 0; j < statuses.size(); ++j) EXPECT_EQ(status == statuses[j], i == j) << i << " vs " << j;
  }
  ASSERT_NE(statuses[0].getIf<Status::Blocked>(), nullptr);
  EXPECT_EQ(statuses[0].getIf<Status::Blocked>()->reason, "r");
  EXPECT_EQ(statuses[1].getIf<Status::Blocked>(), nullptr);
  // Blocked values are equal only with equal reasons.
  EXPECT_EQ(Status::blocked("needs icon"), Status::blocked("needs icon"));
  EXPECT_NE(Status::blocked("needs icon"), Status::blocked("needs name"));
  EXPECT_NE(Status::blocked(""), Status::blocked(" "));
}

CompletionItem sampleItem() {
  return CompletionItem("id", "Title", "Description", Status::blocked("reason"), Priority::required, "Category");
}

TEST(CompletionItem, KeepsItsSixFieldsInOrder) {
  const CompletionItem item = sampleItem();
  EXPECT_EQ(std::tie(item.id, item.title, item.description, item.status, item.priority, item.category),
            std::tuple("id", "Title", "Description", Status::blocked("reason"), Priority::required, "Category"));
}

TEST(CompletionItem, EqualityComparesAllSixFields) {
  EXPECT_EQ(sampleItem(), sampleItem());
  const std::vector<std::function<void(CompletionItem&)>> changes{
      [](CompletionItem& item) { item.id = "other"; },
      [](CompletionItem& item) { item.title = "other"; },
      [](CompletionItem& item) { item.description = "other"; },
      [](CompletionItem& item) { item.status = Status::blocked("another reason"); },
      [](CompletionItem& item) { item.status = Status::completed(); },
      [](CompletionItem& item) { item.priority = Priority::critical; },
      [](CompletionItem& item) { item.category = std::nullopt; },
      [](CompletionItem& item) { item.category = ""; },
  };
  for (std::size_t i = 0; i < changes.size(); ++i) {
    CompletionItem changed = sampleItem();
    changes[i](changed);
    EXPECT_NE(changed, sampleItem()) << "change " << i;
  }
}

}  // namespace
}  // namespace corvane
