#include "corvane/store/phrase_matcher.hpp"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "corvane/text/characters.hpp"

namespace corvane::store {
namespace {

using Byte = utf8proc_uint8_t;

// Stands for an invalid byte, which is a character of its own and never a word character.
constexpr std::int32_t kInvalidByte = -1;

// The typographic apostrophe, compared as '\''.
constexpr std::int32_t kRightSingleQuote = 0x2019;

// How a character takes part in tokens. Words are runs of `letter`s or of `hangul`; each
// `alone` character is a word of its own, for scripts written without spaces between words.
enum class CharClass : std::uint8_t { space, letter, hangul, alone, mark, other };

bool isHangul(std::int32_t c) noexcept {
  return (c >= 0x1100 && c <= 0x11FF) || (c >= 0x3130 && c <= 0x318F) || (c >= 0xA960 && c <= 0xA97F) ||
         (c >= 0xAC00 && c <= 0xD7FF);
}

// Han, Hiragana, Katakana, Thai, Lao, Myanmar and Khmer.
bool isWrittenWithoutSpaces(std::int32_t c) noexcept {
  return (c >= 0x0E00 && c <= 0x0EFF) || (c >= 0x1000 && c <= 0x109F) || (c >= 0x1780 && c <= 0x17FF) ||
         (c >= 0x3005 && c <= 0x3007) || (c >= 0x3040 && c <= 0x30FF) || (c >= 0x31F0 && c <= 0x31FF) ||
         (c >= 0x3400 && c <= 0x4DBF) || (c >= 0x4E00 && c <= 0x9FFF) || (c >= 0xF900 && c <= 0xFAFF) ||
         (c >= 0xFF66 && c <= 0xFF9F) || (c >= 0x20000 && c <= 0x3FFFF);
}

constexpr std::array<CharClass, 128> kAsciiClasses = [] {
  std::array<CharClass, 128> classes{};
  for (std::size_t c = 0; c < classes.size(); ++c) {
    const bool word = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
    const bool space = c == ' ' || (c >= '\t' && c <= '\r');
    classes[c] = word ? CharClass::letter : space ? CharClass::space : CharClass::other;
  }
  return classes;
}();

// For each byte: 0 unless it is an ASCII word character; kLowerWordByte for a digit, '_' or
// lower-case letter, kUpperWordByte for an upper-case letter. One look-up per byte finds
// both where an ASCII word ends and whether it needs lowering.
constexpr std::uint8_t kLowerWordByte = 1;
constexpr std::uint8_t kUpperWordByte = 2;
constexpr std::array<std::uint8_t, 256> kWordBytes = [] {
  std::array<std::uint8_t, 256> bytes{};
  for (std::size_t c = 0; c < 128; ++c) {
    if (c >= 'A' && c <= 'Z') {
      bytes[c] = kUpperWordByte;
    } else if (kAsciiClasses[c] == CharClass::letter) {
      bytes[c] = kLowerWordByte;
    }
  }
  return bytes;
}();

// White space is what corvane::isWhitespaceOrNewline says it is; the test is repeated here
// so that a character's properties are looked up once. Takes a code point from 0x80 on.
CharClass classify(std::int32_t codePoint, const utf8proc_property_t& property) noexcept {
  if (codePoint == 0x85) return CharClass::space;
  switch (property.category) {
    case UTF8PROC_CATEGORY_ZS:
    case UTF8PROC_CATEGORY_ZL:
    case UTF8PROC_CATEGORY_ZP:
      return CharClass::space;
    case UTF8PROC_CATEGORY_LU:
    case UTF8PROC_CATEGORY_LL:
    case UTF8PROC_CATEGORY_LT:
    case UTF8PROC_CATEGORY_LM:
    case UTF8PROC_CATEGORY_LO:
    case UTF8PROC_CATEGORY_ND:
    case UTF8PROC_CATEGORY_NL:
    case UTF8PROC_CATEGORY_NO:
    case UTF8PROC_CATEGORY_PC:
      // The scripts before Thai (Latin, Greek, Cyrillic, Hebrew, Arabic, Indic) all space their
      // words, so their letters skip the range tests below.
      if (codePoint < 0x0E00) return CharClass::letter;
      if (isWrittenWithoutSpaces(codePoint)) return CharClass::alone;
      return isHangul(codePoint) ? CharClass::hangul : CharClass::letter;
    case UTF8PROC_CATEGORY_MN:
    case UTF8PROC_CATEGORY_MC:
    case UTF8PROC_CATEGORY_ME:
      return CharClass::mark;
    default:
      return CharClass::other;
  }
}

// Decodes the code point at `p` (before `end`) into `codePoint`, or kInvalidByte when the
// byte at `p` does not start well-formed UTF-8. Returns the bytes taken, at least one.
// Well-formed as utf8proc reads it: no overlong forms, no surrogates, nothing past
// U+10FFFF, so the second byte's range depends on the first. Decoded here rather than by
// utf8proc_iterate, as a call per character costs more than the decoding.
std::size_t decode(const Byte* p, const Byte* end, std::int32_t& codePoint) noexcept {
  const Byte lead = *p;
  if (lead < 0x80) {
    codePoint = lead;
    return 1;
  }
  const auto available = end - p;
  const auto within = [](Byte byte, Byte low, Byte high) { return byte >= low && byte <= high; };
  const auto bits = [&](std::ptrdiff_t i) { return static_cast<std::int32_t>(p[i] & 0x3F); };
  if (within(lead, 0xC2, 0xDF)) {
    if (available >= 2 && within(p[1], 0x80, 0xBF)) {
      codePoint = ((lead & 0x1F) << 6) | bits(1);
      return 2;
    }
  } else if (within(lead, 0xE0, 0xEF)) {
    const Byte low = lead == 0xE0 ? 0xA0 : 0x80;
    const Byte high = lead == 0xED ? 0x9F : 0xBF;
    if (available >= 3 && within(p[1], low, high) && within(p[2], 0x80, 0xBF)) {
      codePoint = ((lead & 0x0F) << 12) | (bits(1) << 6) | bits(2);
      return 3;
    }
  } else if (within(lead, 0xF0, 0xF4)) {
    const Byte low = lead == 0xF0 ? 0x90 : 0x80;
    const Byte high = lead == 0xF4 ? 0x8F : 0xBF;
    if (available >= 4 && within(p[1], low, high) && within(p[2], 0x80, 0xBF) && within(p[3], 0x80, 0xBF)) {
      codePoint = ((lead & 0x07) << 18) | (bits(1) << 12) | (bits(2) << 6) | bits(3);
      return 4;
    }
  }
  codePoint = kInvalidByte;
  return 1;
}

char lowerAscii(Byte c) noexcept {
  return static_cast<char>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c);
}

// How a character takes part in tokens, and whether it is its own comparison form, as most
// characters are (see appendKey).
struct CharInfo {
  CharClass kind;
  bool asWritten;
};

// A character's CharInfo from its properties; takes a code point from 0x80 on.
CharInfo infoFromProperties(std::int32_t codePoint) noexcept {
  const utf8proc_property_t& property = *utf8proc_get_property(codePoint);
  return {classify(codePoint, property), codePoint != kRightSingleQuote && property.lowercase_seqindex == UINT16_MAX};
}

// The CharInfo of every character written in two bytes (U+0080 to U+07FF: Latin, Greek,
// Cyrillic, Armenian, Hebrew, Arabic and more), looked up once: in texts in those scripts
// nearly every letter is one, and a table is read faster than utf8proc's properties.
const std::array<CharInfo, 0x800>& twoByteInfos() {
  static const auto infos = [] {
    std::array<CharInfo, 0x800> table{};
    for (std::int32_t c = 0x80; c < 0x800; ++c) table[static_cast<std::size_t>(c)] = infoFromProperties(c);
    return table;
  }();
  return infos;
}

// Appends the `length` ASCII bytes at `p` in lower case.
void appendLoweredAscii(std::string& keys, const Byte* p, std::size_t length) {
  const auto from = keys.size();
  keys.append(reinterpret_cast<const char*>(p), length);
  for (auto i = from; i < keys.size(); ++i) keys[i] = lowerAscii(static_cast<Byte>(keys[i]));
}

struct AsciiWord {
  const Byte* end;  // the first byte after it
  bool upperCase;   // whether it holds an upper-case letter, so that its key needs lowering
};

// The run of ASCII word bytes (see kWordBytes) that starts at `p`, which is one.
AsciiWord asciiWordEnd(const Byte* p, const Byte* end) noexcept {
  const Byte* q = p + 1;
  std::uint8_t seen = kWordBytes[*p];
  for (std::uint8_t kind = 0; q != end && (kind = kWordBytes[*q]) != 0; ++q) seen |= kind;
  return {q, (seen & kUpperWordByte) != 0};
}

// Appends the comparison form of the character `bytes` (decoded as `codePoint`, which is
// `asWritten` when it is its own form): its simple lower-case mapping, with ’ as '.
void appendKey(std::string& keys, std::int32_t codePoint, std::string_view bytes, bool asWritten) {
  if (asWritten) {
    keys.append(bytes);  // already lower case, without case, or an invalid byte
  } else if (codePoint < 0x80) {
    keys += lowerAscii(static_cast<Byte>(bytes.front()));
  } else if (codePoint == kRightSingleQuote) {
    keys += '\'';
  } else {
    Byte encoded[4];
    const auto written = utf8proc_encode_char(utf8proc_tolower(codePoint), encoded);
    keys.append(reinterpret_cast<const char*>(encoded), static_cast<std::size_t>(written));
  }
}

bool startsWithWww(std::string_view text) noexcept {
  if (text.size() < 4 || text[3] != '.') return false;
  return std::all_of(text.begin(), text.begin() + 3, [](char c) { return c == 'w' || c == 'W'; });
}

// Opening brackets and quotes in front of a link, and closing punctuation after it. The ASCII
// ones are told by their byte, which is all most runs need.
constexpr std::string_view kOpeningAscii = "([<\"'";
constexpr std::array<std::string_view, 4> kOpeningOther = {"\u2018", "\u201C", "\u00AB", "\u201E"};
constexpr std::string_view kClosingAscii = ".,;:!?)]>\"'";
constexpr std::array<std::string_view, 3> kClosingOther = {"\u2019", "\u201D", "\u00BB"};

// The length of the opening mark that `text` starts with, 0 when there is none.
std::size_t openingMark(std::string_view text) noexcept {
  if (text.empty()) return 0;
  if (static_cast<unsigned char>(text.front()) < 0x80) return kOpeningAscii.find(text.front()) != text.npos;
  for (const auto mark : kOpeningOther) {
    if (text.starts_with(mark)) return mark.size();
  }
  return 0;
}

// The length of the closing mark that `text` ends with, 0 when there is none.
std::size_t closingMark(std::string_view text) noexcept {
  if (text.empty()) return 0;
  if (static_cast<unsigned char>(text.back()) < 0x80) return kClosingAscii.find(text.back()) != text.npos;
  for (const auto mark : kClosingOther) {
    if (text.ends_with(mark)) return mark.size();
  }
  return 0;
}

// Whether `link` ends in a bracket that pairs with one inside it, as in "wiki/Foo_(bar)".
bool endsInPairedBracket(std::string_view link) noexcept {
  const char last = link.back();
  if (last != ')' && last != ']') return false;
  const char opening = last == ')' ? '(' : '[';
  return std::count(link.begin(), link.end(), opening) >= std::count(link.begin(), link.end(), last);
}

// Where the link in `run` (a run of characters without white space) begins and ends, or
// nothing when the run is no link.
std::optional<std::pair<std::size_t, std::size_t>> linkRange(std::string_view run) noexcept {
  std::size_t begin = 0;
  while (const auto length = openingMark(run.substr(begin))) begin += length;
  auto link = run.substr(begin);
  // Most runs are plain words and are given up before their ends are looked at.
  if (link.find("://") == link.npos && link.find('@') == link.npos && !startsWithWww(link)) return std::nullopt;
  while (const auto length = closingMark(link)) {
    if (endsInPairedBracket(link)) break;
    link.remove_suffix(length);
  }
  const auto at = link.find('@');
  const bool isLink =
      link.find("://") != link.npos || startsWithWww(link) || (at != link.npos && link.find('.', at + 1) != link.npos);
  if (!isLink) return std::nullopt;
  return std::pair{begin, begin + link.size()};
}

std::string linkHost(std::string_view link) {
  if (const auto scheme = link.find("://"); scheme != std::string_view::npos) {
    auto authority = link.substr(scheme + 3);
    authority = authority.substr(0, authority.find_first_of("/?#"));
    if (const auto at = authority.rfind('@'); at != std::string_view::npos) authority.remove_prefix(at + 1);
    // An IPv6 address keeps its brackets and the colons inside them.
    const auto portFrom = authority.starts_with('[') ? authority.find(']') : 0;
    return lowercased(authority.substr(0, authority.find(':', portFrom)));
  }
  if (startsWithWww(link)) return lowercased(link.substr(0, link.find_first_of("/?#:")));
  const auto domain = link.substr(link.rfind('@') + 1);
  return lowercased(domain.substr(0, domain.find_first_of("/?#")));
}

// The bit of PhraseMatcher::firstTokenBits_ for a token. It is taken from the token's length
// and its first and last bytes only, so that the many words of a text that start no phrase
// are passed over before their whole key is hashed.
std::pair<std::size_t, std::uint64_t> filterBit(std::string_view key) noexcept {
  const std::uint32_t front = static_cast<unsigned char>(key.front());
  const std::uint32_t back = static_cast<unsigned char>(key.back());
  const std::uint32_t mixed = (static_cast<std::uint32_t>(key.size()) << 16 | front << 8 | back) * 0x9E3779B1u;
  const auto bit = mixed >> 20;  // the top 12 bits: 0 to 4095
  return {bit / 64, std::uint64_t{1} << (bit % 64)};
}

// Tokens are mostly short words, so they are hashed eight bytes at a time, each step mixed by
// a multiplication, rather than by a general-purpose string hash.
std::size_t hashKey(std::string_view key) noexcept {
  constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15u;
  std::uint64_t hash = key.size() * kMultiplier;
  const auto mix = [&](std::uint64_t chunk) {
    hash = (hash ^ chunk) * kMultiplier;
    hash ^= hash >> 29;
  };
  while (key.size() >= 8) {
    std::uint64_t chunk = 0;
    std::memcpy(&chunk, key.data(), 8);
    mix(chunk);
    key.remove_prefix(8);
  }
  // The last one to seven bytes, read as two overlapping halves rather than byte by byte.
  const auto load = [&](std::size_t at, std::size_t bytes) {
    std::uint64_t value = 0;
    std::memcpy(&value, key.data() + at, bytes);
    return value;
  };
  const auto n = key.size();
  std::uint64_t tail = 0;
  if (n >= 4) {
    tail = load(0, 4) | (load(n - 4, 4) << 32);
  } else if (n > 0) {
    tail = load(0, 1) | (load(n / 2, 1) << 8) | (load(n - 1, 1) << 16);
  }
  mix(tail);
  return static_cast<std::size_t>(hash);
}

}  // namespace

