#pragma once

#include "check_report.hpp"

#include "corvane/store/rule_catalog.hpp"

#include <ostream>
#include <string>
#include <string_view>
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

/// One line per finding, "de-DE/name.txt:1:31: blocker: App name: ... [name.length]", and
/// nothing else (`--quiet`); a finding on a shared file is listed once.
void writeFindingLines(const CheckReport& report, std::ostream& out, bool colour);

/// GitHub Actions workflow commands: one `::error`, `::warning` or `::notice` per finding
/// with its file (the folder joined with the finding's file), line, column and rule as
/// title, then, unless `quiet`, the decision line. Values are escaped as the commands need.
void writeGithubReport(const CheckReport& report, std::ostream& out, bool quiet);

/// `text` for XML or HTML text and quoted attributes: markup characters as entities, bytes
/// that are not UTF-8 as U+FFFD, and control characters other than line break and tab
/// spelt out ("\x1B"), as neither XML nor HTML may hold them.
std::string markupEscaped(std::string_view text);

/// JUnit XML: one test suite per locale and one for the shared files, one test case per
/// field, a failure for each finding at `failOn` or more urgent; less urgent findings go
/// to the test case's system-out.
void writeJunitReport(const CheckReport& report, RuleLevel failOn, std::ostream& out);

/// SARIF 2.1.0: every rule of `catalog` in the driver, every finding (once) a result with
/// its level, message and location relative to the folder.
void writeSarifReport(const CheckReport& report, const std::vector<store::RuleInfo>& catalog, std::ostream& out);

/// The report as one self-contained HTML page (inline style, no script, nothing loaded from
/// the network) for people: a banner with the decision and the counts per level, then a card
/// per locale and one for the shared files when they have anything, each field with its
/// text, its length against the store's limit as a bar and its findings, and the checklist.
/// The markup is also well-formed XML. Texts from the folder are escaped; bytes that are not
/// UTF-8 become U+FFFD.
void writeHtmlReport(const CheckReport& report, std::ostream& out);

/// The report as one JSON document; README.md documents its layout.
void writeJsonReport(const CheckReport& report, std::ostream& out);

/// The rule catalog as JSON: {"rules": [{"id", "defaultLevel", "checks", "why"}, ...]}.
void writeRulesJson(const std::vector<store::RuleInfo>& catalog, std::ostream& out);

}  // namespace corvane::cli
