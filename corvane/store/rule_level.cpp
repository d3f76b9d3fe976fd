#include "corvane/store/rule_level.hpp"

namespace corvane::store {

std::string_view levelName(RuleLevel level) noexcept {
  switch (level) {
    case RuleLevel::blocker:
      return "blocker";
    case RuleLevel::rejectionRisk:
      return "rejection-risk";
    case RuleLevel::optimization:
      return "optimization";
    case RuleLevel::opportunity:
      return "opportunity";
  }
  return {};
}

std::string_view levelTitle(RuleLevel level) noexcept {
  switch (level) {
    case RuleLevel::blocker:
      return "Blocker";
    case RuleLevel::rejectionRisk:
      return "Rejection risk";
    case RuleLevel::optimization:
      return "Optimization";
    case RuleLevel::opportunity:
      return "Opportunity";
  }
  return {};
}

std::string_view levelTitlePlural(RuleLevel level) noexcept {
  switch (level) {
    case RuleLevel::blocker:
      return "Blockers";
    case RuleLevel::rejectionRisk:
      return "Rejection risks";
    case RuleLevel::optimization:
      return "Optimizations";
    case RuleLevel::opportunity:
      return "Opportunities";
  }
  return {};
}

std::optional<RuleLevel> parseRuleLevel(std::string_view name) noexcept {
  for (const auto level : kRuleLevels) {
    if (levelName(level) == name) return level;
  }
  return std::nullopt;
}

}  // namespace corvane::store
