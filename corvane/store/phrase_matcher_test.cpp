#include "corvane/store/phrase_matcher.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace corvane::store {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::Optional;

const std::string kInvalidByte = "\xFF";  // alone, as "\xFFA" would read as one escape
const std::string kFamily = "\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466";

PhraseMatcher matcherFor(const std::vector<std::string>& phrases) {
  PhraseMatcher matcher;
  for (const auto& phrase : phrases) matcher.add(phrase);
  return matcher;
}

// Each match as "matched text=phrase", which reads well in a failure message.
std::vector<std::string> found(const PhraseMatcher& matcher, std::string_view text) {
  std::vector<std::string> result;
  for (const auto& match : matcher.findAll(text)) {
    result.push_back(std::string(text.substr(match.offset, match.length)) + "=" + std::string(matcher.phrase(match.phrase)));
  }
  return result;
}

struct MatchCase {
  std::string text;
  std::vector<std::string> expected;
};

void expectMatches(const PhraseMatcher& matcher, const std::vector<MatchCase>& cases) {
  for (const auto& [text, expected] : cases) {
    SCOPED_TRACE(text);
    EXPECT_THAT(found(matcher, text), ElementsAreArray(expected));
  }
}

const PhraseMatcher& contentRules() {
  static const PhraseMatcher matcher =
      matcherFor({"Android", "Google Play", "Google", "lorem ipsum", "#1", "coming soon", "in a future update", "tizen",
                  "test", "don’t", "cafe", "äpfel", "example.com", "近日公開", "★★★★★", "mañana", "ελλάδα"});
  return matcher;
}

TEST(PhraseMatcherTest, MatchesWholeWordsIgnoringCase) {
  expectMatches(
      contentRules(),
      {
          {"Android", {"Android=Android"}},
          {"Apps for android and ANDROID", {"android=Android", "ANDROID=Android"}},
          {"(ANDROID)", {"ANDROID=Android"}},
          {"Android-App", {"Android=Android"}},
          {"Android,Android Android", {"Android=Android", "Android=Android", "Android=Android"}},
          {"the #1 app", {"#1=#1"}},
          {"#1!", {"#1=#1"}},
          {"no#1#1", {"#1=#1", "#1=#1"}},
          {"Tizen's", {"Tizen=tizen"}},
          {"test.", {"test=test"}},
          {"Coming soon!", {"Coming soon=coming soon"}},
          {"Dark mode in a future update.", {"in a future update=in a future update"}},
          {"DON’T and don't", {"DON’T=don’t", "don't=don’t"}},
          {"ÄPFEL und Äpfel", {"ÄPFEL=äpfel", "Äpfel=äpfel"}},
          // Capitals at the start, in the middle and at the end of words with other letters.
          {"MAÑANA Mañana mañanA maÑana", {"MAÑANA=mañana", "Mañana=mañana", "mañanA=mañana", "maÑana=mañana"}},
          {"ΕΛΛΆΔΑ ελλάδα ελλάδΑ", {"ΕΛΛΆΔΑ=ελλάδα", "ελλάδα=ελλάδα", "ελλάδΑ=ελλάδα"}},
          {"visit example.com.", {"example.com=example.com"}},
          {"近日公開予定", {"近日公開=近日公開"}},
          {"\u2B50\uFE0FAndroid", {"Android=Android"}},
          {"Rated \u2605\uFE0F\u2605\u2605\u2605\u2605\uFE0F!", {"\u2605\uFE0F\u2605\u2605\u2605\u2605\uFE0F=★★★★★"}},
          {"\U0001F44DAndroid\U0001F44D", {"Android=Android"}},
          {"これはAndroidアプリです", {"Android=Android"}},
          {"Google Playで入手", {"Google Play=Google Play"}},
          {"Google Play에서 다운로드", {"Google Play=Google Play"}},
          {"แอปAndroidฟรี", {"Android=Android"}},
          {"تطبيق Android مجاني،", {"Android=Android"}},
          {"Android، تطبيق", {"Android=Android"}},
          {kInvalidByte + "Android\xC3", {"Android=Android"}},
          {"\xE2\x82test\x80\x80", {"test=test"}},
      });
}

