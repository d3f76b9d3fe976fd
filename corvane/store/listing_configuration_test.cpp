#include "corvane/store/listing_configuration.hpp"

#include "corvane/store/store_facts.hpp"
#include "corvane/testing/thrown.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <array>
#include <fstream>
#include <string>

namespace corvane::store {
namespace {

namespace fs = std::filesystem;
using corvane::testing::thrown;
using ::testing::ElementsAre;
using ::testing::StartsWith;

constexpr std::array<std::string_view, 4> kRules = {"name.length", "content.claims", "description.length",
                                                    "release-notes.required"};
const std::array<std::string, 4> kLocales = {"en-US", "de-DE", "fr-FR", "ja"};

class ListingConfigurationTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "corvane-configuration-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
  }

  void TearDown() override { fs::remove_all(folder_); }

  fs::path write(std::string_view text, std::string_view name = ".corvane.toml") {
    const fs::path file = folder_ / name;
    std::ofstream(file, std::ios::binary) << text;
    return file;
  }

  static ListingConfiguration read(const fs::path& file) { return readListingConfiguration(file, kRules, kLocales); }

  fs::path folder_;
};

TEST_F(ListingConfigurationTest, ReadsEverySettingAndAnswersByLocale) {
  const fs::path file = write(R"(first-version = true
extra-locales = ["sl", "en-IN"]

[rules]
"name.length" = "optimization"
content.claims = "off"
release-notes.required = "blocker"

[words]
forbidden = ["beta", "early access"]
allowed = ["Top Hat"]

[locales.de-DE.rules]
"content.claims" = "opportunity"
[locales.de-DE.words]
allowed = ["Best"]

[locales.sl.rules.name]
length = "off"
)");
  const ListingConfiguration configuration = read(file);

  EXPECT_EQ(configuration.source, file);
  EXPECT_EQ(configuration.firstVersion, true);
  EXPECT_THAT(configuration.extraLocales, ElementsAre("sl", "en-IN"));
  EXPECT_EQ(configuration.global.levels.size(), 3u);
  EXPECT_THAT(configuration.global.words.forbidden, ElementsAre("beta", "early access"));

  struct Case {
    std::string_view rule;
    std::string_view locale;
    std::optional<RuleLevel> level;
  };
  const Case cases[] = {
      {"name.length", "en-US", RuleLevel::optimization},          // quoted key, global
      {"content.claims", "en-US", std::nullopt},                  // dotted key, off globally
      {"content.claims", "de-DE", RuleLevel::opportunity},        // the locale turns it back on
      {"name.length", "sl", std::nullopt},                        // the locale turns it off
      {"name.length", "de-DE", RuleLevel::optimization},          // the locale leaves it alone
      {"release-notes.required", "ja", RuleLevel::blocker},       // two dots, one of them in a name
      {"description.length", "de-DE", RuleLevel::rejectionRisk},  // not configured: the default
  };
  for (const auto& [rule, locale, level] : cases) {
    SCOPED_TRACE(std::string(rule) + " in " + std::string(locale));
    EXPECT_EQ(configuration.levelOf(rule, locale, RuleLevel::rejectionRisk), level);
  }

  const WordSettings german = configuration.wordsFor("de-DE");
  EXPECT_THAT(german.forbidden, ElementsAre("beta", "early access"));
  EXPECT_THAT(german.allowed, ElementsAre("Top Hat", "Best"));
  EXPECT_EQ(configuration.wordsFor("fr-FR"), configuration.global.words);
}

TEST_F(ListingConfigurationTest, AnEmptyFileIsTheDefault) {
  const fs::path file = write("# nothing to change\n");
  ListingConfiguration expected;
  expected.source = file;
  EXPECT_EQ(read(file), expected);
  EXPECT_EQ(ListingConfiguration{}.levelOf("name.length", "en-US", RuleLevel::blocker), RuleLevel::blocker);
}

