#include "corvane/store/closest_match.hpp"

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

namespace corvane::store {
namespace {

char folded(char c) {
  if (c >= 'A' && c <= 'Z') return static_cast<char>(c - 'A' + 'a');
  return c == '_' ? '-' : c;
}

}  // namespace

// Three rows of the classic table: the one being filled and the two before it, which an
// adjacent transposition reaches back to.
std::size_t editDistance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> twoBack(b.size() + 1), previous(b.size() + 1), current(b.size() + 1);
  std::iota(previous.begin(), previous.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    current[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const bool same = folded(a[i - 1]) == folded(b[j - 1]);
      current[j] = std::min({previous[j] + 1, current[j - 1] + 1, previous[j - 1] + (same ? 0 : 1)});
      if (i > 1 && j > 1 && folded(a[i - 1]) == folded(b[j - 2]) && folded(a[i - 2]) == folded(b[j - 1])) {
        current[j] = std::min(current[j], twoBack[j - 2] + 1);
      }
    }
    std::swap(twoBack, previous);
    std::swap(previous, current);
  }
  return previous[b.size()];
}

std::optional<std::string> closestMatch(std::string_view text, std::span<const std::string> candidates,
                                        std::size_t maximumDistance) {
  std::optional<std::string> best;
  std::size_t bestDistance = maximumDistance + 1;
  for (const auto& candidate : candidates) {
    const std::size_t distance = editDistance(text, candidate);
    if (distance < bestDistance) {
      bestDistance = distance;
      best = candidate;
    }
  }
  return best;
}

}  // namespace corvane::store
