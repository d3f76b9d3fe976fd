#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace corvane::store {

/// The number of edits between `a` and `b`: insertions, deletions and substitutions of
/// bytes, and swaps of two adjacent bytes ("lenght" is one edit from "length"), ignoring
/// ASCII letter case and counting '_' as '-'.
std::size_t editDistance(std::string_view a, std::string_view b);

/// The candidate closest to `text` by `editDistance`, when it is
/// at most `maximumDistance` edits away; the earliest candidate wins a tie. For suggestions
/// such as "did you mean 'en-US'?".
std::optional<std::string> closestMatch(std::string_view text, std::span<const std::string> candidates,
                                        std::size_t maximumDistance);

}  // namespace corvane::store