void TokenizedText::ownKey(Token& token) {
  if (!token.keyInText) return;
  const auto from = keys_.size();
  keys_.append(text_.substr(token.keyBegin, token.keyEnd - token.keyBegin));
  token.keyBegin = static_cast<std::uint32_t>(from);
  token.keyEnd = static_cast<std::uint32_t>(keys_.size());
  token.keyInText = false;
}

void TokenizedText::assign(std::string_view text) {
  split(text, true);
}

void TokenizedText::markLink(std::size_t runStart, std::size_t runEnd) {
  const auto range = linkRange(text_.substr(runStart, runEnd - runStart));
  if (!range) return;
  // The run's tokens are the last ones: those that start inside it.
  auto runFirstToken = tokens_.size();
  while (runFirstToken > 0 && tokens_[runFirstToken - 1].offset >= runStart) --runFirstToken;
  const auto linkBegin = runStart + range->first;
  const auto linkEnd = runStart + range->second;
  links_.push_back({linkBegin, linkEnd - linkBegin, linkHost(text_.substr(linkBegin, linkEnd - linkBegin))});
  for (auto i = runFirstToken; i < tokens_.size(); ++i) {
    auto& token = tokens_[i];
    token.inLink = token.offset < linkEnd && std::size_t{token.offset} + token.length > linkBegin;
  }
}

