#include "corvane/text/characters.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <utf8proc.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace corvane {
namespace {

using ::testing::ElementsAreArray;
using ::testing::Optional;

// Emoji and other sequences used across the tests, spelled out by code point.
const std::string kFamily = "\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466";
const std::string kThumbsUpMedium = "\U0001F44D\U0001F3FD";
const std::string kTechnologistMedium = "\U0001F469\U0001F3FD\u200D\U0001F4BB";
const std::string kFlagUS = "\U0001F1FA\U0001F1F8";
const std::string kFlagFR = "\U0001F1EB\U0001F1F7";
const std::string kEAcuteCombining = "e\u0301";

std::string repeated(std::string_view piece, std::size_t times) {
  std::string result;
  result.reserve(piece.size() * times);
  for (std::size_t i = 0; i < times; ++i) result += piece;
  return result;
}

// The byte offsets at which characters start, found the slow and obvious way: decode every
// code point with utf8proc and ask it about every pair, with an invalid byte standing alone.
std::vector<std::size_t> referenceBoundaries(std::string_view text) {
  std::vector<std::size_t> starts;
  const auto* data = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
  std::int32_t previous = -1;
  std::int32_t state = 0;
  for (std::size_t i = 0; i < text.size();) {
    std::int32_t current = -1;
    const auto length = utf8proc_iterate(data + i, static_cast<utf8proc_ssize_t>(text.size() - i), &current);
    if (length < 0) {
      starts.push_back(i);
      previous = -1;
      state = 0;
      ++i;
      continue;
    }
    if (previous < 0 || utf8proc_grapheme_break_stateful(previous, current, &state)) starts.push_back(i);
    previous = current;
    i += static_cast<std::size_t>(length);
  }
  return starts;
}

// Strings built from pieces that exercise every grapheme rule (U+0600 is a prepended mark,
// U+0903 a spacing mark), ASCII next to everything else, and malformed bytes. Deterministic,
// so a failure reproduces.
std::vector<std::string> assortedStrings() {
  std::vector<std::string> pieces = {
      "a",          "Z",          " ",      "#",          "1",          "\r",           "\n",          "\r\n",
      "\t",         "e",          "\u0301", "\u0308",     "\u200D",     "\uFE0F",       "\u20E3",      "\U0001F468",
      "\U0001F469", "\U0001F3FD", "\u2764", "\U0001F1FA", "\U0001F1F8", "\U0001F1EB",   "\u0600",      "\u0903",
      "\u1100",     "\u1161",     "\u11A8", "\uAC00",     "\uAC01",     "\u00E9",       "\u0085",      "\u3000",
      "\u200B",     "\xFF",       "\x80",   "\xC0\xAF",   "\xE2\x82",   "\xED\xA0\x80", "\xF0\x9F\x91"};
  // Runs long enough for the block-wise ASCII counting.
  pieces.push_back(std::string(40, 'x'));
  pieces.push_back(std::string(33, ' ') + "\r");
  std::mt19937 random(20240611);
  std::vector<std::string> strings;
  for (int n = 0; n < 3000; ++n) {
    std::string text;
    const auto pieceCount = random() % 24;
    for (std::uint32_t i = 0; i < pieceCount; ++i) text += pieces[random() % pieces.size()];
    strings.push_back(std::move(text));
  }
  // Arbitrary bytes, mostly malformed.
  for (int n = 0; n < 500; ++n) {
    std::string text;
    const auto length = random() % 40;
    for (std::uint32_t i = 0; i < length; ++i) text += static_cast<char>(random() % 256);
    strings.push_back(std::move(text));
  }
  return strings;
}

TEST(CharacterCount, EmptyAndAscii) {
  EXPECT_EQ(characterCount(""), 0u);
  EXPECT_EQ(characterCount("a"), 1u);
  EXPECT_EQ(characterCount("Hello, world!"), 13u);
  EXPECT_EQ(characterCount(std::string(1000, 'x')), 1000u);
}

TEST(CharacterCount, LineBreaks) {
  EXPECT_EQ(characterCount("\r\n"), 1u);
  EXPECT_EQ(characterCount("\n\r"), 2u);
  EXPECT_EQ(characterCount("a\r\nb"), 3u);
  EXPECT_EQ(characterCount("\r\r\n\n"), 3u);
  // A CR LF pair lands on every position relative to the blocks ASCII is counted in.
  for (std::size_t at = 0; at <= 80; ++at) {
    std::string text(80, 'x');
    text.insert(at, "\r\n");
    EXPECT_EQ(characterCount(text), 81u) << "CR LF at " << at;
  }
}

TEST(CharacterCount, CombiningMarksJoinTheirBase) {
  EXPECT_EQ(characterCount(kEAcuteCombining), 1u);
  EXPECT_EQ(characterCount("a\u0301\u0302\u0323\u0308\u0330"), 1u);
  EXPECT_EQ(characterCount(kEAcuteCombining + kEAcuteCombining), 2u);
  EXPECT_EQ(characterCount("\u0301"), 1u);  // a mark with nothing to attach to still counts
  EXPECT_EQ(characterCount("\u00E9"), 1u);  // precomposed
  // A mark or joiner right after a long ASCII run belongs to the run's last letter.
  EXPECT_EQ(characterCount(std::string(100, 'a') + "\u0301"), 100u);
  EXPECT_EQ(characterCount(std::string(64, 'a') + "\u200D" + std::string(64, 'b')), 128u);
  // A prepended mark joins the ASCII letter after it.
  EXPECT_EQ(characterCount("\u0600a"), 1u);
}

TEST(CharacterCount, EmojiSequences) {
  EXPECT_EQ(characterCount(kFamily), 1u);
  EXPECT_EQ(characterCount(kThumbsUpMedium), 1u);
  EXPECT_EQ(characterCount(kTechnologistMedium), 1u);
  EXPECT_EQ(characterCount("\u2764\uFE0F"), 1u);
  EXPECT_EQ(characterCount("1\uFE0F\u20E3"), 1u);  // keycap
  EXPECT_EQ(characterCount("Hi " + kFamily + "!"), 5u);
  // A joiner between two things that are not pictographs does not join them.
  EXPECT_EQ(characterCount("a\u200Db"), 2u);
}

TEST(CharacterCount, RegionalIndicatorsPairUp) {
  EXPECT_EQ(characterCount(kFlagUS), 1u);
  EXPECT_EQ(characterCount(kFlagUS + kFlagFR), 2u);
  EXPECT_EQ(characterCount("\U0001F1FA"), 1u);
  EXPECT_EQ(characterCount(kFlagUS + "\U0001F1EB"), 2u);
  EXPECT_EQ(characterCount(kFlagUS + kFlagFR + "\U0001F1EB"), 3u);
  // Letters in between restart the pairing.
  EXPECT_EQ(characterCount("\U0001F1FA"
                           "a"
                           "\U0001F1F8"
                           "\U0001F1EB"),
            3u);
}

TEST(CharacterCount, HangulSyllables) {
  EXPECT_EQ(characterCount("\uD55C\uAD6D\uC5B4"), 3u);  // precomposed
  EXPECT_EQ(characterCount("\u1112\u1161\u11AB"), 1u);  // L V T
  EXPECT_EQ(characterCount("\u1112\u1161\u11AB\u1100\u1161"), 2u);
  EXPECT_EQ(characterCount("\uAC00\u11A8"), 1u);  // LV T
  EXPECT_EQ(characterCount("\uAC01\u1161"), 2u);  // LVT does not take a V
}

TEST(CharacterCount, ThirtyCharacterNames) {
  EXPECT_EQ(characterCount(repeated(kFamily, 30)), 30u);
  EXPECT_EQ(characterCount(repeated(kTechnologistMedium, 30)), 30u);
  EXPECT_EQ(characterCount(repeated(kFlagUS, 30)), 30u);
  EXPECT_EQ(characterCount(repeated("e\u0301\u0308", 30)), 30u);
}

TEST(CharacterCount, EachInvalidByteIsOneCharacter) {
  EXPECT_EQ(characterCount("\x80"), 1u);  // lone continuation byte
  EXPECT_EQ(characterCount("a\x80"
                           "b"),
            3u);
  EXPECT_EQ(characterCount("ab\xE2\x82"), 4u);  // truncated at the end
  EXPECT_EQ(characterCount("\xFF"), 1u);
  EXPECT_EQ(characterCount("\xC0\xAF"), 2u);          // overlong '/'
  EXPECT_EQ(characterCount("\xED\xA0\x80"), 3u);      // surrogate
  EXPECT_EQ(characterCount("\xF4\x90\x80\x80"), 4u);  // above U+10FFFF
  EXPECT_EQ(characterCount("\xF0\x9F\x91"
                           "A"),
            4u);  // truncated before ASCII
  // An invalid byte breaks clusters on both sides.
  EXPECT_EQ(characterCount("e\x80\u0301"), 3u);
  EXPECT_EQ(characterCount("\U0001F1FA\xFF\U0001F1F8"), 3u);
  EXPECT_EQ(characterCount("\r\xFF\n"), 3u);
}

TEST(CharacterCount, TenMegabytes) {
  const std::string ascii = repeated("Line of text.\r\n", 700'000);  // 15 bytes, 14 characters
  EXPECT_EQ(characterCount(ascii), 14u * 700'000);
  // "Grüße " (6) + family (1) + " " (1) + two flags (2) + e-acute (1) + "\n" (1) = 12.
  const std::string piece = "Gr\u00FC\u00DFe " + kFamily + " " + kFlagUS + kFlagFR + kEAcuteCombining + "\n";
  const std::size_t times = 10'000'000 / piece.size() + 1;
  const std::string mixed = repeated(piece, times);
  ASSERT_GE(mixed.size(), 10'000'000u);
  EXPECT_EQ(characterCount(mixed), 12u * times);
}

TEST(CharacterCount, MatchesPlainUtf8procLoop) {
  for (const auto& text : assortedStrings()) {
    EXPECT_EQ(characterCount(text), referenceBoundaries(text).size()) << ::testing::PrintToString(text);
  }
}

TEST(PrefixCharacters, CutsOnCharacterBoundaries) {
  EXPECT_EQ(prefixCharacters("hello", 3), "hel");
  EXPECT_EQ(prefixCharacters("hello", 0), "");
  EXPECT_EQ(prefixCharacters(kEAcuteCombining + kEAcuteCombining, 1), kEAcuteCombining);
  EXPECT_EQ(prefixCharacters(kFamily + "x", 1), kFamily);
  EXPECT_EQ(prefixCharacters(kFlagUS + kFlagFR, 1), kFlagUS);
  EXPECT_EQ(prefixCharacters("a\r\nb", 2), "a\r\n");
  EXPECT_EQ(prefixCharacters(std::string(1000, 'a'), 517).size(), 517u);
  EXPECT_EQ(prefixCharacters(std::string(100, 'a') + "\u0301", 100), std::string(100, 'a') + "\u0301");
}

TEST(PrefixCharacters, ReturnsAllWhenShortEnough) {
  EXPECT_EQ(prefixCharacters("", 5), "");
  EXPECT_EQ(prefixCharacters("hello", 5), "hello");
  EXPECT_EQ(prefixCharacters("hello", 10), "hello");
  EXPECT_EQ(prefixCharacters(kFamily, 1), kFamily);
  const std::string text = "abc " + kFamily;
  EXPECT_EQ(prefixCharacters(text, 99).data(), text.data());
}

TEST(PrefixCharacters, InvalidBytesAreCharacters) {
  EXPECT_EQ(prefixCharacters("a\xFF"
                             "b",
                             2),
            "a\xFF");
  EXPECT_EQ(prefixCharacters("\xE2\x82", 1), "\xE2");
  EXPECT_EQ(prefixCharacters("e\x80\u0301", 2), "e\x80");
}

TEST(PrefixCharacters, MatchesPlainUtf8procLoop) {
  for (const auto& text : assortedStrings()) {
    const auto starts = referenceBoundaries(text);
    for (std::size_t count = 0; count <= starts.size() + 1; ++count) {
      const std::size_t expected = count < starts.size() ? starts[count] : text.size();
      ASSERT_EQ(prefixCharacters(text, count).size(), expected)
          << ::testing::PrintToString(text) << " cut after " << count;
    }
  }
}

TEST(IsWhitespaceOrNewline, ExactlyTheSeparatorsAndLineBreaks) {
  std::vector<char32_t> found;
  for (char32_t c = 0; c <= 0x10FFFF; ++c) {
    if (isWhitespaceOrNewline(c)) found.push_back(c);
  }
  const std::vector<char32_t> expected = {0x09,   0x0A,   0x0B,   0x0C,   0x0D,   0x20,   0x85,   0xA0,   0x1680,
                                          0x2000, 0x2001, 0x2002, 0x2003, 0x2004, 0x2005, 0x2006, 0x2007, 0x2008,
                                          0x2009, 0x200A, 0x2028, 0x2029, 0x202F, 0x205F, 0x3000};
  EXPECT_THAT(found, ElementsAreArray(expected));
  EXPECT_FALSE(isWhitespaceOrNewline(0x110000));
  EXPECT_FALSE(isWhitespaceOrNewline(0xFFFFFFFF));
}

TEST(Trimmed, RemovesWhitespaceAndLineBreaksAtBothEnds) {
  EXPECT_EQ(trimmed("\r\n hello \r\n"), "hello");
  EXPECT_EQ(trimmed("\t\tx\t"), "x");
  EXPECT_EQ(trimmed("\x0B\x0Cx\x0B\x0C"), "x");
  EXPECT_EQ(trimmed("\u00A0x\u00A0"), "x");
  EXPECT_EQ(trimmed("\u3000x\u3000"), "x");
  EXPECT_EQ(trimmed("\u2028x\u2029"), "x");
  EXPECT_EQ(trimmed("\u0085x\u0085"), "x");
  EXPECT_EQ(trimmed("\u2003 \u202F" + kFamily + "\u205F"), kFamily);
}

TEST(Trimmed, KeepsEverythingElse) {
  EXPECT_EQ(trimmed(""), "");
  EXPECT_EQ(trimmed(" \t\r\n\u00A0\u3000\u2028 "), "");
  EXPECT_EQ(trimmed("  a b\u3000c\r\nd  "), "a b\u3000c\r\nd");
  EXPECT_EQ(trimmed("\u200Bx\u200B"), "\u200Bx\u200B");  // zero-width space is a format character
  EXPECT_EQ(trimmed("\uFEFFx"), "\uFEFFx");
  EXPECT_EQ(trimmed(" \u0301"), "\u0301");  // trimming works on code points, not characters
  const std::string text = "  abc  ";
  const auto result = trimmed(text);
  EXPECT_EQ(result.data(), text.data() + 2);
  EXPECT_EQ(result.size(), 3u);
}

TEST(Trimmed, StopsAtInvalidBytes) {
  EXPECT_EQ(trimmed("\xFF x \xFF"), "\xFF x \xFF");
  EXPECT_EQ(trimmed(" \xFF "), "\xFF");
  EXPECT_EQ(trimmed(" \xE2\x80"), "\xE2\x80");  // the start of U+2028, cut short
  EXPECT_EQ(trimmed("\x80\xA8 x"), "\x80\xA8 x");
  EXPECT_EQ(trimmed(" x\xA0"), "x\xA0");         // the second byte of U+00A0 alone
  EXPECT_EQ(trimmed("x\xC2\xC2\xA0"), "x\xC2");  // a stray lead byte, then U+00A0
  EXPECT_EQ(trimmed("x\x80\x80\x80\x80\x80 "), "x\x80\x80\x80\x80\x80");
  EXPECT_EQ(trimmed("\xED\xA0\x80 "), "\xED\xA0\x80");
}

TEST(Lowercased, MapsEachCodePoint) {
  EXPECT_EQ(lowercased(""), "");
  EXPECT_EQ(lowercased("Hello, WORLD 123 @[`{"), "hello, world 123 @[`{");
  EXPECT_EQ(lowercased("\u00C0\u00C9\u00CE"), "\u00E0\u00E9\u00EE");
  EXPECT_EQ(lowercased("\u03A3\u0391\u03A3"), "\u03C3\u03B1\u03C3");
  EXPECT_EQ(lowercased("\u023A"), "\u2C65");  // the lower case takes one more byte
  EXPECT_EQ(lowercased("E\u0301" + kFamily), "e\u0301" + kFamily);
}

TEST(Lowercased, CopiesInvalidBytes) {
  EXPECT_EQ(lowercased("A\xFF"
                       "B\xC0\xAF"
                       "C"),
            "a\xFF"
            "b\xC0\xAF"
            "c");
  EXPECT_EQ(lowercased("\xED\xA0\x80\xC3"), "\xED\xA0\x80\xC3");
  EXPECT_EQ(lowercased("\xC3\x89\xC3"), "\xC3\xA9\xC3");
}

TEST(FirstInvalidUtf8Offset, FindsTheFirstMalformedByte) {
  EXPECT_EQ(firstInvalidUtf8Offset(""), std::nullopt);
  EXPECT_EQ(firstInvalidUtf8Offset("h\u00E9llo " + kFamily + kFlagUS), std::nullopt);
  EXPECT_EQ(firstInvalidUtf8Offset("\uFFFF\U0010FFFF"), std::nullopt);  // noncharacters are well formed
  EXPECT_THAT(firstInvalidUtf8Offset("abc\x80"), Optional(3u));
  EXPECT_THAT(firstInvalidUtf8Offset("ab\xE2\x82"), Optional(2u));
  EXPECT_THAT(firstInvalidUtf8Offset("\xFF"), Optional(0u));
  EXPECT_THAT(firstInvalidUtf8Offset("a\xC0\xAF"), Optional(1u));
  EXPECT_THAT(firstInvalidUtf8Offset("\xE0\x80\xAF"), Optional(0u));
  EXPECT_THAT(firstInvalidUtf8Offset("xy\xED\xA0\x80"), Optional(2u));
  EXPECT_THAT(firstInvalidUtf8Offset("\xF4\x90\x80\x80"), Optional(0u));
  EXPECT_THAT(firstInvalidUtf8Offset("\xF0\x9F\x91"
                                     "A"),
              Optional(0u));
  EXPECT_THAT(firstInvalidUtf8Offset("\u00E9\u00E9\xFE\xFF"), Optional(4u));
  EXPECT_THAT(firstInvalidUtf8Offset(std::string(100, 'a') + "\xFE"), Optional(100u));
  // Long ASCII runs are skipped in blocks: a fault inside, at the edge of or after a block.
  const std::string ascii(64, 'a');
  EXPECT_THAT(firstInvalidUtf8Offset(ascii.substr(0, 5) + "\x80" + ascii), Optional(5u));
  EXPECT_THAT(firstInvalidUtf8Offset(ascii.substr(0, 31) + "\xE2\x82" + ascii), Optional(31u));
  EXPECT_THAT(firstInvalidUtf8Offset(ascii + "\u00E9" + ascii.substr(0, 31) + "\xC0\xAF"), Optional(97u));
  EXPECT_EQ(firstInvalidUtf8Offset(ascii + "\u00E9" + ascii + "\U0001F600"), std::nullopt);
}

TEST(ValidCodePointCount, CountsWellFormedTextAndRefusesEveryMalformedSequence) {
  struct Case {
    std::string name;
    std::string text;
    std::optional<std::size_t> expected;
  };
  const std::string ascii(40, 'a');  // long enough that runs are counted in blocks
  const std::vector<Case> cases = {
      {"empty", "", 0u},
      {"ASCII", "hello", 5u},
      {"two-byte", "h\u00E9llo", 5u},
      {"three-byte", "\u20AC\uFFFF", 2u},
      {"four-byte", "\U0001F600\U0010FFFF", 2u},
      {"a family is seven code points", kFamily, 7u},
      {"blocks around a character", ascii + "\u00E9" + ascii + "\U0001F600" + ascii.substr(0, 7), 89u},
      {"overlong two-byte", "a\xC0\xAF", std::nullopt},
      {"overlong two-byte lead C1", "\xC1\xBF", std::nullopt},
      {"overlong three-byte", "\xE0\x80\xAF", std::nullopt},
      {"overlong four-byte", "\xF0\x8F\xBF\xBF", std::nullopt},
      {"high surrogate", "xy\xED\xA0\x80", std::nullopt},
      {"low surrogate", "\xED\xBF\xBF", std::nullopt},
      {"truncated two-byte", "ab\xC3", std::nullopt},
      {"truncated three-byte", "ab\xE2\x82", std::nullopt},
      {"truncated four-byte before ASCII", "\xF0\x9F\x98" "A", std::nullopt},
      {"truncated after a long ASCII run", ascii + "\xE2\x82", std::nullopt},
      {"stray continuation", "abc\x80", std::nullopt},
      {"stray continuation after a character", "\u00E9\xA9", std::nullopt},
      {"above U+10FFFF", "\xF4\x90\x80\x80", std::nullopt},
      {"lead byte F5", "\xF5\x80\x80\x80", std::nullopt},
      {"byte FF", ascii + "\xFF", std::nullopt},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(validCodePointCount(c.text), c.expected) << c.name;
    // It refuses exactly what the offset search finds.
    EXPECT_EQ(validCodePointCount(c.text).has_value(), !firstInvalidUtf8Offset(c.text).has_value()) << c.name;
  }
}

// Whether utf8proc's decoder reads `sequence` as exactly one well-formed character.
bool utf8procAccepts(const std::string& sequence) {
  std::int32_t codePoint = 0;
  const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(sequence.data()),
                                       static_cast<utf8proc_ssize_t>(sequence.size()), &codePoint);
  return length == static_cast<utf8proc_ssize_t>(sequence.size());
}

TEST(Utf8Checks, AgreeWithTheDecoderOnEveryShortSequence) {
  // Every lead byte with every second and third byte, and four-byte sequences with the
  // bytes at the edges of each range; behind an 'a' so that the fault offset is 1.
  const std::vector<int> edges = {0x00, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xFF};
  std::size_t disagreements = 0;
  std::string sequence;
  const auto compare = [&] {
    const bool valid = !firstInvalidUtf8Offset("a" + sequence).has_value();
    // A well-formed sequence is one code point after the 'a'.
    const auto counted = validCodePointCount("a" + sequence);
    const bool countAgrees = counted == (valid ? std::optional<std::size_t>(2) : std::nullopt);
    if ((valid != utf8procAccepts(sequence) || !countAgrees) && ++disagreements <= 5) {
      ADD_FAILURE() << "disagree on " << ::testing::PrintToString(sequence);
    }
  };
  for (int lead = 0x80; lead <= 0xFF; ++lead) {
    for (int second = 0; second <= 0xFF; ++second) {
      sequence = {static_cast<char>(lead), static_cast<char>(second)};
      if (lead < 0xE0) compare();
      for (int third = 0; third <= 0xFF && lead >= 0xE0 && lead < 0xF0; ++third) {
        sequence = {static_cast<char>(lead), static_cast<char>(second), static_cast<char>(third)};
        compare();
      }
      for (const int third : edges) {
        for (const int fourth : edges) {
          if (lead < 0xF0) break;
          sequence = {static_cast<char>(lead), static_cast<char>(second), static_cast<char>(third),
                      static_cast<char>(fourth)};
          compare();
        }
      }
    }
  }
  EXPECT_EQ(disagreements, 0u);
}

}  // namespace
}  // namespace corvane