TEST_F(ListingConfigurationTest, ExtraLocalesCountWhereverTheyAreWritten) {
  // A dotted top-level key may open the locale section before extra-locales names it.
  const ListingConfiguration configuration = read(write(R"(locales.sl.words.allowed = ["Top"]
extra-locales = ["sl"]
)"));
  EXPECT_THAT(configuration.wordsFor("sl").allowed, ElementsAre("Top"));
}

TEST_F(ListingConfigurationTest, ReportsTheFirstProblemWithItsLineAndKey) {
  struct Case {
    std::string_view name;
    std::string_view text;
    std::string_view message;  // what() after "<file>:"
    std::string_view key;
  };
  const Case cases[] = {
      {"unknown top-level key", "colour = \"red\"\n", "1: unknown key 'colour'", "colour"},
      {"typo with a suggestion", "first_version = true\n",
       "1: unknown key 'first_version'; did you mean 'first-version'?", "first_version"},
      {"typo in words", "[words]\nforbidden = [\"a\"]\nforbiden = [\"b\"]\n",
       "3: unknown key 'forbiden'; did you mean 'forbidden'?", "words.forbiden"},
      {"typo in a locale section", "[locales.de-DE.word]\nallowed = [\"x\"]\n",
       "1: unknown key 'word'; did you mean 'words'?", "locales.de-DE.word"},
      {"unknown rule", "first-version = false\n\n[rules]\n\"name.lenght\" = \"off\"\n",
       "4: unknown rule 'name.lenght'; did you mean 'name.length'?", "rules.\"name.lenght\""},
      {"unknown dotted rule", "[rules]\ncontent.claim = \"off\"\n",
       "2: unknown rule 'content.claim'; did you mean 'content.claims'?", "rules.\"content.claim\""},
      {"unknown rule, nothing close", "[rules]\nspeling = \"off\"\n", "2: unknown rule 'speling'", "rules.speling"},
      {"a line break in a rule", "[rules]\n\"a\\nb\" = \"off\"\n", "2: unknown rule 'a b'", "rules.\"a\\u000Ab\""},
      {"unknown level", "[rules]\n\"content.claims\" = \"error\"\n",
       "2: rules.\"content.claims\": level must be off, blocker, rejection-risk, optimization or opportunity, "
       "not 'error'",
       "rules.\"content.claims\""},
      {"level of the wrong type", "[locales.de-DE.rules]\nname.length = 2\n",
       "2: locales.de-DE.rules.\"name.length\": level must be off, blocker, rejection-risk, optimization or "
       "opportunity, not an integer",
       "locales.de-DE.rules.\"name.length\""},
      {"a rule set twice", "[rules]\n\"name.length\" = \"off\"\nname.length = \"blocker\"\n",
       "3: rule 'name.length' is already set on line 2", "rules.\"name.length\""},
      {"first-version not a bool", "first-version = \"yes\"\n", "1: first-version: must be true or false, not a string",
       "first-version"},
      {"words not an array", "[words]\nforbidden = \"beta\"\n",
       "2: words.forbidden: must be an array of strings, not a string", "words.forbidden"},
      {"a word not a string", "[words]\nallowed = [\"ok\",\n  3]\n",
       "3: words.allowed[1]: must be a string, not an integer", "words.allowed[1]"},
      {"a blank word", "[locales.ja.words]\nforbidden = [\" \\t\"]\n",
       "2: locales.ja.words.forbidden[0]: must not be empty or blank", "locales.ja.words.forbidden[0]"},
      {"an empty extra locale", "extra-locales = [\"\"]\n", "1: extra-locales[0]: must not be empty or blank",
       "extra-locales[0]"},
      {"rules not a table", "rules = \"off\"\n", "1: rules: must be a table, not a string", "rules"},
      {"unknown locale", "[locales.de-XX.rules]\n\"name.length\" = \"off\"\n",
       "1: unknown locale 'de-XX'; did you mean 'de-DE'?", "locales.de-XX"},
      {"locale in the wrong case", "[locales.de-de.words]\n", "1: unknown locale 'de-de'; did you mean 'de-DE'?",
       "locales.de-de"},
      {"locale missing from extra-locales", "extra-locales = [\"en-IN\"]\n[locales.sl.words]\n",
       "2: unknown locale 'sl'", "locales.sl"},
      {"first problem in file order", "zzz = 1\n[rules]\n\"name.length\" = \"error\"\n[locales.xx]\n",
       "1: unknown key 'zzz'", "zzz"},
  };
  for (const auto& [name, text, message, key] : cases) {
    SCOPED_TRACE(name);
    const fs::path file = write(text);
    const auto error = thrown<ConfigurationError>([&] { read(file); });
    if (!error) continue;
    EXPECT_EQ(error->what(), file.string() + ':' + std::string(message));
    EXPECT_EQ(error->key(), key);
    EXPECT_EQ(error->file(), file);
    EXPECT_EQ(error->column(), 0u);
  }
}

TEST_F(ListingConfigurationTest, ReportsTheParsersPositionForBadTomlAndUtf8) {
  struct Case {
    std::string_view name;
    std::string_view text;
    std::size_t line;
  };
  const Case cases[] = {
      {"unclosed table header", "first-version = true\n[rules\n", 2},
      {"bare level", "[rules]\n\"name.length\" = off\n", 2},
      {"a key set twice", "first-version = true\nfirst-version = false\n", 2},
      {"invalid UTF-8", "# fine\n[words]\nallowed = [\"caf\xC3\"]\n", 3},
  };
  for (const auto& [name, text, line] : cases) {
    SCOPED_TRACE(name);
    const fs::path file = write(text);
    const auto error = thrown<ConfigurationError>([&] { read(file); });
    if (!error) continue;
    EXPECT_EQ(error->line(), line);
    EXPECT_GT(error->column(), 0u);
    EXPECT_THAT(error->what(),
                StartsWith(file.string() + ':' + std::to_string(line) + ':' + std::to_string(error->column()) + ": "));
    EXPECT_GT(std::string_view(error->what()).size(), file.string().size() + 8) << "no description";
    EXPECT_EQ(error->key(), "");
  }
}

TEST_F(ListingConfigurationTest, ReportsFilesThatCannotBeRead) {
  const std::string atLimit = "#" + std::string(kMaxListingConfigurationSize - 2, 'x') + "\n";
  EXPECT_EQ(read(write(atLimit, "at-limit.toml")).global, RuleSettings{});

  struct Case {
    std::string_view name;
    fs::path file;
    std::string message;
  };
  const Case cases[] = {
      {"missing", folder_ / "metadata" / ".corvane.toml", "cannot read the file: No such file or directory"},
      {"a folder", folder_, "cannot read the file: it is a folder"},
      {"one byte too large", write(atLimit + "\n", "too-large.toml"), "the file is larger than 1 MiB"},
  };
  for (const auto& [name, file, message] : cases) {
    SCOPED_TRACE(name);
    const auto error = thrown<ConfigurationError>([&] { read(file); });
    if (!error) continue;
    EXPECT_EQ(error->what(), file.string() + ": " + message);
    EXPECT_EQ(error->line(), 0u);
    EXPECT_EQ(error->key(), "");
  }
}

// The lookup the checker and an editor share: which file, and checked against which store.
TEST_F(ListingConfigurationTest, LoadsTheGivenFileElseTheFoldersOwnElseTheDefault) {
  static const StoreFacts appStore = StoreFacts::load(CORVANE_STORE_RESOURCES, StoreId::appStore);
  static const StoreFacts play = StoreFacts::load(CORVANE_STORE_RESOURCES, StoreId::googlePlay);
  const fs::path withOwn = folder_ / "with-own";
  const fs::path withoutOwn = folder_ / "without-own";
  fs::create_directories(withOwn);
  fs::create_directories(withoutOwn);
  const fs::path own = write("first-version = true\n", "with-own/.corvane.toml");
  const fs::path given = write("extra-locales = [\"en-IN\"]\n", "given.toml");
  const fs::path playRule = write("[rules]\n\"title.claim\" = \"off\"\n", "play-rule.toml");
  const fs::path playLocale = write("[locales.ja-JP.rules]\n\"title.claim\" = \"off\"\n", "play-locale.toml");

  struct Case {
    std::string_view what;
    fs::path root;
    std::optional<fs::path> file;
    const StoreFacts* facts;
    std::optional<fs::path> source;  // the file read; nothing for the default
    std::string error;               // the start of the ConfigurationError's message, if any
  };
  const Case cases[] = {
      {"the given file wins over the folder's", withOwn, given, &appStore, given, ""},
      {"the folder's own file", withOwn, std::nullopt, &appStore, own, ""},
      {"neither: the default", withoutOwn, std::nullopt, &appStore, std::nullopt, ""},
      {"a Play rule for Play", withoutOwn, playRule, &play, playRule, ""},
      {"a Play rule for the App Store", withoutOwn, playRule, &appStore, std::nullopt, playRule.string() + ":2:"},
      {"a Play locale for Play", withoutOwn, playLocale, &play, playLocale, ""},
      {"a Play locale for the App Store", withoutOwn, playLocale, &appStore, std::nullopt, playLocale.string() + ":1:"},
      {"a missing given file", withOwn, folder_ / "none.toml", &appStore, std::nullopt,
       (folder_ / "none.toml").string() + ": cannot read"},
  };
  for (const auto& [what, root, file, facts, source, error] : cases) {
    SCOPED_TRACE(what);
    try {
      const auto configuration = loadListingConfiguration(root, file, *facts);
      EXPECT_EQ(error, "") << "no error";
      EXPECT_EQ(configuration.source, source);
      // Read, not only found: the folder's own file is the one that says first-version.
      EXPECT_EQ(configuration.firstVersion, source == own ? std::optional(true) : std::nullopt);
    } catch (const ConfigurationError& thrown) {
      EXPECT_THAT(thrown.what(), StartsWith(error.empty() ? "(no error expected)" : error));
    }
  }
}

}  // namespace
}  // namespace corvane::store