// Splits `text` into tokens (see PhraseMatcher). With `findLinks`, the web and e-mail
// addresses are found run by run as the tokens are made, and the tokens inside them marked.
// The state lives in locals that nothing else can reach, so that the compiler keeps it in
// registers: this loop runs for every word of every text a check reads.
void TokenizedText::split(std::string_view text, bool findLinks) {
  // Lower-casing makes a key at most half as long again as its text, so offsets into the
  // keys stay within 32 bits too.
  if (text.size() > kMaxSize) throw std::length_error("text too long to split into words");
  text_ = text;
  auto& list = tokens_;
  auto& keys = keys_;
  list.clear();
  keys.clear();
  links_.clear();
  keys.reserve(text.size());

  const auto* const begin = reinterpret_cast<const Byte*>(text.data());
  const auto* const end = begin + text.size();
  const auto& twoBytes = twoByteInfos();
  CharClass previous = CharClass::space;  // the last character's class, marks resolved
  bool spaceBefore = false;

  // The current run of characters without white space: where it starts, and whether it
  // may be a link (it holds ':' or '@', or a word starts with 'w' as "www."
  // does), so that most runs skip linkRange.
  bool inRun = false;
  std::size_t runStart = 0;
  bool mayBeLink = false;
  const auto endRun = [&](std::size_t runEnd) __attribute__((always_inline)) {
    if (inRun && findLinks && mayBeLink) markLink(runStart, runEnd);
    inRun = false;
  };
  const auto startRun = [&](std::size_t offset) __attribute__((always_inline)) {
    if (inRun) return;
    inRun = true;
    runStart = offset;
    mayBeLink = false;
  };

  // Offsets within the text and its keys, which fit 32 bits (see above).
  const auto keysSize = [&] { return static_cast<std::uint32_t>(keys.size()); };
  const Byte* p = begin;
  while (p != end) {
    // Most text is ASCII: white space and whole words are taken here at once, and only the
    // rest is decoded character by character below. What follows white space is looked at
    // straight away, as it is mostly a word.
    if (*p < 0x80 && kAsciiClasses[*p] == CharClass::space) {
      endRun(static_cast<std::size_t>(p - begin));
      do {
        ++p;
      } while (p != end && *p < 0x80 && kAsciiClasses[*p] == CharClass::space);
      spaceBefore = true;
      previous = CharClass::space;
      if (p == end) break;
    }
    const auto offset = static_cast<std::uint32_t>(p - begin);
    if (kWordBytes[*p] != 0) {
      const auto [wordEnd, upperCase] = asciiWordEnd(p, end);
      startRun(offset);
      const auto length = static_cast<std::uint32_t>(wordEnd - p);
      if (previous != CharClass::letter) {
        mayBeLink = mayBeLink || *p == 'w' || *p == 'W';
        if (!upperCase) {
          // A new word already in its comparison form, as most are: it is its own key.
          list.push_back({offset, length, offset, offset + length, spaceBefore, false, true});
        } else {
          const auto from = keysSize();
          appendLoweredAscii(keys, p, length);
          list.push_back({offset, length, from, keysSize(), spaceBefore, false, false});
        }
      } else {
        // ASCII letters after other letters of a word ("café" then "s") continue it.
        auto& token = list.back();
        token.length += length;
        if (!upperCase && keyContinuesInText(token, offset)) {
          token.keyEnd += length;
        } else {
          ownKey(token);
          appendLoweredAscii(keys, p, length);
          token.keyEnd = keysSize();
        }
      }
      spaceBefore = false;
      previous = CharClass::letter;
      p = wordEnd;
      continue;
    }
    std::int32_t codePoint = kInvalidByte;
    const auto length = decode(p, end, codePoint);
    const std::string_view bytes = text.substr(offset, length);
    p += length;
    auto [kind, asWritten] = codePoint < 0       ? CharInfo{CharClass::other, true}
                             : codePoint < 0x80  ? CharInfo{kAsciiClasses[static_cast<std::size_t>(codePoint)],
                                                           lowerAscii(static_cast<Byte>(codePoint)) == codePoint}
                             : codePoint < 0x800 ? twoBytes[static_cast<std::size_t>(codePoint)]
                                                 : infoFromProperties(codePoint);
    if (kind == CharClass::space) {
      endRun(offset);
      spaceBefore = true;
      previous = CharClass::space;
      continue;
    }
    startRun(offset);
    mayBeLink = mayBeLink || codePoint == ':' || codePoint == '@';
    // A mark continues the character before it: it is part of a word, and after punctuation
    // or a symbol it belongs to that token without being compared (an emoji's variation
    // selector). Only a mark after white space starts a word.
    if (kind == CharClass::mark) {
      if (previous == CharClass::other) {
        list.back().length += static_cast<std::uint32_t>(length);
        continue;
      }
      if (previous == CharClass::space) kind = CharClass::letter;
    }
    const bool continues =
        kind == CharClass::mark || ((kind == CharClass::letter || kind == CharClass::hangul) && kind == previous);
    if (!continues) {
      mayBeLink = mayBeLink || codePoint == 'w' || codePoint == 'W';
      list.push_back({offset, 0, offset, offset, spaceBefore, false, true});
      spaceBefore = false;
      previous = kind;
    }
    auto& token = list.back();
    token.length += static_cast<std::uint32_t>(length);
    if (asWritten && keyContinuesInText(token, offset)) {
      token.keyEnd += static_cast<std::uint32_t>(length);
    } else {
      ownKey(token);
      appendKey(keys, codePoint, bytes, asWritten);
      token.keyEnd = keysSize();
    }
  }
  endRun(text.size());
}

