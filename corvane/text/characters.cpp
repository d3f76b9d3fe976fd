#include "corvane/text/characters.hpp"

#include <utf8proc.h>

#include <cstdint>
#include <cstring>

namespace corvane {
namespace {

using Byte = utf8proc_uint8_t;

// Stands for "no code point before this one": the start of the text, or an invalid byte.
// Whatever follows it starts a new character.
constexpr std::int32_t kNoCodePoint = -1;

// ASCII runs are counted this many bytes at a time, in a loop the compiler can vectorise.
constexpr std::ptrdiff_t kAsciiBlock = 32;

const Byte* bytes(std::string_view text) noexcept {
  return reinterpret_cast<const Byte*>(text.data());
}

bool isAscii(std::int32_t codePoint) noexcept {
  return codePoint >= 0 && codePoint < 0x80;
}

// Decodes the code point at `p`, which must be before `end`. Returns its length in bytes,
// or a negative number when the byte at `p` does not start a well-formed sequence.
std::ptrdiff_t decode(const Byte* p, const Byte* end, std::int32_t& codePoint) noexcept {
  if (*p < 0x80) {
    codePoint = *p;
    return 1;
  }
  return utf8proc_iterate(p, end - p, &codePoint);
}

// Advances over the ASCII run at `p`, adding its characters to `count` but never going past
// `limit`. Two ASCII bytes always have a character boundary between them unless they are
// CR LF, so no grapheme rules are needed here. Requires `p[-1]` to be ASCII.
template <bool Bounded>
const Byte* countAsciiRun(const Byte* p, const Byte* end, std::size_t& count, std::size_t limit) noexcept {
  while (end - p >= kAsciiBlock) {
    if constexpr (Bounded) {
      if (limit - count < static_cast<std::size_t>(kAsciiBlock)) break;
    }
    Byte high = 0;
    std::size_t joined = 0;
    for (std::ptrdiff_t i = 0; i < kAsciiBlock; ++i) {
      high |= p[i];
      joined += (p[i] == '\n') & (p[i - 1] == '\r');
    }
    if (high >= 0x80) break;
    count += static_cast<std::size_t>(kAsciiBlock) - joined;
    p += kAsciiBlock;
  }
  for (; p != end && *p < 0x80; ++p) {
    const bool starts = !(p[-1] == '\r' && *p == '\n');
    if constexpr (Bounded) {
      if (starts && count == limit) break;
    }
    count += starts;
  }
  return p;
}

struct CharacterScan {
  std::size_t count;   // characters seen
  std::size_t length;  // bytes they take
};

// Walks the characters of `text` from the start. When `Bounded`, stops in front of the
// character that would make more than `limit`.
template <bool Bounded>
CharacterScan scanCharacters(std::string_view text, std::size_t limit) noexcept {
  const Byte* const begin = bytes(text);
  const Byte* const end = begin + text.size();
  const Byte* p = begin;
  std::size_t count = 0;
  std::int32_t previous = kNoCodePoint;
  std::int32_t state = 0;  // utf8proc's memory of the current cluster; may be reset after a break
  while (p != end) {
    std::int32_t current = kNoCodePoint;
    std::ptrdiff_t length = decode(p, end, current);
    bool starts = true;
    if (length < 0) {
      length = 1;
      current = kNoCodePoint;
      state = 0;
    } else if (isAscii(previous) && isAscii(current)) {
      starts = !(previous == '\r' && current == '\n');
      state = 0;
    } else if (previous != kNoCodePoint) {
      starts = utf8proc_grapheme_break_stateful(previous, current, &state);
    }
    if (starts) {
      if constexpr (Bounded) {
        if (count == limit) break;
      }
      ++count;
    }
    p += length;
    previous = current;
    if (isAscii(current) && p != end && *p < 0x80) {
      p = countAsciiRun<Bounded>(p, end, count, limit);
      previous = p[-1];
      state = 0;
    }
  }
  return {count, static_cast<std::size_t>(p - begin)};
}

}  // namespace

std::size_t characterCount(std::string_view text) noexcept {
  return scanCharacters<false>(text, 0).count;
}

std::string_view prefixCharacters(std::string_view text, std::size_t count) noexcept {
  return text.substr(0, scanCharacters<true>(text, count).length);
}

bool isWhitespaceOrNewline(char32_t codePoint) noexcept {
  if (codePoint < 0x80) return codePoint == ' ' || (codePoint >= '\t' && codePoint <= '\r');
  if (codePoint == 0x85) return true;
  if (codePoint > 0x10FFFF) return false;
  switch (utf8proc_get_property(static_cast<std::int32_t>(codePoint))->category) {
    case UTF8PROC_CATEGORY_ZS:
    case UTF8PROC_CATEGORY_ZL:
    case UTF8PROC_CATEGORY_ZP:
      return true;
    default:
      return false;
  }
}

std::string_view trimmed(std::string_view text) noexcept {
  const Byte* const begin = bytes(text);
  const Byte* first = begin;
  const Byte* last = begin + text.size();
  while (first != last) {
    std::int32_t codePoint = kNoCodePoint;
    const std::ptrdiff_t length = decode(first, last, codePoint);
    if (length < 0 || !isWhitespaceOrNewline(static_cast<char32_t>(codePoint))) break;
    first += length;
  }
  while (last != first) {
    // The final code point starts at the nearest byte that is not a continuation byte,
    // at most three bytes back; if the bytes from there do not decode exactly, the text
    // ends in an invalid byte.
    const Byte* start = last - 1;
    while (start != first && last - start < 4 && (*start & 0xC0) == 0x80) --start;
    std::int32_t codePoint = kNoCodePoint;
    if (decode(start, last, codePoint) != last - start || !isWhitespaceOrNewline(static_cast<char32_t>(codePoint))) {
      break;
    }
    last = start;
  }
  return text.substr(static_cast<std::size_t>(first - begin), static_cast<std::size_t>(last - first));
}

std::string lowercased(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  const Byte* p = bytes(text);
  const Byte* const end = p + text.size();
  while (p != end) {
    if (*p < 0x80) {
      const char c = static_cast<char>(*p++);
      result += (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
      continue;
    }
    std::int32_t codePoint = kNoCodePoint;
    const std::ptrdiff_t length = decode(p, end, codePoint);
    if (length < 0) {
      result += static_cast<char>(*p++);
      continue;
    }
    Byte encoded[4];
    const auto written = utf8proc_encode_char(utf8proc_tolower(codePoint), encoded);
    result.append(reinterpret_cast<const char*>(encoded), static_cast<std::size_t>(written));
    p += length;
  }
  return result;
}

namespace {

struct Utf8Scan {
  std::optional<std::size_t> invalidAt;  // the first byte that is not well-formed UTF-8
  std::size_t codePoints;                // those before it
};

// Walks `text` as far as it is well-formed UTF-8, counting its code points when `Count`.
template <bool Count>
Utf8Scan scanUtf8(std::string_view text) noexcept {
  const Byte* const begin = bytes(text);
  const Byte* const end = begin + text.size();
  const auto within = [](Byte byte, Byte low, Byte high) { return byte >= low && byte <= high; };
  std::size_t codePoints = 0;
  const auto invalid = [&](const Byte* at) { return Utf8Scan{static_cast<std::size_t>(at - begin), codePoints}; };
  for (const Byte* p = begin; p != end;) {
    // ASCII is valid as it stands and one code point a byte; it is skipped eight bytes at a
    // time where it can be.
    const Byte* const run = p;
    while (end - p >= 8) {
      std::uint64_t block = 0;
      std::memcpy(&block, p, 8);
      if ((block & 0x8080808080808080u) != 0) break;
      p += 8;
    }
    while (p != end && *p < 0x80) ++p;
    if constexpr (Count) codePoints += static_cast<std::size_t>(p - run);
    if (p == end) break;
    // The well-formed sequences of the Unicode standard: no overlong forms, no surrogates,
    // nothing above U+10FFFF. The second byte's range depends on the first.
    const Byte lead = *p;
    const std::ptrdiff_t available = end - p;
    std::ptrdiff_t length = 0;
    Byte low = 0x80;
    Byte high = 0xBF;
    if (within(lead, 0xC2, 0xDF)) {
      length = 2;
    } else if (within(lead, 0xE0, 0xEF)) {
      length = 3;
      if (lead == 0xE0) low = 0xA0;
      if (lead == 0xED) high = 0x9F;
    } else if (within(lead, 0xF0, 0xF4)) {
      length = 4;
      if (lead == 0xF0) low = 0x90;
      if (lead == 0xF4) high = 0x8F;
    } else {
      return invalid(p);
    }
    if (available < length || !within(p[1], low, high)) return invalid(p);
    for (std::ptrdiff_t i = 2; i < length; ++i) {
      if (!within(p[i], 0x80, 0xBF)) return invalid(p);
    }
    p += length;
    if constexpr (Count) ++codePoints;
  }
  return {std::nullopt, codePoints};
}

}  // namespace

std::optional<std::size_t> firstInvalidUtf8Offset(std::string_view text) noexcept {
  return scanUtf8<false>(text).invalidAt;
}

std::optional<std::size_t> validCodePointCount(std::string_view text) noexcept {
  const auto scan = scanUtf8<true>(text);
  if (scan.invalidAt) return std::nullopt;
  return scan.codePoints;
}

}  // namespace corvane
