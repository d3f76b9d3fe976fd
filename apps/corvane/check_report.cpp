#include "check_report.hpp"

#include <fmt/format.h>

#include <algorithm>
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

std::vector<const store::ListingFinding*> CheckReport::distinctFindings() const {
  // A text from default/ is listed under every locale that uses it, but it is one problem to fix.
  std::set<std::pair<std::string_view, std::string_view>> seen;
  std::vector<const store::ListingFinding*> result;
  auto collect = [&](const LocaleReport& report, bool ownFilesOnly) {
    for (const auto& finding : report.findings) {
      const bool own = !ownFilesOnly || finding.file.starts_with(report.locale + "/");
      if (own || seen.emplace(finding.file, finding.verdict.message).second) result.push_back(&finding);
    }
  };
  for (const auto& locale : locales) collect(locale, true);
  collect(shared, false);
  return result;
}

std::int64_t CheckReport::count(RuleLevel level) const {
  const auto findings = distinctFindings();
  return std::ranges::count(findings, level, &store::ListingFinding::level);
}

bool CheckReport::failsAt(RuleLevel threshold) const {
  const auto findings = distinctFindings();
  return std::ranges::any_of(findings, [&](const auto* finding) { return finding->level <= threshold; });
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