TextPosition positionAt(std::string_view text, std::size_t offset) {
  offset = std::min(offset, text.size());
  std::int64_t line = 1;
  std::size_t lineStart = 0;
  for (std::size_t i = 0; i < offset; ++i) {
    // The '\r' of "\r\n" leaves the line break to the '\n'.
    const bool breaks = text[i] == '\n' || (text[i] == '\r' && (i + 1 == text.size() || text[i + 1] != '\n'));
    if (breaks) {
      ++line;
      lineStart = i + 1;
    }
  }
  const auto column = characterCount(text.substr(lineStart, offset - lineStart)) + 1;
  return {line, static_cast<std::int64_t>(column)};
}

std::vector<LinkSpan> findLinks(std::string_view text) {
  return TokenizedText(text).links();
}

std::string_view PhraseMatcher::phrase(std::size_t index) const {
  const auto& entry = phrases_.at(index);
  return std::string_view(texts_).substr(entry.textBegin, entry.textEnd - entry.textBegin);
}

std::string_view PhraseMatcher::firstKey(const Phrase& phrase) const noexcept {
  return {keys_.data() + phrase.keyBegin, tokens_[phrase.tokenBegin].keyEnd - phrase.keyBegin};
}

std::size_t PhraseMatcher::slotOf(std::string_view key, std::size_t hash) const noexcept {
  const auto mask = firstPhrase_.size() - 1;
  for (auto slot = hash & mask;; slot = (slot + 1) & mask) {
    if (firstPhrase_[slot] == kNone || firstKey(phrases_[firstPhrase_[slot]]) == key) return slot;
  }
}

