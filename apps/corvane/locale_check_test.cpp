#include "locale_check.hpp"

#include "checker.hpp"
#include "cli_test_support.hpp"

#include "corvane/text/characters.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace corvane::cli {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

LocaleMetadata localeWith(std::initializer_list<std::pair<MetadataField, std::string>> texts) {
  LocaleMetadata locale{.locale = "en-US", .folder = "/nowhere/en-US", .texts = {}, .frames = {}};
  for (const auto& [field, text] : texts) locale.texts[static_cast<std::size_t>(field)] = text;
  return locale;
}

// A listing that passes every rule, so each test changes one thing.
LocaleMetadata cleanLocale() {
  return localeWith({{MetadataField::name, "Corvane Notes"},
                     {MetadataField::subtitle, "Notes that check themselves"},
                     {MetadataField::description, "Keeps your notes tidy."},
                     {MetadataField::keywords, "notes,writing,lists"},
                     {MetadataField::supportUrl, "https://example.com/support"},
                     {MetadataField::marketingUrl, "https://example.com/"},
                     {MetadataField::privacyUrl, "https://example.com/privacy"},
                     {MetadataField::promotionalText, "Now with a dark theme."},
                     {MetadataField::releaseNotes, "Faster search."}});
}

std::vector<std::string> describeFindings(const LocaleCheck& check) {
  std::vector<std::string> result;
  for (const auto& finding : check.findings()) {
    result.push_back(std::string(categoryKey(finding.category)) + " " + finding.file + ": " + finding.verdict.message);
  }
  return result;
}

TEST(CategorizeTest, FollowsTheTrackerButNeverBlocksOnAPass) {
  EXPECT_EQ(categorize(ValidationResult::required("App name")), FindingCategory::blocker);
  EXPECT_EQ(categorize(ValidationResult::invalidFormat("URL", "https")), FindingCategory::blocker);
  EXPECT_EQ(categorize(ValidationResult::validRequired("App name")), std::nullopt);
  EXPECT_EQ(categorize(ValidationResult::failure(ValidationSeverity::error, "bad")), FindingCategory::rejectionRisk);
  EXPECT_EQ(categorize(ValidationResult::failure(ValidationSeverity::warning, "meh")), std::nullopt);
  EXPECT_EQ(categorize(ValidationResult(true, ValidationSeverity::warning, "add")), FindingCategory::optimization);
  EXPECT_EQ(categorize(ValidationResult::info("try")), FindingCategory::opportunity);
  EXPECT_EQ(categorize(ValidationResult::valid()), std::nullopt);
}

TEST(LocaleCheckTest, ACleanListingHasNoFindingsAndACompleteChecklist) {
  LocaleCheck check(cleanLocale(), std::string("review@example.com"), std::string("1.2.3"));
  EXPECT_THAT(describeFindings(check), IsEmpty());
  const auto items = check.checklistItems();
  ASSERT_EQ(items.size(), kLocaleFields.size() + 1);
  EXPECT_TRUE(std::ranges::all_of(items, [](const auto& item) { return item.status.isCompleted(); }));
  EXPECT_FALSE(check.tracker()->hasUnsavedChanges());
}

TEST(LocaleCheckTest, ReportsEachProblemUnderItsFileAndGroupOnce) {
  auto locale = cleanLocale();
  locale.texts[static_cast<std::size_t>(MetadataField::name)] = std::string(31, 'n');
  locale.texts[static_cast<std::size_t>(MetadataField::privacyUrl)] = "http://example.com/privacy";
  locale.texts[static_cast<std::size_t>(MetadataField::supportUrl)] = "example.com/support";
  locale.texts[static_cast<std::size_t>(MetadataField::marketingUrl)].reset();
  locale.texts[static_cast<std::size_t>(MetadataField::promotionalText)] = std::string(171, 'p');
  LocaleCheck check(locale, std::nullopt, std::string("1.0"));
  EXPECT_THAT(describeFindings(check),
              ElementsAre("blockers en-US/name.txt: App name is 1 characters too long",
                          "optimizations en-US/support_url.txt: Support URL should start with https://",
                          "opportunities en-US/marketing_url.txt: Add a marketing URL",
                          "rejectionRisks en-US/privacy_url.txt: Privacy policy URL should use https://",
                          "blockers en-US/promotional_text.txt: Promotional text is 1 characters too long",
                          "rejectionRisks --app-version: Version must be in format X.Y.Z"));
}

