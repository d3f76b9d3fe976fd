// Google Play's layout and rules: the same module and catalog as the App Store's, with
// Play's fields, locale codes and title policy.
#include "corvane/store/input_error.hpp"
#include "corvane/store/listing_folder.hpp"
#include "corvane/store/listing_rules.hpp"
#include "corvane/store/rule_catalog.hpp"
#include "corvane/store/store_facts.hpp"
#include "corvane/store/store_listing.hpp"
#include "corvane/testing/temporary_folder.hpp"
#include "corvane/testing/thrown.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace corvane::store {
namespace {

namespace fs = std::filesystem;
using corvane::testing::TemporaryFolder;
using corvane::testing::writeFile;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

const StoreFacts& play() {
  static const StoreFacts loaded = StoreFacts::load(CORVANE_STORE_RESOURCES, StoreId::googlePlay);
  return loaded;
}

const StoreFacts& appStore() {
  static const StoreFacts loaded = StoreFacts::load(CORVANE_STORE_RESOURCES, StoreId::appStore);
  return loaded;
}

constexpr RuleContext kContext{.firstVersion = false, .currentYear = 2026};

std::vector<std::string> rulesOf(const std::vector<ListingFinding>& findings) {
  std::vector<std::string> rules;
  for (const auto& finding : findings) rules.push_back(finding.rule);
  return rules;
}

std::string describeAll(const std::vector<ListingFinding>& findings) {
  std::string text;
  for (const auto& f : findings) text += f.file + ": " + f.rule + ": " + f.verdict.message + "\n";
  return text;
}

struct Case {
  const char* what;
  ListingField field;
  std::string text;
  std::vector<std::string> rules;  // expected, in order; empty means silent
  const char* locale = "en-US";
};

TEST(PlayRulesTest, PlantedFaultsAreFoundAndNearMissesStaySilent) {
  using enum ListingField;
  const std::vector<Case> cases = {
      // required fields and limits
      {"title at the limit", title, std::string(30, 't'), {}},
      {"title one over", title, std::string(31, 't'), {"title.length"}},
      {"empty title", title, "\n", {"title.required"}},
      {"short description at the limit", shortDescription, std::string(80, 's'), {}},
      {"short description one over", shortDescription, std::string(81, 's'), {"short-description.length"}},
      {"empty short description", shortDescription, "", {"short-description.required"}},
      {"full description one over", fullDescription, std::string(4001, 'f'), {"full-description.length"}},
      {"empty full description", fullDescription, "", {"full-description.required"}},
      {"no video is a missed opportunity", video, "", {"video.missing"}},
      {"no changelog is fine", changelog, "", {}},
      {"changelog at the limit", changelog, std::string(500, 'c'), {}},
      {"changelog one over", changelog, std::string(501, 'c'), {"changelog.length"}},
      {"default changelog one over", defaultChangelog, std::string(501, 'c'), {"default-changelog.length"}},
      {"500 Japanese characters",
       changelog,
       [] {
         std::string text;
         for (int i = 0; i < 500; ++i) text += "\u30E1";
         return text;
       }(),
       {},
       "ja-JP"},
      // the video address
      {"video on a video site", video, "https://www.youtube.com/watch?v=Xk3n9Q", {}},
      {"video that is no address", video, "youtube video", {"url.invalid"}},
      {"video over http", video, "http://videos.larkspur-labs.app/intro", {"url.insecure"}},
      {"video on a placeholder domain", video, "https://example.com/video", {"address.placeholder"}},
      // emoji and emoticons
      {"emoji", title, "Notes \U0001F4DD Planner", {"title.emoji"}},
      {"emoji sequence counts once", title, "Notes \U0001F469\u200D\U0001F4BB", {"title.emoji"}},
      {"flag", title, "Notes \U0001F1EF\U0001F1F5", {"title.emoji"}},
      {"keycap", title, "Notes 1\uFE0F\u20E3", {"title.emoji"}},
      {"heart symbol", title, "Notes \u2764", {"title.emoji"}},
      {"emoticon", title, "Notes :)", {"title.emoji"}},
      {"two emoticons", title, "<3 Notes ;-)", {"title.emoji", "title.emoji"}},
      {"a time is no emoticon", title, "Standup 9:30", {}},
      {"a trade mark sign is no emoji", title, "Corvane\u2122 Notes\u00AE", {}},
      {"an en dash and an ampersand", title, "Notes \u2013 Focus & Plan", {}},
      {"emoji in the description are not the title's business", fullDescription, "Plan \U0001F4DD :)", {}},
      // capitals
      {"all capitals", title, "NOTES PLANNER", {"title.capitals"}},
      {"an abbreviation inside a title", title, "NASA Sky Explorer", {}},
      {"a short abbreviation alone", title, "BBC", {}},
      {"capitals with digits and accents", title, "\u00C9T\u00C9 2026 PLANNER", {"title.capitals"}},
      {"a script without case", title, "\u30E1\u30E2\u5E33", {}, "ja-JP"},
      // claims and calls to action, whole words in any letter case
      {"free", title, "FREE notes", {"title.claim"}},
      {"free inside Freedom", title, "Freedom Notes", {}},
      {"best", title, "Best Notes App", {"title.claim"}},
      {"number one", title, "#1 Notes", {"title.claim"}},
      {"top", title, "Top Notes", {"title.claim"}},
      {"top inside Topology", title, "Topology Notes", {}},
      {"new", title, "Notes New", {"title.claim"}},
      {"new inside Newton", title, "Newton Notes", {}},
      {"sale", title, "Notes Sale", {"title.claim"}},
      {"call to action", title, "Notes - Download Now", {"title.claim"}},
      {"install", title, "Install Notes", {"title.claim"}},
      {"installer is another word", title, "Notes Installer", {}},
      {"English claims in a German title", title, "Notizen Free", {"title.claim"}, "de-DE"},
      {"claims outside the title are Play's business only there", shortDescription, "The best free notes app", {}},
      // content rules Play shares, and those it does not
      {"placeholder text", fullDescription, "Lorem ipsum dolor", {"content.placeholder"}},
      {"Android is at home on Play", fullDescription, "Works on Android 8 and newer.", {}},
      {"future features are App Store review's concern", fullDescription, "Widgets coming soon.", {}},
  };
  for (const auto& c : cases) {
    const ListingRules rules(play(), {}, c.locale, kContext);
    const auto file = std::string(c.locale) + "/" + std::string(fieldFile(c.field));
    EXPECT_EQ(rulesOf(rules.judge(c.field, c.text, file)), c.rules) << c.what;
  }
}

TEST(PlayRulesTest, FindingsPointAtTheFaultAndNameIt) {
  const ListingRules rules(play(), {}, "en-US", kContext);
  const auto findings = rules.judge(ListingField::title, "Plan \U0001F4DD Free", "en-US/title.txt");
  ASSERT_THAT(rulesOf(findings), ElementsAre("title.emoji", "title.claim"));
  EXPECT_EQ(findings[0].position->column, 6);
  EXPECT_EQ(findings[0].verdict.message, "Title holds an emoji: '\U0001F4DD'");
  EXPECT_EQ(findings[0].level, RuleLevel::rejectionRisk);
  EXPECT_EQ(findings[1].position->column, 8);
  EXPECT_EQ(findings[1].verdict.message, "Title makes a claim or calls to action: 'Free'");
  EXPECT_EQ(findings[1].field, ListingField::title);

  const auto tooLong = rules.judge(ListingField::changelog, std::string(501, 'c'), "en-US/changelogs/12.txt");
  ASSERT_EQ(tooLong.size(), 1u);
  EXPECT_EQ(tooLong[0].level, RuleLevel::blocker);
  EXPECT_EQ(tooLong[0].verdict.message, "Release notes: 1 character too long (501 of 500)");
  EXPECT_EQ(rules.autoFixed(ListingField::changelog, std::string(501, 'c')), std::string(500, 'c'));
}

TEST(PlayRulesTest, ConfigurationAllowsABrandInCapitalsAndWordsAndSetsLevels) {
  ListingConfiguration configuration;
  configuration.capitalBrands = {"IKEA"};
  configuration.global.words.allowed = {"Top Hat"};
  configuration.global.levels["title.emoji"] = std::nullopt;
  configuration.global.levels["title.claim"] = RuleLevel::blocker;
  const ListingRules rules(play(), configuration, "en-US", kContext);
  const std::vector<Case> cases = {
      {"the brand alone", ListingField::title, "IKEA", {}},
      {"the brand in a title", ListingField::title, "IKEA Place", {}},
      {"the brand does not excuse other capitals", ListingField::title, "IKEA PLACE", {"title.capitals"}},
      {"an allowed phrase", ListingField::title, "Top Hat Magic", {}},
      {"a rule turned off", ListingField::title, "Notes \U0001F4DD", {}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(rulesOf(rules.judge(c.field, c.text, "en-US/title.txt")), c.rules) << c.what;
  }
  const auto raised = rules.judge(ListingField::title, "Best Notes", "en-US/title.txt");
  ASSERT_EQ(raised.size(), 1u);
  EXPECT_EQ(raised[0].level, RuleLevel::blocker);

  const ListingRules withoutBrand(play(), {}, "en-US", kContext);
  EXPECT_THAT(rulesOf(withoutBrand.judge(ListingField::title, "IKEA", "en-US/title.txt")),
              ElementsAre("title.capitals"));
  ListingConfiguration otherSpelling;
  otherSpelling.capitalBrands = {"Ikea"};
  const ListingRules asWritten(play(), otherSpelling, "en-US", kContext);
  EXPECT_THAT(rulesOf(asWritten.judge(ListingField::title, "IKEA", "en-US/title.txt")), ElementsAre("title.capitals"))
      << "a brand counts only as written";
}

TEST(PlayRulesTest, EachStoreHasItsOwnCatalogAndCorvaneRulesListsBoth) {
  std::vector<std::string> playIds;
  for (const auto& rule : ruleCatalog(play())) playIds.push_back(rule.id);
  EXPECT_THAT(playIds,
              ElementsAre("title.required", "title.length", "short-description.required", "short-description.length",
                          "full-description.required", "full-description.length", "changelog.length",
                          "default-changelog.length", "url.invalid", "url.insecure", "address.placeholder",
                          "video.missing", "changelog.missing", "title.emoji", "title.capitals", "title.claim",
                          "content.placeholder", "content.profanity", "content.forbidden", "locale.unknown"));
  std::vector<std::string> appStoreIds;
  for (const auto& rule : ruleCatalog(appStore())) appStoreIds.push_back(rule.id);
  EXPECT_THAT(appStoreIds, Not(Contains("title.claim")));
  EXPECT_THAT(appStoreIds, Contains("keywords.duplicate"));

  const auto every = everyStoreRuleCatalog();
  std::set<std::string> ids;
  for (const auto& rule : every) EXPECT_TRUE(ids.insert(rule.id).second) << rule.id << " listed twice";
  for (const auto& id : playIds) EXPECT_TRUE(ids.contains(id)) << id;
  for (const auto& id : appStoreIds) EXPECT_TRUE(ids.contains(id)) << id;
}

TEST(PlayListingTest, ARealisticPlayFolderInManyScriptsHasNoFinding) {
  const fs::path root = fs::path(CORVANE_STORE_TESTDATA) / "realistic-play-listing";
  EXPECT_EQ(detectStore(root), StoreId::googlePlay);
  const StoreListing listing(root, play(), {}, kContext);
  ASSERT_EQ(listing.locales().size(), 6u);
  EXPECT_TRUE(listing.folderFindings().empty());
  for (const auto& locale : listing.locales()) EXPECT_EQ(describeAll(locale->findings()), "") << locale->scope();
  EXPECT_TRUE(listing.shared().fields().empty()) << "a Play folder has no shared files";
  EXPECT_TRUE(listing.plannedFixes().empty());

  // The newest version code is chosen by number (12, not 9), beside default.txt.
  const auto found = std::ranges::find(listing.locales(), "en-US", [](const auto& entity) { return entity->scope(); });
  ASSERT_NE(found, listing.locales().end());
  const auto& english = **found;
  EXPECT_EQ(english.file(ListingField::changelog), "en-US/changelogs/12.txt");
  EXPECT_THAT(english.text(ListingField::changelog), HasSubstr("every weekday"));
  EXPECT_EQ(english.file(ListingField::defaultChangelog), "en-US/changelogs/default.txt");
  std::vector<std::string> ids;
  for (const auto& item : listing.checklist(english, english.findings())) ids.push_back(item.id);
  EXPECT_THAT(ids, ElementsAre("en-US/title.txt", "en-US/short_description.txt", "en-US/full_description.txt",
                               "en-US/video.txt", "en-US/changelogs/12.txt", "en-US/changelogs/default.txt"));
}

TEST(PlayListingTest, FolderReadingFollowsPlaysLayout) {
  const TemporaryFolder folder;
  const fs::path root = folder.path();
  writeFile(root / "en-US/title.txt", "Notes\n");
  writeFile(root / "en-US/short_description.txt", "Short\n");
  writeFile(root / "en-US/full_description.txt", "Full\n");
  writeFile(root / "en-US/changelogs/99.txt", "old\n");
  writeFile(root / "en-US/changelogs/100.txt", std::string(501, 'c') + "\n");
  writeFile(root / "en-US/changelogs/notes.txt", "not a version code\n");
  writeFile(root / "en_GB/title.txt", "Notes\n");      // Play's code is en-GB
  writeFile(root / "ja/title.txt", "\u30E1\u30E2\n");  // Play's code is ja-JP
  writeFile(root / "default/title.txt", "Play has no default folder\n");

  const StoreListing listing(root, play(), {}, kContext);
  ASSERT_EQ(listing.locales().size(), 1u);
  const auto& locale = *listing.locales()[0];
  EXPECT_EQ(locale.file(ListingField::changelog), "en-US/changelogs/100.txt");
  EXPECT_THAT(rulesOf(locale.findings()), ElementsAre("video.missing", "changelog.length"));
  std::vector<std::string> refused;
  for (const auto& finding : listing.folderFindings()) refused.push_back(finding.file + ": " + finding.verdict.message);
  EXPECT_THAT(refused, ElementsAre("default: 'default' is not a locale the store knows",
                                   "en_GB: 'en_GB' is not a locale the store knows; did you mean 'en-GB'?",
                                   "ja: 'ja' is not a locale the store knows; did you mean 'ja-JP'?"));
}

TEST(PlayListingTest, AnUpdateNeedsReleaseNotesForItsVersionOrByDefault) {
  struct ChangelogCase {
    const char* what;
    std::vector<std::string> changelogs;
    bool firstVersion;
    std::vector<std::string> rules;
    std::string file = {};  // where the finding says to write, when there is one
  };
  const std::vector<ChangelogCase> cases = {
      {"no changelog at all", {}, false, {"changelog.missing"}, "en-US/changelogs/default.txt"},
      {"an empty one for the newest version", {"9.txt", "12.txt"}, false, {"changelog.missing"}, "en-US/changelogs/12.txt"},
      {"the newest version's", {"12.txt"}, false, {}},
      {"default.txt only", {"default.txt"}, false, {}},
      {"a first version has nothing new", {}, true, {}},
  };
  for (const auto& c : cases) {
    const TemporaryFolder folder;
    writeFile(folder.path() / "en-US/title.txt", "Notes\n");
    writeFile(folder.path() / "en-US/short_description.txt", "Short\n");
    writeFile(folder.path() / "en-US/full_description.txt", "Full\n");
    writeFile(folder.path() / "en-US/video.txt", "https://www.youtube.com/watch?v=Xk3n9Q\n");
    for (const auto& name : c.changelogs) {
      const bool empty = std::string_view(c.what).starts_with("an empty");
      writeFile(folder.path() / "en-US/changelogs" / name, empty ? "\n" : "Fixes.\n");
    }
    const StoreListing listing(folder.path(), play(), {},
                               RuleContext{.firstVersion = c.firstVersion, .currentYear = 2026});
    const auto findings = listing.locales()[0]->findings();
    EXPECT_EQ(rulesOf(findings), c.rules) << c.what;
    if (!findings.empty()) {
      EXPECT_EQ(findings[0].file, c.file) << c.what;
    }
  }
}

TEST(PlayListingTest, TheLayoutIsToldByTheFilesOfTheLocaleFolders) {
  struct LayoutCase {
    const char* what;
    std::vector<std::string> files;
    StoreId expected;
  };
  const std::vector<LayoutCase> cases = {
      {"Play's title", {"en-US/title.txt"}, StoreId::googlePlay},
      {"Play's description only", {"de-DE/full_description.txt"}, StoreId::googlePlay},
      {"an App Store name", {"en-US/name.txt"}, StoreId::appStore},
      {"the App Store's default folder", {"default/description.txt", "en-US/title.txt"}, StoreId::appStore},
      {"shared App Store files", {"copyright.txt", "en-US/title.txt"}, StoreId::appStore},
      {"both layouts in one folder stay the App Store's", {"en-US/name.txt", "fr-FR/title.txt"}, StoreId::appStore},
      {"nothing known", {"en-US/notes.md"}, StoreId::appStore},
  };
  for (const auto& c : cases) {
    const TemporaryFolder folder;
    for (const auto& file : c.files) writeFile(folder.path() / file, "text\n");
    EXPECT_EQ(detectStore(folder.path()), c.expected) << c.what;
  }
  EXPECT_EQ(detectStore("/nonexistent/corvane"), StoreId::appStore);
}

TEST(PlayListingTest, AnAppStoreFolderReadAsPlaysIsRefusedInPlainWords) {
  const TemporaryFolder folder;
  writeFile(folder.path() / "en-US/name.txt", "Notes\n");
  EXPECT_THAT(corvane::testing::thrownMessage<InputError>([&] { (void)readListingFolder(folder.path(), play()); }),
              HasSubstr("en-US: locale folder holds none of the metadata files"));
}

}  // namespace
}  // namespace corvane::store