TEST(PhraseMatcherTest, NearMissesStaySilent) {
  expectMatches(contentRules(), {
                                    {"Notizen", {}},
                                    {"contest tests testing test_case test2", {}},
                                    {"AndroidAndroid", {}},
                                    {"#10 and #1a", {}},
                                    {"GooglePlay", {}},
                                    {"loremipsum lorem-ipsum lorem.ipsum", {}},
                                    {"coming soonish", {}},
                                    {"dont don t don`t", {}},
                                    {"example. com example .com examplecom", {}},
                                    {"cafe\u0301 café cafes", {}},
                                    {"mañanas MAÑANAS mañanaΑ", {}},
                                    {"近日", {}},
                                    {"Androidu\u0308", {}},
                                });
}

TEST(PhraseMatcherTest, WhiteSpaceInAPhraseMatchesAnyRunOfWhiteSpace) {
  const auto matcher = matcherFor({"lorem ipsum"});
  for (const std::string separator :
       {" ", "   ", "\t", "\n", "\r\n", " \n\t ", "\u00A0", "\u3000", "\u2028", "\u0085"}) {
    SCOPED_TRACE(testing::PrintToString(separator));
    const auto text = "Lorem" + separator + "Ipsum";
    EXPECT_THAT(found(matcher, text), ElementsAre(text + "=lorem ipsum"));
  }
  // Characters that look like nothing but are not white space keep the words apart.
  for (const std::string separator : {"\u200B", "\u200D", "\u2060", "-", "_"}) {
    SCOPED_TRACE(testing::PrintToString(separator));
    EXPECT_THAT(found(matcher, "Lorem" + separator + "Ipsum"), IsEmpty());
  }
}

// At the edges of UTF-8's ranges: a malformed sequence (overlong, a surrogate, past U+10FFFF,
// cut short, a bad continuation byte) is a character per byte, so a phrase of its first byte
// alone matches there; a well-formed one is a single character that the byte never matches.
TEST(PhraseMatcherTest, MalformedUtf8IsReadByteByByte) {
  struct Case {
    std::string text;
    bool wellFormed;
  };
  const std::vector<Case> cases = {
      {"\xC0\x80", false},        {"\xC1\xBF", false},         {"\xC2\x80", true},          {"\xDF\xBF", true},
      {"\xE0\x80\x80", false},    {"\xE0\x9F\xBF", false},     {"\xE0\xA0\x80", true},      {"\xED\x9F\xBF", true},
      {"\xED\xA0\x80", false},    {"\xED\xBF\xBF", false},     {"\xEE\x80\x80", true},      {"\xE2\x82\xAC", true},
      {"\xE2\x82", false},        {"\xE2\x28\xA1", false},     {"\xF0\x8F\xBF\xBF", false}, {"\xF0\x90\x80\x80", true},
      {"\xF4\x8F\xBF\xBF", true}, {"\xF4\x90\x80\x80", false}, {"\xF5\x80\x80\x80", false}, {"\xF0\x9F\x98", false},
  };
  for (const auto& [text, wellFormed] : cases) {
    SCOPED_TRACE(testing::PrintToString(text));
    const auto matcher = matcherFor({text.substr(0, 1)});
    if (wellFormed) {
      EXPECT_THAT(matcher.findAll(text), IsEmpty());
    } else {
      EXPECT_THAT(matcher.findAll(text), ElementsAre(PhraseMatch{0, 1, 0}));
    }
  }
}

TEST(PhraseMatcherTest, LongestMatchWinsAndMatchesDoNotOverlap) {
  const auto matcher = matcherFor({"Google", "Google Play", "Play Store", "store"});
  expectMatches(matcher, {
                             {"google, google play", {"google=Google", "google play=Google Play"}},
                             // Google Play wins at "google", so "Play Store" cannot start inside it.
                             {"Google Play Store", {"Google Play=Google Play", "Store=store"}},
                             {"Play Store Google", {"Play Store=Play Store", "Google=Google"}},
                             {"Google\n  Play", {"Google\n  Play=Google Play"}},
                             {"Google-Play", {"Google=Google"}},
                         });
  const auto longer = matcherFor({"Google Play", "Google Play Store", "Google"});
  EXPECT_THAT(found(longer, "Google Play Store"), ElementsAre("Google Play Store=Google Play Store"));
}

