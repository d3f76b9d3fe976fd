#include "report_writers.hpp"

#include "corvane/results/validation_severity.hpp"
#include "corvane/support/describe.hpp"
#include "corvane/version.hpp"

#include <fmt/color.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>

#include <string>

namespace corvane::cli {
namespace {

using ItemStatus = CompletionItem::CompletionStatus;

using store::ListingFinding;
using store::kRuleLevels;

// Colours through fmt's terminal styles; without colour the text is returned as it is.
class Paint {
 public:
  explicit Paint(bool enabled) : enabled_(enabled) {}
  std::string operator()(fmt::text_style style, std::string_view text) const {
    if (!enabled_) return std::string(text);
    return fmt::format(style, "{}", text);
  }

 private:
  bool enabled_;
};

const fmt::text_style kBold = fmt::emphasis::bold;
const fmt::text_style kRed = fg(fmt::terminal_color::red);
const fmt::text_style kYellow = fg(fmt::terminal_color::yellow);
const fmt::text_style kCyan = fg(fmt::terminal_color::cyan);
const fmt::text_style kGreen = fg(fmt::terminal_color::green);
const fmt::text_style kDim = fmt::emphasis::faint;

std::string_view heading(RuleLevel level) {
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

fmt::text_style colourOf(RuleLevel level) {
  switch (level) {
    case RuleLevel::blocker:
      return kRed;
    case RuleLevel::rejectionRisk:
      return kYellow;
    case RuleLevel::optimization:
      return kCyan;
    case RuleLevel::opportunity:
      return kGreen;
  }
  return {};
}

std::string plural(std::int64_t count, std::string_view one, std::string_view many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

// A text quoted into the report, with control characters spelt out: a file's contents must
// not move the cursor or recolour a CI log.
std::string visible(std::string_view text) {
  std::string result;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F) {
      result += fmt::format("\\x{:02X}", byte);
    } else {
      result += c;
    }
  }
  return result;
}

// "de-DE/keywords.txt:1:12" where the finding has a place in the text.
std::string location(const ListingFinding& finding) {
  if (!finding.position) return finding.file;
  return fmt::format("{}:{}:{}", finding.file, finding.position->line, finding.position->column);
}

void writeFinding(const ListingFinding& finding, std::ostream& out, const Paint& paint) {
  const auto& verdict = finding.verdict;
  out << "    " << paint(colourOf(finding.level), "•") << ' ' << visible(location(finding)) << ": "
      << visible(verdict.message) << paint(kDim, " [" + finding.rule + "]") << '\n';
  if (verdict.businessReason) out << "        why: " << *verdict.businessReason << '\n';
  if (verdict.actionGuidance) {
    const auto& action = verdict.actionGuidance->primaryAction;
    out << "        do:  " << action.title;
    if (!action.description.empty()) out << " (" << action.description << ")";
    if (action.type.isAutoFix()) out << paint(kDim, " [corvane check --fix]");
    out << '\n';
  } else if (verdict.suggestedFix) {
    out << "        do:  " << *verdict.suggestedFix << '\n';
  }
}

std::string itemMark(const ItemStatus& status, const Paint& paint) {
  if (status.isCompleted()) return paint(kGreen, "[x]");
  if (status.isBlocked()) return paint(kRed, "[!]");
  if (status.isMissing()) return paint(kRed, "[ ]");
  if (status.isInProgress()) return paint(kYellow, "[~]");
  return paint(kDim, "[-]");
}

}  // namespace

void writeFixLines(const std::vector<store::ListingEdit>& fixes, bool dryRun, std::ostream& out, bool colour) {
  const Paint paint(colour);
  for (const auto& change : fixes) {
    out << paint(kBold, dryRun ? "would fix" : "fix") << ": " << change.file << ": " << change.action << ", "
        << change.charactersBefore << " -> " << change.charactersAfter << " characters\n";
    if (change.charactersBefore <= 200) {
      out << "  " << paint(kRed, "- " + visible(change.before)) << "\n  " << paint(kGreen, "+ " + visible(change.after))
          << '\n';
    }
  }
}

void writeRemovedLines(const std::vector<std::string>& files, std::ostream& out) {
  for (const auto& file : files) out << "removed: " << visible(file) << " (left by an interrupted run)\n";
}

namespace {

void writeSection(const LocaleReport& section, std::string_view title, std::ostream& out, const Paint& paint) {
  out << '\n' << paint(kBold, std::string(title)) << '\n';
  bool any = false;
  for (const auto level : kRuleLevels) {
    const auto count = std::ranges::count(section.findings, level, &ListingFinding::level);
    if (count == 0) continue;
    any = true;
    out << "  " << paint(colourOf(level), fmt::format("{} ({})", heading(level), count)) << '\n';
    for (const auto& finding : section.findings) {
      if (finding.level == level) writeFinding(finding, out, paint);
    }
  }
  if (!any) out << "  " << paint(kGreen, "No issues") << '\n';
  const auto done = std::ranges::count_if(section.checklist, [](const auto& item) { return item.status.isCompleted(); });
  out << "  Checklist: " << done << " of " << section.checklist.size() << " done\n";
  for (const auto& item : section.checklist) {
    out << "    " << itemMark(item.status, paint) << ' ' << item.title;
    if (!item.status.isCompleted()) out << paint(kDim, " (" + visible(item.description) + ")");
    out << '\n';
  }
}

}  // namespace

void writeTextReport(const CheckReport& report, std::ostream& out, bool colour) {
  const Paint paint(colour);
  out << "corvane " << CorvaneVersionString << ": checking " << visible(report.directory.string()) << " ("
      << plural(static_cast<std::int64_t>(report.locales.size()), "locale", "locales") << ")\n";
  for (const auto& locale : report.locales) {
    writeSection(locale, locale.locale, out, paint);
  }
  writeSection(report.shared, "Shared by every locale", out, paint);
  out << '\n'
      << "Checklist: " << report.progress.completedItems << " of " << report.progress.totalItems << " items done, "
      << completionSummary(report) << '\n';
  if (report.nextAction) {
    out << "Next: " << report.nextAction->title << " (" << report.nextAction->id << ": "
        << visible(report.nextAction->description) << ")\n";
  }
  const std::string counts =
      fmt::format("{}, {}, {}, {}", plural(report.count(RuleLevel::blocker), "blocker", "blockers"),
                  plural(report.count(RuleLevel::rejectionRisk), "rejection risk", "rejection risks"),
                  plural(report.count(RuleLevel::optimization), "optimization", "optimizations"),
                  plural(report.count(RuleLevel::opportunity), "opportunity", "opportunities"));
  if (report.blocked()) {
    out << paint(kRed, "Decision: blocked") << " - " << counts << '\n';
  } else {
    out << paint(kGreen, "Decision: ready to submit") << " - " << counts << '\n';
  }
}

}  // namespace corvane::cli