TEST(LocaleCheckTest, AWrongTextIsReportedOnceInItsMostSevereGroup) {
  const auto findingsFor = [](MetadataField field, std::string text) {
    auto locale = cleanLocale();
    locale.texts[static_cast<std::size_t>(field)] = std::move(text);
    return describeFindings(LocaleCheck(locale, std::nullopt, std::nullopt));
  };
  // Both entities judge these files; only the blocker remains.
  EXPECT_THAT(findingsFor(MetadataField::name, ""), ElementsAre("blockers en-US/name.txt: App name is required"));
  EXPECT_THAT(findingsFor(MetadataField::subtitle, std::string(40, 's')),
              ElementsAre("blockers en-US/subtitle.txt: Subtitle is 10 characters too long"));
}

TEST(LocaleCheckTest, WebAddressesNeedAHostAndTakeTheSchemeInAnyCase) {
  const auto privacyFindings = [](std::string address) {
    auto locale = cleanLocale();
    locale.texts[static_cast<std::size_t>(MetadataField::privacyUrl)] = std::move(address);
    return describeFindings(LocaleCheck(locale, std::nullopt, std::nullopt));
  };
  const std::string unusable =
      "blockers en-US/privacy_url.txt: Invalid privacy policy url format";
  for (const auto* address : {"https://", "https:///privacy", "http://?q", "example.com/privacy", "ftp://example.com/"}) {
    EXPECT_THAT(privacyFindings(address), ElementsAre(unusable)) << address;
  }
  EXPECT_THAT(privacyFindings("HTTPS://Example.com/Privacy"), IsEmpty());
  EXPECT_THAT(privacyFindings("Http://example.com/privacy"),
              ElementsAre("rejectionRisks en-US/privacy_url.txt: Privacy policy URL should use https://"));
}

TEST(LocaleCheckTest, MissingRequiredTextsBlockAndShowInTheChecklist) {
  LocaleCheck check(localeWith({{MetadataField::description, "Only a description"}}), std::nullopt, std::nullopt);
  const auto findings = describeFindings(check);
  EXPECT_THAT(findings, ::testing::Contains("blockers en-US/name.txt: App name is required"));
  EXPECT_THAT(findings, ::testing::Contains("blockers en-US/privacy_url.txt: Privacy policy URL is required"));
  EXPECT_THAT(findings,
              ::testing::Contains("opportunities en-US/promotional_text.txt: Consider adding promotional text"));
  const auto items = check.checklistItems();
  EXPECT_TRUE(items[0].status.isBlocked());
  EXPECT_EQ(items[0].priority, CompletionItem::Priority::critical);
  EXPECT_TRUE(items[2].status.isCompleted());
  EXPECT_TRUE(items[5].status.isOptional()) << "marketing URL";
}

