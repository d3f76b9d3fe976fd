#include "check_report.hpp"

#include <fmt/format.h>

#include <set>
#include <string_view>
#include <utility>

namespace corvane::cli {

std::string_view categoryKey(RuleLevel level) noexcept {
  switch (level) {
    case RuleLevel::blocker:
      return "blockers";
    case RuleLevel::rejectionRisk:
      return "rejectionRisks";
    case RuleLevel::optimization:
      return "optimizations";
    case RuleLevel::opportunity:
      return "opportunities";
  }
  return {};
}

std::int64_t CheckReport::count(RuleLevel level) const {
  // A text from default/ is listed under every locale that uses it, but it is one problem to fix.
  std::set<std::pair<std::string_view, std::string_view>> seen;
  std::int64_t total = 0;
  auto tally = [&](const LocaleReport& report, bool ownFilesOnly) {
    for (const auto& finding : report.findings) {
      if (finding.level != level) continue;
      const bool own = !ownFilesOnly || finding.file.starts_with(report.locale + "/");
      if (own || seen.emplace(finding.file, finding.verdict.message).second) ++total;
    }
  };
  for (const auto& locale : locales) tally(locale, true);
  tally(shared, false);
  return total;
}

std::string completionSummary(const CheckReport& report) {
  const auto& progress = report.progress;
  if (progress.blockedItems > 0) {
    return fmt::format("blocked by {} {}", progress.blockedItems, progress.blockedItems == 1 ? "item" : "items");
  }
  const auto open = progress.totalItems - progress.completedItems;
  if (report.canComplete) return "ready to submit";
  return fmt::format("{} {} to finish", open, open == 1 ? "item" : "items");
}

}  // namespace corvane::cli
