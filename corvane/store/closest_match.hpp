#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace corvane::store {

/// The candidate closest to `text` by edit distance (insertions, deletions and
/// substitutions of bytes, ignoring ASCII letter case, with '_' counted as '-'), when it is
/// at most `maximumDistance` edits away; the earliest candidate wins a tie. For suggestions
/// such as "did you mean 'en-US'?".
std::optional<std::string> closestMatch(std::string_view text, std::span<const std::string> candidates,
                                        std::size_t maximumDistance);

}  // namespace corvane::store
