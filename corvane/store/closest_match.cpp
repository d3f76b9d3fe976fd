#include "corvane/store/closest_match.hpp"

#include <algorithm>
#include <numeric>
#include <vector>

namespace corvane::store {
namespace {

char folded(char c) {
  if (c >= 'A' && c <= 'Z') return static_cast<char>(c - 'A' + 'a');
  return c == '_' ? '-' : c;
}

std::size_t editDistance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t above = row[j];
      const std::size_t substitution = diagonal + (folded(a[i - 1]) == folded(b[j - 1]) ? 0 : 1);
      row[j] = std::min({above + 1, row[j - 1] + 1, substitution});
      diagonal = above;
    }
  }
  return row[b.size()];
}

}  // namespace

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