TEST(LocaleCheckTest, PlansTrimsOnCharacterBoundariesAndTracksThemAsEdits) {
  auto locale = cleanLocale();
  // 29 letters, then a family emoji (one character of several code points), then more.
  const std::string family = "\U0001F468\u200D\U0001F469\u200D\U0001F467";
  const std::string name = std::string(29, 'a') + family + "bc";
  locale.texts[static_cast<std::size_t>(MetadataField::name)] = name;
  locale.texts[static_cast<std::size_t>(MetadataField::releaseNotes)] = std::string(3999, 'r') + "  tail";
  LocaleCheck check(locale, std::nullopt, std::nullopt);

  const auto fixes = check.plannedFixes();
  ASSERT_EQ(fixes.size(), 2u);
  EXPECT_EQ(fixes[0].field, MetadataField::name);
  EXPECT_EQ(fixes[0].after, std::string(29, 'a') + family);
  EXPECT_EQ(fixes[0].charactersBefore, 32);
  EXPECT_EQ(fixes[0].charactersAfter, 30);
  EXPECT_EQ(fixes[0].action, "Auto-trim to 30");
  EXPECT_EQ(fixes[0].path, "/nowhere/en-US/name.txt");
  // The cut falls after a space: no dangling white space is left behind.
  EXPECT_EQ(fixes[1].after, std::string(3999, 'r'));

  check.apply(fixes[0]);
  EXPECT_TRUE(check.tracker()->hasUnsavedChanges());
  EXPECT_EQ(check.metadata().text(MetadataField::name), fixes[0].after);
  EXPECT_EQ(check.plannedFixes().size(), 1u);
  check.discard();
  EXPECT_FALSE(check.tracker()->hasUnsavedChanges());
  EXPECT_EQ(check.metadata().text(MetadataField::name), name);
  check.apply(fixes[0]);
  check.markSaved();
  EXPECT_FALSE(check.tracker()->hasUnsavedChanges());
  EXPECT_EQ(check.metadata().text(MetadataField::name), fixes[0].after);
}

TEST(LocaleCheckTest, KeywordsLoseWholeKeywordsNeverHalfOfOne) {
  EXPECT_EQ(trimKeywordsToLimit("alpha,beta,gamma", 12), "alpha,beta");
  EXPECT_EQ(trimKeywordsToLimit("alpha,beta,gamma", 10), "alpha,beta") << "the cut already ends a keyword";
  EXPECT_EQ(trimKeywordsToLimit("alpha, beta ,gamma", 13), "alpha, beta");
  EXPECT_EQ(trimKeywordsToLimit("alpha,beta,,gamma", 11), "alpha,beta") << "no comma at the end";
  EXPECT_EQ(trimKeywordsToLimit("alpha,beta", 20), "alpha,beta");
  EXPECT_EQ(trimKeywordsToLimit("supercalifragilistic,word", 5), "super") << "one keyword longer than the limit";
  EXPECT_EQ(trimKeywordsToLimit(" , ,alpha", 2), "") << "nothing whole fits";
}

TEST(LocaleCheckTest, SplitsKeywordsAndTrimsText) {
  EXPECT_THAT(splitKeywords(" notes, writing ,,lists,"), ElementsAre("notes", "writing", "lists"));
  EXPECT_THAT(splitKeywords(""), IsEmpty());
  EXPECT_EQ(trimToLimit("  abc def  ", 4), "abc");
  EXPECT_EQ(trimToLimit("abc", 10), "abc");
}

TEST(CheckerTest, TheBundledSampleHasEveryKindOfFinding) {
  Checker checker(
      CheckOptions{.directory = testing::sourceSample(), .appVersion = std::nullopt, .fix = false, .dryRun = false});
  const auto report = checker.report();
  ASSERT_EQ(report.locales.size(), 3u);
  EXPECT_EQ(report.locales[0].locale, "de-DE");
  for (const auto category : {FindingCategory::blocker, FindingCategory::rejectionRisk, FindingCategory::optimization,
                              FindingCategory::opportunity}) {
    EXPECT_GE(report.count(category), 1) << categoryKey(category);
  }
  EXPECT_TRUE(report.blocked());
  EXPECT_FALSE(report.canComplete);
  EXPECT_EQ(report.progress.totalItems, 3 * 10);
  EXPECT_GE(report.progress.blockedItems, 1);
  ASSERT_TRUE(report.nextAction.has_value());
  EXPECT_EQ(report.nextAction->id, "de-DE/name.txt");
  EXPECT_EQ(checker.plannedFixes().size(), 1u);
}

}  // namespace
}  // namespace corvane::cli