TEST(PhraseMatcherTest, WordsInsideLinksAreNeverMatched) {
  const auto matcher = matcherFor({"test", "example.com", "mail"});
  expectMatches(matcher, {
                             {"https://example.org/test", {}},
                             {"see test@mail.app", {}},
                             {"www.test.de and WWW.Example.com", {}},
                             {"<https://example.com>", {}},
                             {"test https://test.org/test test.", {"test=test", "test=test"}},
                             {"(https://x.org/a)test", {}},
                             // Not links: no "://", no "www.", no '.' after the '@'.
                             {"test: test@home mail@", {"test=test", "test=test", "mail=mail"}},
                             {"example.com", {"example.com=example.com"}},
                         });
}

TEST(PhraseMatcherTest, AddIgnoresBlankPhrasesAndNumbersTheRest) {
  PhraseMatcher matcher;
  EXPECT_TRUE(matcher.empty());
  EXPECT_THAT(matcher.findAll("anything at all"), IsEmpty());
  EXPECT_EQ(matcher.add(""), std::nullopt);
  EXPECT_EQ(matcher.add(" \n\t\u3000"), std::nullopt);
  EXPECT_TRUE(matcher.empty());

  EXPECT_THAT(matcher.add("Android"), Optional(0u));
  EXPECT_EQ(matcher.add("  "), std::nullopt);
  EXPECT_THAT(matcher.add(" ANDROID "), Optional(1u));
  EXPECT_THAT(matcher.add("!"), Optional(2u));
  EXPECT_EQ(matcher.size(), 3u);
  EXPECT_FALSE(matcher.empty());
  EXPECT_EQ(matcher.phrase(1), " ANDROID ");
  EXPECT_THROW(static_cast<void>(matcher.phrase(3)), std::out_of_range);

  // Of two equal phrases the first added is reported.
  EXPECT_THAT(matcher.findAll("android!"), ElementsAre(PhraseMatch{0, 7, 0}, PhraseMatch{7, 1, 2}));
  EXPECT_THAT(matcher.findAll(""), IsEmpty());
}

TEST(PhraseMatcherTest, AClearedMatcherKnowsOnlyThePhrasesAddedSince) {
  PhraseMatcher matcher;
  // Enough phrases that the table has grown, and one that a later phrase starts like.
  for (int i = 0; i < 40; ++i) matcher.add("word" + std::to_string(i));
  matcher.add("stay tuned");
  matcher.clear();
  EXPECT_TRUE(matcher.empty());
  EXPECT_THAT(matcher.findAll("word1 stay tuned"), IsEmpty());

  EXPECT_THAT(matcher.add("stay"), Optional(0u));
  EXPECT_THAT(matcher.add("word1"), Optional(1u));
  EXPECT_EQ(matcher.size(), 2u);
  EXPECT_THROW(static_cast<void>(matcher.phrase(2)), std::out_of_range);
  EXPECT_THAT(found(matcher, "word1 stay tuned, word2"), ElementsAre("word1=word1", "stay=stay"));
}

TEST(PhraseMatcherTest, PositionsCountLinesAndCharacters) {
  struct Case {
    std::string text;
    std::vector<TextPosition> expected;
  };
  const auto matcher = matcherFor({"Android"});
  const std::vector<Case> cases = {
      {"Android", {{1, 1}}},
      {"x Android", {{1, 3}}},
      {"one\nAndroid\r\nAndroid\rx Android\n", {{2, 1}, {3, 1}, {4, 3}}},
      {"\n\n\r\n\r\rAndroid", {{6, 1}}},
      {kFamily + " Android", {{1, 3}}},
      {"e\u0301e\u0301 Android", {{1, 4}}},
      {"\U0001F1EB\U0001F1F7\U0001F44D\U0001F3FD:Android", {{1, 4}}},
      {"日本語 Android", {{1, 5}}},
      {"\xFF\xFE Android", {{1, 4}}},
      {"a\n\u00E4\u00F6 Android Android", {{2, 4}, {2, 12}}},
  };
  for (const auto& [text, expected] : cases) {
    SCOPED_TRACE(testing::PrintToString(text));
    std::vector<TextPosition> positions;
    for (const auto& match : matcher.findAll(text)) positions.push_back(positionAt(text, match.offset));
    EXPECT_EQ(positions, expected);
  }
}