// Doubles the table (from 16 slots), keeping it at most half full so that probes stay short.
void PhraseMatcher::grow() {
  std::vector<std::size_t> first(std::max<std::size_t>(16, firstPhrase_.size() * 2), kNone);
  std::vector<std::size_t> last(first.size(), kNone);
  first.swap(firstPhrase_);
  last.swap(lastPhrase_);
  for (std::size_t slot = 0; slot < first.size(); ++slot) {
    if (first[slot] == kNone) continue;
    const auto key = firstKey(phrases_[first[slot]]);
    const auto to = slotOf(key, hashKey(key));
    firstPhrase_[to] = first[slot];
    lastPhrase_[to] = last[slot];
  }
}

void PhraseMatcher::clear() noexcept {
  texts_.clear();
  keys_.clear();
  tokens_.clear();
  phrases_.clear();
  // The table keeps its size; only its slots are emptied.
  std::ranges::fill(firstPhrase_, kNone);
  std::ranges::fill(lastPhrase_, kNone);
  firstTokens_ = 0;
  firstTokenBits_ = {};
}

std::optional<std::size_t> PhraseMatcher::add(std::string_view phrase) {
  // Reused by every call on this thread, so that compiling a list allocates little.
  thread_local TokenizedText split;
  split.split(phrase, false);
  if (split.tokens_.empty()) return std::nullopt;

  const auto index = phrases_.size();
  Phrase entry{.textBegin = texts_.size(),
               .textEnd = texts_.size() + phrase.size(),
               .keyBegin = keys_.size(),
               .tokenBegin = tokens_.size(),
               .tokenEnd = tokens_.size() + split.tokens_.size(),
               .next = kNone};
  texts_.append(phrase);
  for (const auto& token : split.tokens_) {
    keys_.append(split.key(token));
    tokens_.push_back({keys_.size(), token.spaceBefore});
  }
  phrases_.push_back(entry);

  if (2 * (firstTokens_ + 1) > firstPhrase_.size()) grow();
  const auto key = firstKey(entry);
  const auto hash = hashKey(key);
  const auto [word, bit] = filterBit(key);
  firstTokenBits_[word] |= bit;
  const auto slot = slotOf(key, hash);
  if (firstPhrase_[slot] == kNone) {
    firstPhrase_[slot] = index;
    ++firstTokens_;
  } else {
    phrases_[lastPhrase_[slot]].next = index;
  }
  lastPhrase_[slot] = index;
  return index;
}

