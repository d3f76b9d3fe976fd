#include "check_report.hpp"

#include <set>
#include <string_view>
#include <utility>

namespace corvane::cli {

std::int64_t CheckReport::count(FindingCategory category) const {
  // A finding on shared data (the review address, the version) is listed under every
  // locale, but it is one problem to fix.
  std::set<std::pair<std::string_view, std::string_view>> shared;
  std::int64_t total = 0;
  for (const auto& locale : locales) {
    for (const auto& finding : locale.findings) {
      if (finding.category != category) continue;
      const bool ownFile = finding.file.starts_with(locale.locale + "/");
      if (ownFile || shared.emplace(finding.file, finding.verdict.message).second) ++total;
    }
  }
  return total;
}

}  // namespace corvane::cli
