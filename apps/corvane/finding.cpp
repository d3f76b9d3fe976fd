#include "finding.hpp"

namespace corvane::cli {

std::string_view categoryKey(FindingCategory category) noexcept {
  switch (category) {
    case FindingCategory::blocker:
      return "blockers";
    case FindingCategory::rejectionRisk:
      return "rejectionRisks";
    case FindingCategory::optimization:
      return "optimizations";
    case FindingCategory::opportunity:
      return "opportunities";
  }
  return {};
}

std::optional<FindingCategory> categorize(const ValidationResult& verdict) {
  const auto& impact = verdict.businessImpact;
  const bool criticalFailure = !verdict.isValid && verdict.severity == ValidationSeverity::critical;
  if (criticalFailure || (impact && (impact->isBlocker() || impact->isHighRejectionRisk()))) {
    if (verdict.isValid) return std::nullopt;
    return FindingCategory::blocker;
  }
  if (impact) {
    if (impact->isRejectionRisk()) {
      return verdict.isValid ? std::nullopt : std::optional(FindingCategory::rejectionRisk);
    }
    if (impact->isSuboptimal()) return FindingCategory::optimization;
    if (impact->isOpportunity()) return FindingCategory::opportunity;
    return std::nullopt;
  }
  if (!verdict.isValid && verdict.severity == ValidationSeverity::error) return FindingCategory::rejectionRisk;
  if (verdict.isValid && verdict.severity == ValidationSeverity::warning) return FindingCategory::optimization;
  if (verdict.isValid && verdict.severity == ValidationSeverity::info) return FindingCategory::opportunity;
  return std::nullopt;
}

}  // namespace corvane::cli
