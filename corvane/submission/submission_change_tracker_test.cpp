#include "corvane/submission/submission_change_tracker.hpp"

#include "corvane/submission/submission_feature_type.hpp"
#include "corvane/testing/recording_feature.hpp"
#include "corvane/testing/test_main_loop.hpp"
#include "corvane/testing/thrown.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace corvane {
namespace {

using testing::Journal;
using testing::RecordingFeature;

// Features that lack one of the two self-typed requirements, or type it over another class.
struct FeatureWithTracker : RecordingFeature {
  using RecordingFeature::RecordingFeature;
  SubmissionChangeTracker<FeatureWithTracker> createChangeTracker();
};
struct CompleteFeature : FeatureWithTracker {
  using FeatureWithTracker::FeatureWithTracker;
  std::vector<SubmissionValidationRule<CompleteFeature>> createValidationRules() const;
  SubmissionChangeTracker<CompleteFeature> createChangeTracker();
};
struct FeatureWithForeignRules : FeatureWithTracker {
  using FeatureWithTracker::FeatureWithTracker;
  std::vector<SubmissionValidationRule<FeatureWithTracker>> createValidationRules() const;
};

static_assert(SubmissionFeatureType<CompleteFeature>);
static_assert(!SubmissionFeatureType<RecordingFeature>);
static_assert(!SubmissionFeatureType<FeatureWithTracker>);
static_assert(!SubmissionFeatureType<FeatureWithForeignRules>);

class SubmissionChangeTrackerTest : public ::testing::Test {
 protected:
  std::shared_ptr<Journal> journal = std::make_shared<Journal>();
  std::shared_ptr<RecordingFeature> feature = std::make_shared<RecordingFeature>("app", journal);
  testing::TestMainLoop loop;
};

TEST_F(SubmissionChangeTrackerTest, CopiesTheEntityIdButReadsEverythingElseLive) {
  const SubmissionChangeTracker tracker(feature);
  feature->setEntityId("renamed");
  EXPECT_EQ(tracker.entityId(), "app");

  EXPECT_FALSE(tracker.hasUnsavedChanges());
  EXPECT_FALSE(tracker.canSubmit());
  feature->setChanged(true);
  feature->setDescription("Name");
  EXPECT_TRUE(tracker.hasUnsavedChanges());
  EXPECT_TRUE(tracker.canSubmit());
  EXPECT_EQ(tracker.changeDescription(), "Name");
}

TEST_F(SubmissionChangeTrackerTest, SubmitAndDiscardReachTheEntity) {
  feature->setChanged(true);
  const SubmissionChangeTracker tracker(feature);
  loop.run(tracker.submit());
  EXPECT_EQ(feature->saves, 1);
  tracker.discard();
  EXPECT_EQ(*journal, (Journal{"save app", "saved app", "discard app"}));
}

TEST_F(SubmissionChangeTrackerTest, SubmitPassesTheSaveErrorOnUnchanged) {
  feature->saveFailure = std::make_exception_ptr(std::out_of_range("no room"));
  const SubmissionChangeTracker tracker(feature);
  EXPECT_EQ(testing::thrownMessage<std::out_of_range>([&] { loop.run(tracker.submit()); }), "no room");
  EXPECT_EQ(feature->saves, 0);
}

TEST_F(SubmissionChangeTrackerTest, ASubmissionOutlivesItsTracker) {
  std::weak_ptr<RecordingFeature> watched = feature;
  auto tracker = std::make_unique<SubmissionChangeTracker<RecordingFeature>>(std::move(feature));
  auto operation = tracker->submit();
  tracker.reset();
  ASSERT_FALSE(watched.expired());
  loop.run(std::move(operation));
  EXPECT_EQ(*journal, (Journal{"save app", "saved app"}));
}

TEST(SubmissionChangeTrackerDeathTest, RefusesANullEntity) {
  EXPECT_DEATH((void)SubmissionChangeTracker<RecordingFeature>(nullptr), "precondition failed: .*needs an entity");
}

}  // namespace
}  // namespace corvane
