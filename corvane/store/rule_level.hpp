#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace corvane::store {

/// How much a rule's finding weighs, from most to least urgent. The level decides the
/// group a finding is reported in and the verdict's severity and business impact: a
/// `blocker` stops the submission, a `rejectionRisk` may get it refused, an
/// `optimization` leaves the listing weaker than it could be, an `opportunity` is a
/// suggestion. `<` orders by urgency (blocker first).
enum class RuleLevel { blocker, rejectionRisk, optimization, opportunity };

/// Every level, most urgent first.
inline constexpr std::array<RuleLevel, 4> kRuleLevels = {RuleLevel::blocker, RuleLevel::rejectionRisk,
                                                         RuleLevel::optimization, RuleLevel::opportunity};

/// The level as written in configuration files and on the command line: "blocker",
/// "rejection-risk", "optimization" or "opportunity".
std::string_view levelName(RuleLevel level) noexcept;

/// The level as people read it: "Blocker", "Rejection risk", "Optimization" or "Opportunity".
std::string_view levelTitle(RuleLevel level) noexcept;

/// The same for several findings: "Blockers", "Rejection risks", "Optimizations" or
/// "Opportunities".
std::string_view levelTitlePlural(RuleLevel level) noexcept;

/// The level named `name` (as `levelName` writes it); nothing for any other text.
std::optional<RuleLevel> parseRuleLevel(std::string_view name) noexcept;

}  // namespace corvane::store
