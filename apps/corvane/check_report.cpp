#include "check_report.hpp"

#include <algorithm>

namespace corvane::cli {

std::int64_t CheckReport::count(FindingCategory category) const {
  std::int64_t total = 0;
  for (const auto& locale : locales) {
    total += std::ranges::count(locale.findings, category, &Finding::category);
  }
  return total;
}

}  // namespace corvane::cli
