#include "corvane/submission/change_tracking_field.hpp"

#include "corvane/observation/observation_signal.hpp"
#include "corvane/observation/observation_tracking.hpp"
#include "corvane/testing/captured_lines.hpp"

#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace corvane {
namespace {

using Lines = std::vector<std::string>;

class ChangeTrackingFieldTest : public ::testing::Test {
 protected:
  testing::CapturedLines output;
  ChangeTrackingField<std::string> field{"a"};
};

TEST_F(ChangeTrackingFieldTest, StartsUnchangedAndSilent) {
  EXPECT_EQ(field.value(), "a");
  EXPECT_EQ(field.savedValue(), "a");
  EXPECT_FALSE(field.hasUnsavedChanges());
  EXPECT_TRUE(output.lines().empty());
}

TEST_F(ChangeTrackingFieldTest, EveryAssignmentPrintsTheValueAndFlag) {
  field.setValue("a");
  field.setValue("b c");
  field.setValue("");
  field.setValue("a");
  EXPECT_EQ(output.lines(), (Lines{
                                "🔄 ChangeTrackingField changed: a (hasUnsavedChanges: false)",
                                "🔄 ChangeTrackingField changed: b c (hasUnsavedChanges: true)",
                                "🔄 ChangeTrackingField changed:  (hasUnsavedChanges: true)",
                                "🔄 ChangeTrackingField changed: a (hasUnsavedChanges: false)",
                            }));
  EXPECT_FALSE(field.hasUnsavedChanges());
}

TEST_F(ChangeTrackingFieldTest, DiscardRestoresTheSavedValueThroughAnAssignment) {
  field.setValue("b");
  EXPECT_TRUE(field.hasUnsavedChanges());
  field.discardChanges();
  EXPECT_EQ(field.value(), "a");
  EXPECT_EQ(field.savedValue(), "a");
  EXPECT_FALSE(field.hasUnsavedChanges());
  EXPECT_EQ(output.lines(), (Lines{
                                "🔄 ChangeTrackingField changed: b (hasUnsavedChanges: true)",
                                "🔄 ChangeTrackingField changed: a (hasUnsavedChanges: false)",
                            }));
}

TEST_F(ChangeTrackingFieldTest, MarkAsSavedMovesTheDiscardTarget) {
  field.setValue("b");
  output.clear();
  field.markAsSaved();
  EXPECT_TRUE(output.lines().empty());
  EXPECT_EQ(field.savedValue(), "b");
  EXPECT_FALSE(field.hasUnsavedChanges());

  field.setValue("c");
  field.discardChanges();
  EXPECT_EQ(field.value(), "b");
  EXPECT_FALSE(field.hasUnsavedChanges());
  EXPECT_EQ(output.lines().back(), "🔄 ChangeTrackingField changed: b (hasUnsavedChanges: false)");
}

TEST_F(ChangeTrackingFieldTest, AnnouncesTheKeysEachOperationWrites) {
  std::vector<std::string> announced;
  std::vector<ObservationConnection> connections;
  for (const char* key : {"value", "savedValue", "hasUnsavedChanges"}) {
    connections.push_back(field.observe(key, [&announced, key] { announced.push_back(key); }));
  }
  field.setValue("a");
  EXPECT_EQ(announced, (std::vector<std::string>{"value", "hasUnsavedChanges"}));
  announced.clear();
  field.markAsSaved();
  EXPECT_EQ(announced, (std::vector<std::string>{"savedValue", "hasUnsavedChanges"}));
  announced.clear();
  field.discardChanges();
  EXPECT_EQ(announced, (std::vector<std::string>{"value", "hasUnsavedChanges", "hasUnsavedChanges"}));
}

TEST_F(ChangeTrackingFieldTest, AnObserverThatThrowsReachesTheWriterAfterTheWrite) {
  auto connection = field.observe("value", [] { throw std::runtime_error("observer failed"); });
  EXPECT_THROW(field.setValue("b"), std::runtime_error);
  EXPECT_EQ(field.value(), "b");
  EXPECT_TRUE(field.hasUnsavedChanges());
}

TEST_F(ChangeTrackingFieldTest, ReadsAreTrackedForObservers) {
  int changes = 0;
  withObservationTracking([&] { return field.hasUnsavedChanges(); }, [&] { ++changes; });
  field.setValue("b");
  EXPECT_EQ(changes, 1);
}

// Whatever the operations and whenever an observer looks, the flag agrees with the values.
TEST_F(ChangeTrackingFieldTest, FlagAlwaysEqualsValueDiffersFromSaved) {
  int checks = 0;
  auto check = [&] {
    ++checks;
    EXPECT_EQ(field.hasUnsavedChanges(), field.value() != field.savedValue())
        << "value '" << field.value() << "' saved '" << field.savedValue() << "'";
  };
  std::vector<ObservationConnection> connections;
  for (const char* key : {"value", "savedValue", "hasUnsavedChanges"}) connections.push_back(field.observe(key, check));
  auto beforeEveryWrite = field.objectWillChange().connect(check);

  std::mt19937 random(12345);
  const std::vector<std::string> values{"a", "b", "c"};
  for (int step = 0; step < 300; ++step) {
    switch (random() % 3) {
      case 0:
        field.setValue(values[random() % values.size()]);
        break;
      case 1:
        field.markAsSaved();
        break;
      default:
        field.discardChanges();
        break;
    }
    check();
  }
  beforeEveryWrite.disconnect();
  EXPECT_GT(checks, 300);
}

TEST(ChangeTrackingField, RendersOtherValueTypesWithDescribe) {
  testing::CapturedLines output;
  ChangeTrackingField<int> count{1};
  count.setValue(42);
  ChangeTrackingField<std::vector<std::string>> keywords{{}};
  keywords.setValue({"a", "b"});
  EXPECT_EQ(output.lines(), (Lines{
                                "🔄 ChangeTrackingField changed: 42 (hasUnsavedChanges: true)",
                                "🔄 ChangeTrackingField changed: [\"a\", \"b\"] (hasUnsavedChanges: true)",
                            }));
}

}  // namespace
}  // namespace corvane
