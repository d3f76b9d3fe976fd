// The checker's choice of store: each layout judged by its own store's rules.
#include "checker.hpp"

#include "corvane/resources/corvane_resources.hpp"
#include "corvane/store/input_error.hpp"
#include "corvane/testing/temporary_folder.hpp"
#include "corvane/testing/thrown.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace corvane::cli {
namespace {

namespace fs = std::filesystem;
using corvane::testing::TemporaryFolder;
using corvane::testing::thrownMessage;
using corvane::testing::writeFile;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

// "<locale>: <rule>" for every finding of the report, locales in order, then the shared ones.
std::vector<std::string> findingsOf(const CheckReport& report) {
  std::vector<std::string> found;
  for (const auto& locale : report.locales) {
    for (const auto& finding : locale.findings) found.push_back(locale.locale + ": " + finding.rule);
  }
  for (const auto& finding : report.shared.findings) found.push_back("shared: " + finding.rule);
  return found;
}

CheckReport check(const fs::path& directory, std::string store = "auto") {
  CheckOptions options;
  options.directory = directory;
  options.currentYear = 2026;
  options.store = std::move(store);
  return Checker(options).report();
}

// A repository keeping both stores' listings side by side, each with the same planted
// faults in its own words: "Free" in the name or title, and a name or title one character
// over the limit, which both stores set at 30.
void writeBothLayouts(const fs::path& metadata) {
  const fs::path ios = metadata / "ios";
  writeFile(ios / "copyright.txt", "2026 Larkspur Labs\n");
  writeFile(ios / "primary_category.txt", "PRODUCTIVITY\n");
  for (const auto* file : {"first_name.txt", "last_name.txt"}) writeFile(ios / "review_information" / file, "Ada\n");
  writeFile(ios / "review_information/phone_number.txt", "+44 20 7946 0000\n");
  writeFile(ios / "review_information/email_address.txt", "review@larkspur-labs.app\n");
  writeFile(ios / "en-US/name.txt", "Corvane Notes Free\n");
  writeFile(ios / "en-US/subtitle.txt", "Plan your day\n");
  writeFile(ios / "en-US/description.txt", "Notes and checklists.\n");
  writeFile(ios / "en-US/keywords.txt", "planner,checklist\n");
  writeFile(ios / "en-US/promotional_text.txt", "Now with reminders.\n");
  writeFile(ios / "en-US/release_notes.txt", "Fixes.\n");
  writeFile(ios / "en-US/support_url.txt", "https://larkspur-labs.app/support\n");
  writeFile(ios / "en-US/marketing_url.txt", "https://larkspur-labs.app\n");
  writeFile(ios / "en-US/privacy_url.txt", "https://larkspur-labs.app/privacy\n");
  writeFile(ios / "de-DE/name.txt", std::string(31, 'n') + "\n");
  writeFile(ios / "de-DE/description.txt", "Notizen.\n");

  const fs::path android = metadata / "android";
  writeFile(android / "en-US/title.txt", "Corvane Notes Free\n");
  writeFile(android / "en-US/short_description.txt", "Notes and checklists.\n");
  writeFile(android / "en-US/full_description.txt", "Notes and checklists for Android.\n");
  writeFile(android / "en-US/video.txt", "https://www.youtube.com/watch?v=Xk3n9Q\n");
  writeFile(android / "en-US/changelogs/7.txt", "Fixes.\n");
  writeFile(android / "de-DE/title.txt", std::string(31, 't') + "\n");
  writeFile(android / "de-DE/short_description.txt", "Notizen.\n");
  writeFile(android / "de-DE/full_description.txt", "Notizen.\n");
  writeFile(android / "de-DE/video.txt", "https://www.youtube.com/watch?v=Xk3n9Q\n");
  writeFile(android / "de-DE/changelogs/default.txt", "Fehlerbehebungen.\n");
}

TEST(CheckerStoreTest, BothLayoutsSideBySideAreEachJudgedByTheirOwnStore) {
  const TemporaryFolder repository;
  const fs::path metadata = repository.path() / "fastlane/metadata";
  writeBothLayouts(metadata);

  CheckOptions ios;
  ios.directory = metadata / "ios";
  ios.currentYear = 2026;
  const Checker appStore(ios);
  EXPECT_EQ(appStore.store(), store::StoreId::appStore);
  EXPECT_THAT(findingsOf(appStore.report()),
              ElementsAre("de-DE: name.length", "de-DE: keywords.required", "de-DE: release-notes.required",
                          "de-DE: support-url.required", "de-DE: privacy-url.required", "de-DE: subtitle.missing",
                          "de-DE: promotional-text.missing", "de-DE: marketing-url.missing", "en-US: content.claim"));

  CheckOptions android;
  android.directory = metadata / "android";
  android.currentYear = 2026;
  const Checker play(android);
  EXPECT_EQ(play.store(), store::StoreId::googlePlay);
  EXPECT_THAT(findingsOf(play.report()), ElementsAre("de-DE: title.length", "en-US: title.claim"))
      << "Play's own rules: no App Store field is required, and Android is no other platform here";
}

TEST(CheckerStoreTest, AnExplicitStoreWinsOverDetectionAndAnUnknownOneIsRefused) {
  const TemporaryFolder repository;
  writeBothLayouts(repository.path());
  EXPECT_THAT(findingsOf(check(repository.path() / "android", "play")),
              ElementsAre("de-DE: title.length", "en-US: title.claim"));
  // The App Store's reading of a Play folder finds none of its files and says so.
  EXPECT_THAT(thrownMessage<store::InputError>([&] { (void)check(repository.path() / "android", "appstore"); }),
              HasSubstr("locale folder holds none of the metadata files"));
  EXPECT_EQ(thrownMessage<store::InputError>([&] { (void)check(repository.path() / "android", "googleplay"); }),
            "'googleplay' is not a store: choose appstore, play or auto");
}

TEST(CheckerStoreTest, ThePlayConfigurationIsCheckedAgainstPlaysRules) {
  const TemporaryFolder folder;
  writeBothLayouts(folder.path());
  const fs::path android = folder.path() / "android";
  writeFile(android / "en-US/title.txt", "NOTES PLANNER\n");
  EXPECT_THAT(findingsOf(check(android)), ElementsAre("de-DE: title.length", "en-US: title.capitals"));

  writeFile(android / ".corvane.toml", "capital-brands = [\"NOTES PLANNER\"]\n[rules]\n\"title.length\" = \"off\"\n");
  EXPECT_THAT(findingsOf(check(android)), ElementsAre());

  // An App Store rule means nothing to a Play listing: the configuration names it an error.
  writeFile(android / ".corvane.toml", "[rules]\n\"keywords.spacing\" = \"off\"\n");
  EXPECT_THAT(thrownMessage<store::ConfigurationError>([&] { (void)check(android); }), HasSubstr("keywords.spacing"));
}

TEST(CheckerStoreTest, ThePlaySampleShowsEveryReportGroup) {
  CheckOptions options;
  options.directory = CorvaneResources::samplePlayMetadataDirectory();
  options.currentYear = 2026;
  const Checker checker(options);
  EXPECT_EQ(checker.store(), store::StoreId::googlePlay);
  const auto report = checker.report();
  EXPECT_THAT(findingsOf(report), ElementsAre("de-DE: short-description.length", "de-DE: video.missing",
                                              "en-US: title.emoji", "en-US: title.claim", "ja-JP: changelog.missing"));
  EXPECT_FALSE(report.canComplete);
}

}  // namespace
}  // namespace corvane::cli
