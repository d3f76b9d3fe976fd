#pragma once

#include "check_report.hpp"

#include "corvane/store/rule_catalog.hpp"

#include <ostream>
#include <string>
#include <vector>

namespace corvane::cli {

/// The current version of the JSON report's layout; raised only when a field is removed
/// or changes meaning (new fields may appear without a change).
inline constexpr std::int64_t kJsonSchemaVersion = 1;

/// Prints one line per auto-fix ("fix: de-DE/name.txt: Trim to 30 characters, 41 -> 30
/// characters", "would fix: ..." on a dry run) with the text before and after for the short
/// fields.
void writeFixLines(const std::vector<store::ListingEdit>& fixes, bool dryRun, std::ostream& out, bool colour);

/// Prints one line per file that an interrupted earlier run left and this one removed
/// ("removed: de-DE/.name.txt.corvane-Ab12Cd (left by an interrupted run)").
void writeRemovedLines(const std::vector<std::string>& files, std::ostream& out);

/// The human-readable report: per locale, then for the shared files, the four groups with
/// message, business reason, primary action and rule, the checklist, then the completion
/// and the decision.
/// `colour` adds ANSI colours.
void writeTextReport(const CheckReport& report, std::ostream& out, bool colour);

/// The report as one JSON document; README.md documents its layout.
void writeJsonReport(const CheckReport& report, std::ostream& out);

/// The rule catalog as JSON: {"rules": [{"id", "defaultLevel", "checks", "why"}, ...]}.
void writeRulesJson(const std::vector<store::RuleInfo>& catalog, std::ostream& out);

}  // namespace corvane::cli
