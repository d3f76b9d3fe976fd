#pragma once

#include "check_report.hpp"

#include <ostream>
#include <vector>

namespace corvane::cli {

/// The current version of the JSON report's layout; raised only when a field is removed
/// or changes meaning (new fields may appear without a change).
inline constexpr std::int64_t kJsonSchemaVersion = 1;

/// Prints one line per auto-fix ("fix: de-DE/name.txt: Auto-trim to 30, 41 -> 30
/// characters", "would fix: ..." on a dry run) with the text before and after for the short
/// fields.
void writeFixLines(const std::vector<FixChange>& fixes, bool dryRun, std::ostream& out, bool colour);

/// The human-readable report: per locale the four groups with message, business reason
/// and primary action, the checklist, then the completion status and the decision.
/// `colour` adds ANSI colours.
void writeTextReport(const CheckReport& report, std::ostream& out, bool colour);

/// The report as one JSON document; README.md documents its layout.
void writeJsonReport(const CheckReport& report, std::ostream& out);

}  // namespace corvane::cli
