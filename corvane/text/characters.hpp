#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

// Text in Corvane is UTF-8 held in `std::string` / `std::string_view`. Lengths that users
// see are counted in characters as they perceive them (extended grapheme clusters), not
// bytes or code points, so an emoji family or an "e" with an accent counts once. None of
// these functions fails on malformed input: each byte that is not part of well-formed
// UTF-8 stands for a character of its own.

/// The number of user-perceived characters (extended grapheme clusters) in `text`.
/// "\r\n" is one character; each invalid byte is one character and never joins a cluster.
std::size_t characterCount(std::string_view text) noexcept;

/// The longest prefix of `text` holding at most `count` characters. The cut always falls
/// on a character boundary, so an emoji sequence or a letter with its marks is never split;
/// when `text` has `count` characters or fewer, the whole of it is returned.
std::string_view prefixCharacters(std::string_view text, std::size_t count) noexcept;

/// Whether `codePoint` is Unicode white space or a line break: a space separator (Zs),
/// U+2028 LINE SEPARATOR, U+2029 PARAGRAPH SEPARATOR, U+0009 to U+000D, or U+0085.
/// Zero-width characters such as U+200B are formatting characters, not white space.
bool isWhitespaceOrNewline(char32_t codePoint) noexcept;

/// `text` without its leading and trailing white space and line breaks (see
/// `isWhitespaceOrNewline`). Trimming stops at an invalid byte. The result views `text`.
std::string_view trimmed(std::string_view text) noexcept;

/// `text` with every code point replaced by its simple lower-case mapping, e.g. "ÀÉÎ" becomes
/// "àéî". Invalid bytes are copied unchanged.
std::string lowercased(std::string_view text);

/// The byte offset of the first byte that is not part of well-formed UTF-8, or nothing when
/// all of `text` is well formed. Overlong forms, surrogates, code points above U+10FFFF and
/// truncated sequences are all malformed.
std::optional<std::size_t> firstInvalidUtf8Offset(std::string_view text) noexcept;

/// The number of code points in `text` when all of it is well-formed UTF-8 (as
/// `firstInvalidUtf8Offset` judges it), or nothing when it is not: one pass that checks and
/// counts, for a rule that needs both. Characters never outnumber code points.
std::optional<std::size_t> validCodePointCount(std::string_view text) noexcept;

}  // namespace corvane
