#include "corvane/store/listing_submission.hpp"

#include "corvane/store/store_facts.hpp"
#include "corvane/store/store_listing.hpp"
#include "corvane/testing/temporary_folder.hpp"
#include "corvane/testing/test_main_loop.hpp"
#include "corvane/testing/thrown.hpp"
#include "corvane/tracking/change_tracking_error.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace corvane::store {
namespace {

using corvane::testing::TemporaryFolder;
using corvane::testing::writeFile;

// The folder's one submission entity follows the listing's tracker in every respect.
TEST(ListingSubmissionTest, StandsForTheListingsUnsavedEdits) {
  static const StoreFacts facts = StoreFacts::load(CORVANE_STORE_RESOURCES, StoreId::appStore);
  TemporaryFolder temporary;
  writeFile(temporary.path() / "en-US" / "name.txt", "Notes\n");
  writeFile(temporary.path() / "de-DE" / "name.txt", "Notizen\n");
  StoreListing listing(temporary.path(), facts, {}, RuleContext{.firstVersion = true, .currentYear = 2026});
  ListingSubmission submission("metadata", {listing.tracker()});
  EXPECT_EQ(submission.entityId(), "metadata");
  EXPECT_FALSE(submission.hasUnsavedChanges());
  EXPECT_EQ(submission.changeDescription(), "No changes to submit");

  listing.edit("de-DE", ListingField::name, "Notizen Plus");
  EXPECT_TRUE(submission.hasUnsavedChanges());
  EXPECT_EQ(submission.changeDescription(), "Store listing (de-DE) has changes");
  submission.discardChanges();
  EXPECT_FALSE(submission.hasUnsavedChanges());
  EXPECT_EQ(listing.entity("de-DE")->text(ListingField::name), "Notizen");

  // Submitting saves through the tracker; the shared entity lacks required files, so a
  // submission is blocked, and says so.
  listing.edit("de-DE", ListingField::name, "Notizen Plus");
  corvane::testing::TestMainLoop loop;
  EXPECT_THAT(corvane::testing::thrownMessage<ChangeTrackingError>([&] { loop.run(submission.saveChanges()); }),
              ::testing::StartsWith("Cannot submit: "));
  EXPECT_TRUE(submission.hasUnsavedChanges());
}

}  // namespace
}  // namespace corvane::store
