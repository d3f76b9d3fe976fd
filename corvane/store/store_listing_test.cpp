#include "corvane/store/store_listing.hpp"

#include "corvane/store/input_error.hpp"
#include "corvane/store/store_facts.hpp"
#include "corvane/testing/temporary_folder.hpp"
#include "corvane/testing/thrown.hpp"
#include "corvane/tracking/unified_change_tracker.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include <sys/stat.h>

namespace corvane::store {
namespace {

namespace fs = std::filesystem;
using corvane::testing::readFile;
using corvane::testing::TemporaryFolder;
using corvane::testing::writeFile;
using ::testing::HasSubstr;

const StoreFacts& facts() {
  static const StoreFacts loaded = StoreFacts::load(CORVANE_STORE_RESOURCES);
  return loaded;
}

constexpr RuleContext kContext{.firstVersion = false, .currentYear = 2026};

std::string describeAll(const std::vector<ListingFinding>& findings) {
  std::string text;
  for (const auto& f : findings) text += f.file + ": " + f.rule + ": " + f.verdict.message + "\n";
  return text;
}

std::string inputErrorOf(const fs::path& root) {
  return corvane::testing::thrownMessage<InputError>([&] { (void)readListingFolder(root, facts()); });
}

TEST(StoreListingTest, ARealisticListingInManyScriptsHasNoFinding) {
  const StoreListing listing(fs::path(CORVANE_STORE_TESTDATA) / "realistic-listing", facts(), {}, kContext);
  EXPECT_EQ(listing.locales().size(), 6u);
  EXPECT_TRUE(listing.folderFindings().empty()) << "screenshots/ and the trade representative are no locales";
  for (const auto& locale : listing.locales()) {
    EXPECT_EQ(describeAll(locale->findings()), "") << locale->scope();
  }
  EXPECT_EQ(describeAll(listing.shared().findings()), "");
  EXPECT_TRUE(listing.plannedFixes().empty());
  EXPECT_FALSE(listing.tracker()->hasUnsavedChanges());
}

TEST(StoreListingTest, DefaultFolderStandsInAndTheReportSaysSo) {
  TemporaryFolder temporary;
  const auto root = temporary.path();
  writeFile(root / "default" / "description.txt", "Shared words.\n");
  writeFile(root / "default" / "name.txt", std::string(31, 'd') + "\n");
  writeFile(root / "en-US" / "name.txt", "Own name\n");
  writeFile(root / "de-DE" / "subtitle.txt", "Untertitel\n");
  const auto folder = readListingFolder(root, facts());
  ASSERT_EQ(folder.locales.size(), 2u);
  const auto& german = folder.locales[0];
  EXPECT_EQ(german.text(ListingField::description).value(), "Shared words.");
  EXPECT_EQ(german.text(ListingField::description).source, TextSource::defaults);
  EXPECT_EQ(german.text(ListingField::description).file, "default/description.txt");
  EXPECT_EQ(folder.locales[1].text(ListingField::name).source, TextSource::own) << "a locale's own file wins";

  StoreListing listing(root, facts(), {}, kContext);
  const auto findings = listing.locales()[0]->findings();
  EXPECT_THAT(describeAll(findings), HasSubstr("default/name.txt: name.length"));
  // The fix of a default text writes default/ once, whichever locales share it.
  const auto fixes = listing.plannedFixes();
  ASSERT_EQ(fixes.size(), 1u);
  EXPECT_EQ(fixes[0].file, "default/name.txt");
  for (const auto& fix : fixes) listing.apply(fix);
  listing.writeChanges();
  EXPECT_EQ(readFile(root / "default" / "name.txt"), std::string(30, 'd') + "\n");
  EXPECT_FALSE(fs::exists(root / "de-DE" / "name.txt"));
}

TEST(StoreListingTest, EachLocaleHasOnlyItsOwnFiles) {
  // Locales are read one after another into the same list: a locale with fewer files must
  // not see the texts of the one read before it.
  TemporaryFolder temporary;
  const auto root = temporary.path();
  for (const auto field : kLocaleFields) writeFile(root / "de-DE" / fieldFile(field), "Deutsch\n");
  writeFile(root / "en-US" / "name.txt", "Notes\n");
  const auto folder = readListingFolder(root, facts());
  ASSERT_EQ(folder.locales.size(), 2u);
  for (const auto field : kLocaleFields) {
    EXPECT_EQ(folder.locales[0].text(field).value(), "Deutsch") << fieldKey(field);
    if (field == ListingField::name) continue;
    EXPECT_EQ(folder.locales[1].text(field).text, std::nullopt) << fieldKey(field);
    EXPECT_EQ(folder.locales[1].text(field).source, TextSource::none) << fieldKey(field);
    EXPECT_EQ(folder.locales[1].text(field).file, "en-US/" + std::string(fieldFile(field))) << fieldKey(field);
  }
  EXPECT_EQ(folder.locales[1].text(ListingField::name).value(), "Notes");
}

TEST(StoreListingTest, EveryTextsPathIsItsFolderJoinedWithItsFile) {
  // Spelled exactly as `folder / file` would be, with the root given with and without a
  // final slash, for files that are there and files that are not.
  TemporaryFolder temporary;
  writeFile(temporary.path() / "de-DE" / "name.txt", "Notes\n");
  writeFile(temporary.path() / "copyright.txt", "2026 Larkspur\n");
  for (const fs::path& root : {temporary.path(), fs::path(temporary.path().native() + "/")}) {
    SCOPED_TRACE(root.native());
    const auto folder = readListingFolder(root, facts());
    ASSERT_EQ(folder.locales.size(), 1u);
    for (const auto field : kLocaleFields) {
      EXPECT_EQ(folder.locales[0].text(field).path.native(), (root / "de-DE" / fieldFile(field)).native());
    }
    for (const auto field : kSharedFields) {
      EXPECT_EQ(folder.sharedText(field).path.native(), (root / fieldFile(field)).native());
    }
    EXPECT_TRUE(folder.locales[0].text(ListingField::name).text.has_value());
    EXPECT_TRUE(folder.sharedText(ListingField::copyright).text.has_value());
  }
}

TEST(StoreListingTest, UnknownLocaleFoldersAreBlockersWithASuggestion) {
  TemporaryFolder temporary;
  const auto root = temporary.path();
  writeFile(root / "en-US" / "name.txt", "Notes");
  writeFile(root / "en-US-x1" / "name.txt", "Notes");
  writeFile(root / "en_GB" / "name.txt", "Notes");
  writeFile(root / "screenshots" / "en-US" / "shot.png", "");
  writeFile(root / "assets" / "logo.txt", "not a locale");
  const StoreListing listing(root, facts(), {}, kContext);
  ASSERT_EQ(listing.folderFindings().size(), 2u);
  EXPECT_EQ(listing.folderFindings()[0].verdict.message,
            "'en-US-x1' is not a locale the store knows; did you mean 'en-US'?");
  EXPECT_EQ(listing.folderFindings()[1].verdict.message,
            "'en_GB' is not a locale the store knows; did you mean 'en-GB'?");
  // Each refused folder blocks the submission in the shared checklist.
  std::vector<std::string> blocked;
  for (const auto& item : listing.checklist(listing.shared(), listing.shared().findings())) {
    if (item.status.isBlocked() && item.id.ends_with('/')) blocked.push_back(item.id);
  }
  EXPECT_EQ(blocked, (std::vector<std::string>{"en-US-x1/", "en_GB/"}));

  ListingConfiguration configuration;
  configuration.extraLocales = {"en-US-x1"};
  const StoreListing extended(root, facts(), configuration, kContext);
  EXPECT_EQ(extended.locales().size(), 2u) << "the configuration can add a code the list lacks";

  TemporaryFolder onlyUnknown;
  writeFile(onlyUnknown.path() / "en_US" / "name.txt", "Notes");
  EXPECT_THAT(inputErrorOf(onlyUnknown.path()), HasSubstr("no locale folders (such as en-US) found; 'en_US' is not a "
                                                          "locale code the store knows (did you mean 'en-US'?)"));
}

TEST(StoreListingTest, RefusesBadInputWithOneLineNamingTheFile) {
  TemporaryFolder temporary;
  const auto base = temporary.path();
  EXPECT_THAT(inputErrorOf(base / "missing"), HasSubstr("missing: no such folder"));
  fs::create_directories(base / "empty-locale" / "en-US");
  EXPECT_THAT(inputErrorOf(base / "empty-locale"), HasSubstr("en-US: locale folder holds none of the metadata files"));
  writeFile(base / "latin1" / "en-US" / "name.txt", "Caf\xe9 Notes");
  EXPECT_THAT(inputErrorOf(base / "latin1"), HasSubstr("en-US/name.txt: not valid UTF-8 at byte offset 3"));
  writeFile(base / "large" / "en-US" / "description.txt", std::string(kMaxFileSize + 1, 'a'));
  EXPECT_THAT(inputErrorOf(base / "large"), HasSubstr("file is 1048577 bytes, more than the 1 MiB"));
  writeFile(base / "outside.txt", "secret");
  writeFile(base / "escaping" / "en-US" / "name.txt", "Name");
  fs::create_symlink(base / "outside.txt", base / "escaping" / "copyright.txt");
  EXPECT_THAT(inputErrorOf(base / "escaping"), HasSubstr("copyright.txt: symbolic link leads outside"));
  writeFile(base / "dangling" / "en-US" / "name.txt", "Name");
  fs::create_directory_symlink("nowhere", base / "dangling" / "fr-FR");
  EXPECT_THAT(inputErrorOf(base / "dangling"), HasSubstr("dangling/fr-FR: broken symbolic link"));
  // A named pipe is refused at once rather than waited on; so is a folder in a file's place.
  fs::create_directories(base / "pipe" / "en-US");
  ASSERT_EQ(::mkfifo((base / "pipe" / "en-US" / "name.txt").c_str(), 0600), 0);
  EXPECT_THAT(inputErrorOf(base / "pipe"), HasSubstr("en-US/name.txt: not a regular file"));
  fs::create_directories(base / "folder" / "en-US" / "description.txt");
  EXPECT_THAT(inputErrorOf(base / "folder"), HasSubstr("en-US/description.txt: not a regular file"));
  writeFile(base / "dangling-file" / "en-US" / "name.txt", "Name");
  fs::create_symlink("nowhere.txt", base / "dangling-file" / "en-US" / "subtitle.txt");
  EXPECT_THAT(inputErrorOf(base / "dangling-file"), HasSubstr("en-US/subtitle.txt: cannot read: No such file"));
}

TEST(StoreListingTest, EditsAreTrackedJudgedAndWrittenWithTheirFrame) {
  TemporaryFolder temporary;
  const auto root = temporary.path();
  writeFile(root / "en-US" / "keywords.txt", "\xEF\xBB\xBFnotes , lists, Notes\r\n");
  StoreListing listing(root, facts(), {}, kContext);
  auto& english = *listing.locales()[0];
  EXPECT_FALSE(english.hasUnsavedChanges());
  const auto fixes = listing.plannedFixes();
  ASSERT_EQ(fixes.size(), 1u);
  EXPECT_EQ(fixes[0].after, "notes,lists");
  auto elsewhere = fixes[0];
  elsewhere.scope = "fr-FR";
  EXPECT_THROW(listing.apply(elsewhere), std::invalid_argument) << "an edit for a locale the listing lacks";
  EXPECT_FALSE(english.hasUnsavedChanges());
  EXPECT_EQ(fixes[0].action, "Remove duplicate keywords, remove spaces around commas");
  listing.apply(fixes[0]);
  EXPECT_TRUE(english.hasUnsavedChanges());
  EXPECT_TRUE(english.fieldFindings(ListingField::keywords).empty()) << "the edit is judged at once";
  listing.writeChanges();
  EXPECT_FALSE(english.hasUnsavedChanges());
  EXPECT_EQ(readFile(root / "en-US" / "keywords.txt"), "\xEF\xBB\xBFnotes,lists\r\n");
}

}  // namespace
}  // namespace corvane::store
