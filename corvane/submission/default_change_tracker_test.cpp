#include "corvane/submission/default_change_tracker.hpp"

#include "corvane/testing/default_change_tracker_access.hpp"
#include "corvane/testing/recording_feature.hpp"
#include "corvane/testing/test_main_loop.hpp"
#include "corvane/testing/thrown.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace corvane {
namespace {

using testing::Journal;
using testing::RecordingFeature;

struct SaveFailure : std::runtime_error {
  SaveFailure(const std::string& message, int errorCode) : std::runtime_error(message), code(errorCode) {}
  int code;
};

class DefaultChangeTrackerTest : public ::testing::Test {
 protected:
  std::shared_ptr<RecordingFeature> feature(std::string id, bool changed = false, std::string description = {}) {
    return std::make_shared<RecordingFeature>(std::move(id), journal, changed, std::move(description));
  }

  static std::shared_ptr<DefaultChangeTracker> tracker(std::vector<std::shared_ptr<SubmissionFeature>> features) {
    return testing::DefaultChangeTrackerAccess::make(std::move(features));
  }

  std::shared_ptr<Journal> journal = std::make_shared<Journal>();
  testing::TestMainLoop loop;
};

TEST_F(DefaultChangeTrackerTest, WithoutEntitiesThereIsNothingToSubmit) {
  const auto empty = tracker({});
  EXPECT_FALSE(empty->hasUnsavedChanges());
  EXPECT_FALSE(empty->canSubmit());
  EXPECT_FALSE(empty->isSubmitting());
  EXPECT_EQ(empty->changeDescription(), "No changes");
  loop.run(empty->submit());
  empty->reset();
  empty->discard();
  EXPECT_TRUE(journal->empty());
}

TEST_F(DefaultChangeTrackerTest, HasUnsavedChangesStopsAtTheFirstChangedEntity) {
  auto first = feature("a");
  auto second = feature("b", true);
  auto third = feature("c", true);
  const auto changes = tracker({first, second, third});
  EXPECT_TRUE(changes->hasUnsavedChanges());
  EXPECT_EQ(first->unsavedChangeReads, 1);
  EXPECT_EQ(second->unsavedChangeReads, 1);
  EXPECT_EQ(third->unsavedChangeReads, 0);
  EXPECT_TRUE(changes->canSubmit());

  second->setChanged(false);
  third->setChanged(false);
  EXPECT_FALSE(changes->hasUnsavedChanges());
  EXPECT_FALSE(changes->canSubmit());
}

TEST_F(DefaultChangeTrackerTest, DescriptionJoinsTheNonEmptyTextsOfChangedEntities) {
  const auto changes = tracker({feature("a", true, "Name"), feature("b", false, "Unchanged"), feature("c", true, ""),
                                feature("d", true, "Subtitle")});
  EXPECT_EQ(changes->changeDescription(), "Name, Subtitle");
  EXPECT_EQ(tracker({feature("a", true, "Only")})->changeDescription(), "Only");

  // A change with an empty description still reads as no changes.
  const auto unnamed = tracker({feature("a", true, ""), feature("b", false, "Unchanged")});
  EXPECT_TRUE(unnamed->hasUnsavedChanges());
  EXPECT_EQ(unnamed->changeDescription(), "No changes");
}

TEST_F(DefaultChangeTrackerTest, SubmitSavesChangedEntitiesOneAfterAnother) {
  auto first = feature("a", true);
  auto unchanged = feature("b");
  auto third = feature("c", true);
  const auto changes = tracker({first, unchanged, third});
  loop.run(changes->submit());
  EXPECT_EQ(*journal, (Journal{"save a", "saved a", "save c", "saved c"}));
  EXPECT_EQ(first->saves, 1);
  EXPECT_EQ(unchanged->saves, 0);
  EXPECT_EQ(third->saves, 1);
  EXPECT_FALSE(changes->hasUnsavedChanges());
}

TEST_F(DefaultChangeTrackerTest, SubmitStopsAtTheFirstFailureAndPassesItOnUnchanged) {
  auto first = feature("a", true);
  auto second = feature("b", true);
  auto third = feature("c", true);
  second->saveFailure = std::make_exception_ptr(SaveFailure("disk full", 28));
  const auto changes = tracker({first, second, third});
  const auto failure = testing::thrown<SaveFailure>([&] { loop.run(changes->submit()); });
  ASSERT_TRUE(failure);
  EXPECT_STREQ(failure->what(), "disk full");
  EXPECT_EQ(failure->code, 28);
  EXPECT_EQ(*journal, (Journal{"save a", "saved a", "save b"}));
  EXPECT_EQ(first->saves, 1);
  EXPECT_FALSE(first->hasUnsavedChanges());
  EXPECT_EQ(second->saves, 0);
  EXPECT_TRUE(second->hasUnsavedChanges());
  EXPECT_EQ(third->saves, 0);
  EXPECT_TRUE(third->hasUnsavedChanges());
}

TEST_F(DefaultChangeTrackerTest, SubmissionKeepsItsEntitiesAlive) {
  auto first = feature("a", true);
  std::weak_ptr<RecordingFeature> watched = first;
  auto changes = tracker({std::move(first)});
  auto operation = changes->submit();
  changes.reset();
  ASSERT_FALSE(watched.expired());
  loop.run(std::move(operation));
  EXPECT_EQ(*journal, (Journal{"save a", "saved a"}));
  EXPECT_TRUE(watched.expired());
}

TEST_F(DefaultChangeTrackerTest, ResetAndDiscardDiscardEveryEntityInOrder) {
  const auto changes = tracker({feature("a", true), feature("b"), feature("c", true)});
  changes->reset();
  EXPECT_EQ(*journal, (Journal{"discard a", "discard b", "discard c"}));
  EXPECT_FALSE(changes->hasUnsavedChanges());
  journal->clear();
  changes->discard();
  EXPECT_EQ(*journal, (Journal{"discard a", "discard b", "discard c"}));
}

TEST(DefaultChangeTrackerDeathTest, RefusesNullEntities) {
  EXPECT_DEATH((void)testing::DefaultChangeTrackerAccess::make({nullptr}), "precondition failed: .*non-null");
}

}  // namespace
}  // namespace corvane
