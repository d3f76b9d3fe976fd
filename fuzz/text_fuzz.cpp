// The text utilities on arbitrary bytes: the invariants every caller relies on.
#include "corvane/text/characters.hpp"
#include "fuzz_check.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace {

// Decodes the well-formed code point at the start of `text` (the caller checked validity).
char32_t firstCodePoint(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<char32_t>(static_cast<unsigned char>(text[i])); };
  const char32_t lead = byte(0);
  if (lead < 0x80) return lead;
  if (lead < 0xE0) return ((lead & 0x1F) << 6) | (byte(1) & 0x3F);
  if (lead < 0xF0) return ((lead & 0x0F) << 12) | ((byte(1) & 0x3F) << 6) | (byte(2) & 0x3F);
  return ((lead & 0x07) << 18) | ((byte(1) & 0x3F) << 12) | ((byte(2) & 0x3F) << 6) | (byte(3) & 0x3F);
}

// The start of the last code point of well-formed `text`.
std::size_t lastCodePointStart(std::string_view text) {
  std::size_t i = text.size() - 1;
  while (i > 0 && (static_cast<unsigned char>(text[i]) & 0xC0) == 0x80) --i;
  return i;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::size_t count = corvane::characterCount(text);

  // Every character holds at least one byte; only empty text has none.
  FUZZ_CHECK(count <= text.size());
  FUZZ_CHECK((count == 0) == text.empty());

  // Cutting at the full count keeps everything; any shorter cut is a prefix within its count.
  FUZZ_CHECK(corvane::prefixCharacters(text, count) == text);
  FUZZ_CHECK(corvane::prefixCharacters(text, count + 1) == text);
  FUZZ_CHECK(corvane::prefixCharacters(text, 0).empty());
  for (const std::size_t n : {std::size_t{1}, count / 2, count > 0 ? count - 1 : 0}) {
    const std::string_view prefix = corvane::prefixCharacters(text, n);
    FUZZ_CHECK(text.starts_with(prefix));
    FUZZ_CHECK(corvane::characterCount(prefix) <= n);
    if (n <= count) FUZZ_CHECK(corvane::characterCount(prefix) == n);
  }

  // Trimming yields a view inside the text, and a stable one.
  const std::string_view inner = corvane::trimmed(text);
  FUZZ_CHECK(inner.empty() ||
             (inner.data() >= text.data() && inner.data() + inner.size() <= text.data() + text.size()));
  FUZZ_CHECK(corvane::trimmed(inner) == inner);
  const auto invalid = corvane::firstInvalidUtf8Offset(text);
  if (!invalid && !inner.empty()) {
    FUZZ_CHECK(!corvane::isWhitespaceOrNewline(firstCodePoint(inner)));
    FUZZ_CHECK(!corvane::isWhitespaceOrNewline(firstCodePoint(inner.substr(lastCodePointStart(inner)))));
  }

  // The first invalid offset splits the text into a well-formed head and a malformed rest.
  if (invalid) {
    FUZZ_CHECK(*invalid < text.size());
    FUZZ_CHECK(!corvane::firstInvalidUtf8Offset(text.substr(0, *invalid)));
    FUZZ_CHECK(corvane::firstInvalidUtf8Offset(text.substr(*invalid)) == std::size_t{0});
  }

  // Lower-casing keeps well-formed text well formed and empty text empty.
  const std::string lower = corvane::lowercased(text);
  if (!invalid) FUZZ_CHECK(!corvane::firstInvalidUtf8Offset(lower));
  FUZZ_CHECK(lower.empty() == text.empty());
  return 0;
}