TEST(PhraseMatcherTest, PositionAtTheEdges) {
  struct Case {
    std::string text;
    std::size_t offset;
    TextPosition expected;
  };
  const std::vector<Case> cases = {
      {"", 0, {1, 1}},
      {"", 5, {1, 1}},
      {"ab", 2, {1, 3}},
      {"ab", 99, {1, 3}},
      {"ab\n", 3, {2, 1}},
      {"ab\r", 3, {2, 1}},
      {"ab\r\n", 4, {2, 1}},
      // Between "\r" and "\n" the line break counts as passed but not yet ended.
      {"ab\r\ncd", 3, {1, 4}},
  };
  for (const auto& [text, offset, expected] : cases) {
    SCOPED_TRACE(testing::PrintToString(text) + " at " + std::to_string(offset));
    EXPECT_EQ(positionAt(text, offset), expected);
  }
}

TEST(PhraseMatcherTest, FindLinksReportsSpansAndHosts) {
  struct Case {
    std::string text;
    std::vector<std::string> expected;  // "link host"
  };
  const std::vector<Case> cases = {
      {"Visit https://user:pw@Example.COM:8080/path?q=1#f today.",
       {"https://user:pw@Example.COM:8080/path?q=1#f example.com"}},
      {"(see https://en.wikipedia.org/wiki/Foo_(bar)).", {"https://en.wikipedia.org/wiki/Foo_(bar) en.wikipedia.org"}},
      {"https://example.org/a/b), [http://a.example]",
       {"https://example.org/a/b example.org", "http://a.example a.example"}},
      {"www.Example.org/x, WWW.EXAMPLE.ORG:80!",
       {"www.Example.org/x www.example.org", "WWW.EXAMPLE.ORG:80 www.example.org"}},
      {"Mail Support@Example.com!", {"Support@Example.com example.com"}},
      {"mailto:a@b.example.org?subject=x", {"mailto:a@b.example.org?subject=x b.example.org"}},
      {"“https://bücher.DE/x”\n'ftp://files.example.net';",
       {"https://bücher.DE/x bücher.de", "ftp://files.example.net files.example.net"}},
      {"http://[::1]:8080/ https://h?q#f", {"http://[::1]:8080/ [::1]", "https://h?q#f h"}},
      {"\xFFhttps://a.b\xFE x", {"\xFFhttps://a.b\xFE a.b\xFE"}},
      {"@handle. user@localhost e.g. example.com www www. 10:30 a::b", {}},
      {"", {}},
  };
  for (const auto& [text, expected] : cases) {
    SCOPED_TRACE(testing::PrintToString(text));
    std::vector<std::string> links;
    for (const auto& link : findLinks(text)) links.push_back(text.substr(link.offset, link.length) + " " + link.host);
    EXPECT_THAT(links, ElementsAreArray(expected));
  }
}

// Texts assembled at random from words, phrases, links, emoji, marks and broken UTF-8 (seeded,
// so a failure reproduces): every match lies inside the text, in order and apart, and read on
// its own it is a whole match of the same phrase.
TEST(PhraseMatcherTest, MatchesInAssortedTextsAreConsistent) {
  const auto& matcher = contentRules();
  const std::vector<std::string> pieces = {
      "Android", "google", "Play",   "#1",     "#",      "1",      "test",         "Notizen",  "lorem",
      "ipsum",   "don",    "’",      "t",      "\u0301", "\uFE0F", "\xFF",         "\xE2\x82", " ",
      "\n",      "\r\n",   "\u00A0", "-",      ".",      "@",      "https://x.y/", "www.",     "example",
      "com",     "近日",   "公開",   "アプリ", kFamily,  "ÄPFEL",  "coming soon",  "in",       "a",
      "future",  "update", "café",   "_",      "(",      ")"};
  std::mt19937 random(20240611);
  std::uniform_int_distribution<std::size_t> pick(0, pieces.size() - 1);
  std::uniform_int_distribution<int> count(0, 30);
  std::size_t total = 0;
  for (int round = 0; round < 2000; ++round) {
    std::string text;
    for (int i = count(random); i > 0; --i) text += pieces[pick(random)];
    SCOPED_TRACE(testing::PrintToString(text));
    std::size_t previousEnd = 0;
    for (const auto& match : matcher.findAll(text)) {
      ASSERT_GE(match.offset, previousEnd);
      ASSERT_LE(match.offset + match.length, text.size());
      previousEnd = match.offset + match.length;
      const auto alone = std::string_view(text).substr(match.offset, match.length);
      EXPECT_THAT(matcher.findAll(alone), ElementsAre(PhraseMatch{0, match.length, match.phrase}));
      ++total;
    }
  }
  EXPECT_GT(total, 100u);  // the pieces do plant matches
}

}  // namespace
}  // namespace corvane::store
