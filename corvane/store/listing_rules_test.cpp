#include "corvane/store/listing_rules.hpp"

#include "corvane/store/store_facts.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include <stdlib.h>

namespace corvane::store {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const StoreFacts& facts() {
  static const StoreFacts loaded = StoreFacts::load(CORVANE_STORE_RESOURCES);
  return loaded;
}

std::vector<std::string> rulesOf(const std::vector<ListingFinding>& findings) {
  std::vector<std::string> rules;
  for (const auto& finding : findings) rules.push_back(finding.rule);
  return rules;
}

ListingRules rulesFor(const std::string& locale, const ListingConfiguration& configuration = {}) {
  return ListingRules(facts(), configuration, locale, RuleContext{.firstVersion = false, .currentYear = 2026});
}

std::string repeated(std::string_view text, std::size_t times) {
  std::string result;
  for (std::size_t i = 0; i < times; ++i) result += text;
  return result;
}

struct Case {
  const char* what;
  const char* locale;
  ListingField field;
  std::string text;
  std::vector<std::string> rules;  // expected, in order; empty means silent
};

TEST(ListingRulesTest, PlantedFaultsAreFoundAndNearMissesStaySilent) {
  using enum ListingField;
  const std::vector<Case> cases = {
      // required fields and lengths
      {"empty name", "en-US", name, " \n", {"name.required"}},
      {"name at the limit", "en-US", name, std::string(30, 'n'), {}},
      {"name one over", "en-US", name, std::string(31, 'n'), {"name.length"}},
      {"emoji counted as characters", "en-US", name, "Notes \U0001F469\u200D\U0001F4BB " + std::string(22, 'x'), {}},
      // Each way a text can be longer in bytes or code points than in characters.
      {"thirty accented letters", "fr-FR", name, repeated("\u00E9", 30), {}},
      {"thirty-one accented letters", "fr-FR", name, repeated("\u00E9", 31), {"name.length"}},
      {"thirty letters, one with a combining accent", "fr-FR", name, std::string(29, 'n') + "e\u0301", {}},
      {"thirty-one letters with combining accents", "fr-FR", name, repeated("e\u0301", 31), {"name.length"}},
      {"a stray continuation byte counts as a character", "en-US", name, std::string(30, 'n') + "\x80", {"name.length"}},
      {"white space around a full name", "en-US", name, "  " + std::string(30, 'n') + "\n", {}},
      {"subtitle is optional", "en-US", subtitle, "", {"subtitle.missing"}},
      {"description is required", "en-US", description, "", {"description.required"}},
      {"arabic keywords counted in characters",
       "ar-SA",
       keywords,
       "\u0645\u0644\u0627\u062D\u0638\u0627\u062A," + std::string(80, 'k'),
       {}},
      {"release notes required for an update", "en-US", releaseNotes, "", {"release-notes.required"}},
      // keyword hygiene
      {"duplicate in another case", "en-US", keywords, "notes,lists,Notes", {"keywords.duplicate"}},
      {"spaces around commas", "en-US", keywords, "notes, lists ,todo list", {"keywords.spacing"}},
      {"different keywords", "en-US", keywords, "note,notes,notebook", {}},
      // addresses
      {"https address", "en-US", supportUrl, "https://larkspur-notes.app/help", {}},
      {"http address", "en-US", privacyUrl, "http://larkspur-notes.app/privacy", {"url.insecure"}},
      {"scheme in capitals", "en-US", privacyUrl, "HTTPS://larkspur-notes.app/privacy", {}},
      {"no host", "en-US", supportUrl, "https://", {"url.invalid"}},
      {"a space inside", "en-US", supportUrl, "https://larkspur notes.app", {"url.invalid"}},
      {"a space in the path", "en-US", supportUrl, "https://larkspur-notes.app/a b", {"url.invalid"}},
      {"a control character", "en-US", supportUrl, "https://larkspur-notes.app/\x01", {"url.invalid"}},
      {"a no-break space", "en-US", supportUrl, "https://larkspur-notes.app/\u00A0x", {"url.invalid"}},
      {"a zero-width space", "en-US", privacyUrl, "https://larkspur\u200B-notes.app", {"url.invalid"}},
      {"user but no host", "en-US", supportUrl, "https://user@/help", {"url.invalid"}},
      {"port but no host", "en-US", marketingUrl, "https://:443/help", {"url.invalid"}},
      {"an encoded space in the host", "en-US", supportUrl, "https://larkspur%20notes.app/", {"url.invalid"}},
      {"an empty label in the host", "en-US", supportUrl, "https://larkspur..app/", {"url.invalid"}},
      {"no scheme", "en-US", supportUrl, "larkspur-notes.app/help", {"url.invalid"}},
      {"another scheme", "en-US", supportUrl, "ftp://larkspur-notes.app/help", {"url.invalid"}},
      {"port, query and fragment", "en-US", supportUrl, "https://larkspur-notes.app:8443/h?q=a%20b#top", {}},
      {"an address literal", "en-US", supportUrl, "https://[2001:db8::1]/help", {}},
      {"placeholder domain", "en-US", marketingUrl, "https://www.example.com/", {"address.placeholder"}},
      {"a URL that merely contains test", "en-US", supportUrl, "https://larkspur-notes.app/test/help", {}},
      // content: whole words, any letter case
      {"another platform", "en-US", description, "Also on ANDROID.", {"content.other-platform"}},
      {"tizen inside Notizen", "de-DE", name, "Corvane Notizen", {}},
      {"placeholder text", "en-US", promotionalText, "Lorem ipsum dolor", {"content.placeholder"}},
      {"test as a word", "en-US", description, "This is a test.", {"content.placeholder"}},
      {"test inside a word", "en-US", description, "The latest contest results.", {}},
      {"placeholder address in text", "en-US", description, "Mail help@example.org", {"content.placeholder"}},
      {"future promise", "en-US", releaseNotes, "Sync is coming soon", {"content.future-feature"}},
      {"claim in the name", "en-US", name, "Best Notes", {"content.claim"}},
      {"#1 claim", "en-US", subtitle, "The #1 notes app", {"content.claim"}},
      {"#10 is no claim", "en-US", subtitle, "Notes #10", {}},
      {"claims allowed in the description", "en-US", description, "The best way to keep notes.", {}},
      {"German claim", "de-DE", subtitle, "Kostenlos Notizen machen", {"content.claim"}},
      // shared files
      {"copyright of this year", "", copyright, "2026 Larkspur Labs Ltd", {}},
      {"copyright with a range", "", copyright, "\u00A9 2019-2026 Larkspur Labs", {}},
      {"copyright without a year", "", copyright, "Larkspur Labs", {"copyright.year"}},
      {"copyright in the future", "", copyright, "2031 Larkspur Labs", {"copyright.year"}},
      {"old copyright", "", copyright, "2024 Larkspur Labs", {"copyright.outdated"}},
      {"known category", "", primaryCategory, "PRODUCTIVITY", {}},
      {"older notation", "", primaryCategory, "MZGenre.Productivity", {}},
      {"unknown category", "", primaryCategory, "PRODUCTIVE", {"category.unknown"}},
      {"missing primary category", "", primaryCategory, "", {"primary-category.required"}},
      {"not an e-mail", "", reviewEmail, "not-an-email", {"review-email.format"}},
      {"placeholder e-mail", "", reviewEmail, "review@example.com", {"address.placeholder"}},
      {"real e-mail", "", reviewEmail, "review@larkspur-notes.app", {}},
      {"phone with country code", "", reviewPhone, "+44 20 7946 0000", {}},
      {"not a phone", "", reviewPhone, "call me", {"review-phone.format"}},
      {"review notes too long", "", reviewNotes, std::string(4001, 'n'), {"review-notes.length"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const auto rules = rulesFor(c.locale);
    const std::string file = "file.txt";
    EXPECT_THAT(rulesOf(rules.judge(c.field, c.text, file)), ElementsAreArray(c.rules));
  }
}

TEST(ListingRulesTest, LevelsFollowTheRuleAndTheConfiguration) {
  const auto defaults = rulesFor("en-US");
  const auto tooLong = defaults.judge(ListingField::name, std::string(31, 'n'), "en-US/name.txt");
  ASSERT_EQ(tooLong.size(), 1u);
  EXPECT_EQ(tooLong[0].level, RuleLevel::blocker);
  EXPECT_FALSE(tooLong[0].verdict.isValid);
  EXPECT_TRUE(tooLong[0].verdict.blocksSubmission());
  EXPECT_EQ(tooLong[0].verdict.message, "App name: 1 character too long (31 of 30)");
  EXPECT_EQ(tooLong[0].fixedText, std::string(30, 'n'));
  EXPECT_EQ(tooLong[0].position, (TextPosition{1, 31}));

  ListingConfiguration configuration;
  configuration.global.levels["name.length"] = RuleLevel::optimization;
  configuration.global.levels["content.claim"] = std::nullopt;
  configuration.locales["de-DE"].levels["content.claim"] = RuleLevel::opportunity;
  const auto lowered = rulesFor("en-US", configuration).judge(ListingField::name, std::string(31, 'n'), "n");
  ASSERT_EQ(lowered.size(), 1u);
  EXPECT_EQ(lowered[0].level, RuleLevel::optimization);
  EXPECT_TRUE(lowered[0].verdict.isValid) << "an optimization does not fail the value";
  EXPECT_FALSE(lowered[0].verdict.blocksSubmission());
  EXPECT_TRUE(rulesFor("en-US", configuration).judge(ListingField::name, "Best Notes", "n").empty());
  const auto german = rulesFor("de-DE", configuration).judge(ListingField::name, "Best Notes", "n");
  ASSERT_EQ(german.size(), 1u);
  EXPECT_EQ(german[0].level, RuleLevel::opportunity);
  EXPECT_TRUE(german[0].verdict.isOpportunity());
}

TEST(ListingRulesTest, AllowedWordsSilenceAndForbiddenWordsAreFound) {
  ListingConfiguration configuration;
  configuration.global.words.allowed = {"Top Hat"};
  configuration.global.words.forbidden = {"early access"};
  const auto rules = rulesFor("en-US", configuration);
  EXPECT_TRUE(rules.judge(ListingField::name, "Top Hat Notes", "n").empty());
  EXPECT_THAT(rulesOf(rules.judge(ListingField::name, "Top Notes", "n")), ElementsAreArray({"content.claim"}));
  const auto forbidden = rules.judge(ListingField::description, "Notes.\nJoin the Early  Access now", "d");
  ASSERT_EQ(forbidden.size(), 1u);
  EXPECT_EQ(forbidden[0].rule, "content.forbidden");
  EXPECT_EQ(forbidden[0].position, (TextPosition{2, 10}));
  EXPECT_THAT(forbidden[0].verdict.message, HasSubstr("'Early  Access'"));
}

// Rules built through one cache share compiled words only where the words are the same:
// a locale without word lists of its own gets English ones, a per-locale word stays there.
TEST(ListingRulesTest, RulesBuiltThroughACacheJudgeAsRulesBuiltAlone) {
  ListingConfiguration configuration;
  configuration.locales["en-GB"].words.forbidden = {"colour"};
  configuration.locales["ja"].words.allowed = {"Android"};
  struct Probe {
    const char* locale;
    std::string text;
    std::vector<std::string> rules;
  };
  const std::vector<Probe> probes = {
      {"en-US", "Coming soon: colour", {"content.future-feature"}},
      {"en-GB", "Coming soon: colour", {"content.future-feature", "content.forbidden"}},
      {"ja", "Coming soon on Android", {"content.future-feature"}},
      {"ko", "Coming soon on Android", {"content.other-platform", "content.future-feature"}},
      {"de-DE", "Kommt bald", {"content.future-feature"}},
      {"fr-FR", "Kommt bald", {}},
  };
  RuleCache cache;
  std::vector<ListingRules> cached;
  for (const auto& probe : probes) cached.emplace_back(facts(), configuration, probe.locale, RuleContext{}, &cache);
  for (std::size_t i = 0; i < probes.size(); ++i) {
    SCOPED_TRACE(probes[i].locale);
    const auto alone = rulesFor(probes[i].locale, configuration);
    EXPECT_THAT(rulesOf(cached[i].judge(ListingField::description, probes[i].text, "d")),
                ElementsAreArray(probes[i].rules));
    EXPECT_EQ(rulesOf(alone.judge(ListingField::description, probes[i].text, "d")), probes[i].rules);
  }
  EXPECT_EQ(facts().wordListLanguage("ja"), "en");
  EXPECT_EQ(facts().wordListLanguage("de-DE"), "de");
  EXPECT_EQ(facts().wordListLanguage("pt-BR"), "pt");
}

TEST(ListingRulesTest, WordListsKeptForTheProcessAreThoseOfTheFactsAtHand) {
  // Compiled lists outlive the listing that compiled them. Facts loaded after others are
  // gone may sit at the same address, with other words: each load must get its own lists.
  namespace fs = std::filesystem;
  std::string pattern = (fs::temp_directory_path() / "corvane-words-XXXXXX").string();
  ASSERT_NE(mkdtemp(pattern.data()), nullptr);
  const fs::path edited = pattern;
  fs::copy(CORVANE_STORE_RESOURCES, edited, fs::copy_options::recursive);
  std::ofstream(edited / "words" / "future-feature" / "en.txt", std::ios::app) << "\nzorblax\n";
  const auto judged = [](const StoreFacts& loaded) {
    RuleCache cache;  // a new listing's, as each check makes one
    const ListingRules rules(loaded, {}, "en-US", RuleContext{}, &cache);
    return rulesOf(rules.judge(ListingField::description, "Zorblax arrives", "d"));
  };
  const std::vector<std::string> none;
  const std::vector<std::string> future = {"content.future-feature"};
  const std::vector<std::pair<fs::path, std::vector<std::string>>> loads = {
      {CORVANE_STORE_RESOURCES, none}, {edited, future}, {edited, future}, {CORVANE_STORE_RESOURCES, none}};
  std::optional<StoreFacts> slot;
  for (const auto& [folder, expected] : loads) {
    SCOPED_TRACE(folder.string());
    slot.reset();
    slot.emplace(StoreFacts::load(folder));
    EXPECT_EQ(judged(*slot), expected);
  }
  fs::remove_all(edited);
}

TEST(ListingRulesTest, ContentMatchesReportLineAndColumnInCharacters) {
  const auto found = rulesFor("en-US").judge(ListingField::description, "Caf\u00E9 \U0001F600 notes\nfor Android", "d");
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].position, (TextPosition{2, 5}));
  const auto first = rulesFor("en-US").judge(ListingField::description, "\U0001F600 Android", "d");
  ASSERT_EQ(first.size(), 1u);
  EXPECT_EQ(first[0].position, (TextPosition{1, 3})) << "an emoji is one character";
}

TEST(ListingRulesTest, KeywordRepeatsOfOneListNeverReachTheNext) {
  // The matcher behind the rule is reused from call to call: each list is its own.
  const auto rules = rulesFor("en-US");
  const auto messages = [&](std::string_view keywords, std::string_view name, std::string_view subtitle) {
    std::vector<std::string> result;
    for (const auto& finding : rules.judgeKeywordRepeats(keywords, name, subtitle, "k")) {
      result.push_back(finding.verdict.message);
    }
    return result;
  };
  EXPECT_THAT(messages("notes,lists,drafts", "Notes and Lists", ""),
              ElementsAre("Keyword 'notes' is already in the app name", "Keyword 'lists' is already in the app name"));
  EXPECT_THAT(messages("drafts", "Notes and Lists", "Drafts"),
              ElementsAre("Keyword 'drafts' is already in the subtitle"));
  EXPECT_THAT(messages("ideas", "Notes and Lists", ""), IsEmpty());
}

TEST(ListingRulesTest, CrossFieldRules) {
  const auto rules = rulesFor("en-US");
  EXPECT_THAT(rulesOf(rules.judgeKeywordRepeats("notes,checklist,Corvane", "Corvane Notes", "Write it down", "k")),
              ElementsAreArray({"keywords.repeats-name", "keywords.repeats-name"}));
  EXPECT_TRUE(rules.judgeKeywordRepeats("notebook,checklists", "Corvane Notes", "Checklist", "k").empty())
      << "a longer word is another keyword";
  EXPECT_THAT(rulesOf(rules.judgeDemoAccount("reviewer", "")), ElementsAreArray({"review.demo-account"}));
  EXPECT_EQ(rules.judgeDemoAccount("reviewer", "")[0].field, ListingField::reviewDemoPassword);
  EXPECT_TRUE(rules.judgeDemoAccount("reviewer", "secret").empty());
  EXPECT_TRUE(rules.judgeDemoAccount(" ", "").empty());
}

TEST(ListingRulesTest, FirstVersionNeedsNoReleaseNotes) {
  const ListingRules first(facts(), {}, "en-US", RuleContext{.firstVersion = true, .currentYear = 2026});
  EXPECT_TRUE(first.judge(ListingField::releaseNotes, "", "r").empty());
  ListingConfiguration configured;
  configured.firstVersion = true;
  EXPECT_TRUE(rulesFor("en-US", configured).judge(ListingField::releaseNotes, "", "r").empty());
}

TEST(ListingRulesTest, AutoFixesApplyInTurn) {
  const auto rules = rulesFor("en-US");
  EXPECT_EQ(rules.autoFixed(ListingField::keywords, "notes , lists, Notes"), "notes,lists");
  EXPECT_EQ(rules.autoFixed(ListingField::keywords, "notes,lists"), std::nullopt);
  EXPECT_EQ(rules.autoFixed(ListingField::name, std::string(29, 'n') + " extra"), std::string(29, 'n'));
  EXPECT_EQ(rules.autoFixed(ListingField::description, "fine"), std::nullopt);
}

TEST(ListingRulesTest, AKeywordLongerThanTheLimitIsReportedButNeverCut) {
  const auto rules = rulesFor("en-US");
  const std::string lone(101, 'k');
  for (const auto& list : {lone, lone + ",notes", " " + lone + " , notes"}) {
    SCOPED_TRACE(list);
    const auto found = rules.judge(ListingField::keywords, list, "en-US/keywords.txt");
    const auto length = std::ranges::find(found, std::string("keywords.length"), &ListingFinding::rule);
    ASSERT_NE(length, found.end());
    EXPECT_EQ(length->fixedText, std::nullopt);
    ASSERT_TRUE(length->verdict.actionGuidance.has_value());
    EXPECT_FALSE(length->verdict.actionGuidance->primaryAction.type.isAutoFix());
    const auto fixed = rules.autoFixed(ListingField::keywords, list);
    EXPECT_TRUE(!fixed || fixed->starts_with(lone)) << *fixed;
  }
  // Tidying still applies; only the cut is left to the owner.
  EXPECT_EQ(rules.autoFixed(ListingField::keywords, lone + " , notes"), lone + ",notes");
  EXPECT_EQ(rules.autoFixed(ListingField::keywords, "notes," + lone), "notes");
}

TEST(ListingRulesTest, AddressMessagesSayWhatIsWrong) {
  const auto rules = rulesFor("en-US");
  struct AddressCase {
    std::string address;
    std::string message;
  };
  for (const auto& c : std::vector<AddressCase>{
           {"https://larkspur-notes.app/a b", "Support URL contains a space or a control character"},
           {"https://larkspur-notes.app/\u00A0x", "Support URL contains a space or a control character"},
           {"https://larkspur-notes.app/\tx", "Support URL contains a space or a control character"},
           {"https://larkspur-notes.app/\x01x", "Support URL contains a space or a control character"},
           {"https://larkspur-notes.app/\x7Fx", "Support URL contains a space or a control character"},
           {"https://larkspur-notes.app/\u202Eevil", "Support URL contains a space or a control character"},
           {"https://user@/help", "Support URL is not a complete web address"}}) {
    const auto found = rules.judge(ListingField::supportUrl, c.address, "en-US/support_url.txt");
    ASSERT_EQ(found.size(), 1u) << c.address;
    EXPECT_EQ(found[0].verdict.message, c.message) << c.address;
  }
}

TEST(ListingRulesTest, UnknownLocaleSuggestsTheClosestCode) {
  const auto found = rulesFor("").judgeUnknownLocale({"en-US-x1", facts().closestLocale("en-US-x1")});
  ASSERT_EQ(found.size(), 1u);
  EXPECT_EQ(found[0].level, RuleLevel::blocker);
  EXPECT_EQ(found[0].verdict.message, "'en-US-x1' is not a locale the store knows; did you mean 'en-US'?");
  EXPECT_EQ(facts().closestLocale("en_us"), "en-US");
  EXPECT_EQ(facts().closestLocale("pt"), "pt-BR");
  EXPECT_EQ(facts().closestLocale("xyzzy-klingon"), std::nullopt);
}

}  // namespace
}  // namespace corvane::store
