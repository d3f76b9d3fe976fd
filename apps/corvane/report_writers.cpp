#include "report_writers.hpp"

#include "json_writer.hpp"

#include "corvane/results/validation_severity.hpp"
#include "corvane/support/describe.hpp"
#include "corvane/version.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include <string>

namespace corvane::cli {
namespace {

using ItemStatus = CompletionItem::CompletionStatus;

using store::ListingFinding;
using store::kRuleLevels;

class Paint {
 public:
  explicit Paint(bool enabled) : enabled_(enabled) {}
  std::string operator()(std::string_view code, std::string_view text) const {
    if (!enabled_) return std::string(text);
    return fmt::format("\x1b[{}m{}\x1b[0m", code, text);
  }

 private:
  bool enabled_;
};

constexpr std::string_view kBold = "1";
constexpr std::string_view kRed = "31";
constexpr std::string_view kYellow = "33";
constexpr std::string_view kCyan = "36";
constexpr std::string_view kGreen = "32";
constexpr std::string_view kDim = "2";

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

std::string_view colourOf(RuleLevel level) {
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

std::string_view actionTypeName(const ActionGuidance::Action::ActionType& type) {
  if (type.isAutoFix()) return "autoFix";
  if (type.isQuickFix()) return "quickFix";
  if (type.isManual()) return "manual";
  return "external";
}

std::string_view statusName(const ItemStatus& status) {
  if (status.isCompleted()) return "completed";
  if (status.isBlocked()) return "blocked";
  if (status.isMissing()) return "missing";
  if (status.isOptional()) return "optional";
  return "inProgress";
}

std::string_view priorityName(CompletionItem::Priority priority) {
  switch (priority) {
    case CompletionItem::Priority::optional:
      return "optional";
    case CompletionItem::Priority::recommended:
      return "recommended";
    case CompletionItem::Priority::required:
      return "required";
    case CompletionItem::Priority::critical:
      return "critical";
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

void writeFindingJson(JsonWriter& json, const ListingFinding& finding) {
  const auto& verdict = finding.verdict;
  json.beginObject();
  json.member("rule", finding.rule);
  json.member("file", finding.file);
  json.key("line");
  if (finding.position) json.value(finding.position->line); else json.null();
  json.key("column");
  if (finding.position) json.value(finding.position->column); else json.null();
  json.key("property");
  if (finding.field) json.value(std::string(store::fieldKey(*finding.field))); else json.null();
  json.member("severity", describe(verdict.severity));
  json.member("message", verdict.message);
  json.member("businessReason", verdict.businessReason);
  json.key("primaryAction");
  if (verdict.actionGuidance) {
    const auto& action = verdict.actionGuidance->primaryAction;
    json.beginObject();
    json.member("title", action.title);
    json.member("description", action.description);
    json.member("type", actionTypeName(action.type));
    json.endObject();
  } else {
    json.null();
  }
  json.member("suggestedFix", verdict.suggestedFix);
  json.endObject();
}

void writeItemJson(JsonWriter& json, const CompletionItem& item) {
  json.beginObject();
  json.member("id", item.id);
  json.member("title", item.title);
  json.member("status", statusName(item.status));
  json.member("priority", priorityName(item.priority));
  json.member("detail", item.description);
  json.endObject();
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

void writeGroupsJson(JsonWriter& json, const std::vector<ListingFinding>& findings) {
  for (const auto level : kRuleLevels) {
    json.key(categoryKey(level));
    json.beginArray();
    for (const auto& finding : findings) {
      if (finding.level == level) writeFindingJson(json, finding);
    }
    json.endArray();
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

void writeJsonReport(const CheckReport& report, std::ostream& out) {
  JsonWriter json(out);
  json.beginObject();
  json.member("schemaVersion", kJsonSchemaVersion);
  json.key("tool");
  json.beginObject();
  json.member("name", "corvane");
  json.member("version", CorvaneVersionString);
  json.endObject();
  json.member("directory", report.directory.string());
  json.key("locales");
  json.beginArray();
  for (const auto& locale : report.locales) {
    json.beginObject();
    json.member("locale", locale.locale);
    // Shared findings are listed under every locale too, as the schema has always done.
    std::vector<ListingFinding> findings = locale.findings;
    findings.insert(findings.end(), report.shared.findings.begin(), report.shared.findings.end());
    std::ranges::stable_sort(findings, {}, &ListingFinding::level);
    writeGroupsJson(json, findings);
    json.key("checklist");
    json.beginArray();
    for (const auto& item : locale.checklist) writeItemJson(json, item);
    json.endArray();
    json.endObject();
  }
  json.endArray();
  json.key("shared");
  json.beginObject();
  writeGroupsJson(json, report.shared.findings);
  json.key("checklist");
  json.beginArray();
  for (const auto& item : report.shared.checklist) writeItemJson(json, item);
  json.endArray();
  json.endObject();
  json.key("fixes");
  json.beginArray();
  for (const auto& change : report.fixes) {
    json.beginObject();
    json.member("file", change.file);
    json.member("action", change.action);
    json.member("charactersBefore", change.charactersBefore);
    json.member("charactersAfter", change.charactersAfter);
    json.member("before", change.before);
    json.member("after", change.after);
    json.member("written", report.fixesWritten);
    json.endObject();
  }
  json.endArray();
  json.key("removedFiles");
  json.beginArray();
  for (const auto& file : report.removedFiles) json.value(file);
  json.endArray();
  json.key("completion");
  json.beginObject();
  json.member("completedItems", report.progress.completedItems);
  json.member("totalItems", report.progress.totalItems);
  json.member("blockedItems", report.progress.blockedItems);
  json.member("status", completionSummary(report));
  json.member("canComplete", report.canComplete);
  json.key("nextAction");
  if (report.nextAction)
    json.value(report.nextAction->id);
  else
    json.null();
  json.endObject();
  json.key("decision");
  json.beginObject();
  json.member("canSubmit", !report.blocked());
  for (const auto level : kRuleLevels) {
    json.key(categoryKey(level));
    json.value(report.count(level));
  }
  json.endObject();
  json.endObject();
}

}  // namespace corvane::cli