// Whether `phrase` matches the text's tokens from `first` on, given that its first token
// does (the caller found the phrase by that token, outside any link).
bool PhraseMatcher::matchesAt(const Phrase& phrase, const TokenizedText& text, std::size_t first) const noexcept {
  const auto& list = text.tokens_;
  if (phrase.tokenEnd - phrase.tokenBegin > list.size() - first) return false;
  std::size_t keyBegin = tokens_[phrase.tokenBegin].keyEnd;
  for (std::size_t i = phrase.tokenBegin + 1; i < phrase.tokenEnd; ++i) {
    const auto& wanted = tokens_[i];
    const auto& token = list[first + (i - phrase.tokenBegin)];
    const std::string_view wantedKey(keys_.data() + keyBegin, wanted.keyEnd - keyBegin);
    keyBegin = wanted.keyEnd;
    if (token.inLink || token.spaceBefore != wanted.spaceBefore || text.key(token) != wantedKey) {
      return false;
    }
  }
  return true;
}

std::vector<PhraseMatch> PhraseMatcher::findAll(std::string_view text) const {
  if (phrases_.empty() || text.empty()) return {};
  return findAll(TokenizedText(text));
}

std::vector<PhraseMatch> PhraseMatcher::findAll(const TokenizedText& text) const {
  std::vector<PhraseMatch> matches;
  if (phrases_.empty()) return matches;
  // Read through locals: the compiler cannot tell that adding a match leaves the tokens be,
  // and would load them afresh for every token otherwise.
  const TokenizedText::Token* const tokens = text.tokens_.data();
  const std::size_t count = text.tokens_.size();
  const char* const textBase = text.text_.data();
  const char* const keysBase = text.keys_.data();

  // The longest phrase that matches from token `first` on: its token count (0 when none
  // matches) and index.
  const auto longestAt = [&](std::size_t first) {
    std::pair<std::size_t, std::size_t> best{0, 0};
    const auto& token = tokens[first];
    const std::string_view key((token.keyInText ? textBase : keysBase) + token.keyBegin,
                               std::size_t{token.keyEnd} - token.keyBegin);
    const auto [word, bit] = filterBit(key);
    // Words in links are few: they are turned away only once the filter lets them pass.
    if ((firstTokenBits_[word] & bit) == 0 || token.inLink) return best;
    for (auto index = firstPhrase_[slotOf(key, hashKey(key))]; index != kNone; index = phrases_[index].next) {
      const auto length = phrases_[index].tokenEnd - phrases_[index].tokenBegin;
      if (length > best.first && matchesAt(phrases_[index], text, first)) best = {length, index};
    }
    return best;
  };

  for (std::size_t first = 0; first < count;) {
    const auto [length, phrase] = longestAt(first);
    if (length == 0) {
      ++first;
      continue;
    }
    const auto& last = tokens[first + length - 1];
    matches.push_back({tokens[first].offset, std::size_t{last.offset} + last.length - tokens[first].offset, phrase});
    first += length;
  }
  return matches;
}

}  // namespace corvane::store
