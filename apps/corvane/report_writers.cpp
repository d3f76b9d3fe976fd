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

constexpr std::array<FindingCategory, 4> kCategories = {FindingCategory::blocker, FindingCategory::rejectionRisk,
                                                        FindingCategory::optimization, FindingCategory::opportunity};

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

std::string_view heading(FindingCategory category) {
  switch (category) {
    case FindingCategory::blocker:
      return "Blockers";
    case FindingCategory::rejectionRisk:
      return "Rejection risks";
    case FindingCategory::optimization:
      return "Optimizations";
    case FindingCategory::opportunity:
      return "Opportunities";
  }
  return {};
}

std::string_view colourOf(FindingCategory category) {
  switch (category) {
    case FindingCategory::blocker:
      return kRed;
    case FindingCategory::rejectionRisk:
      return kYellow;
    case FindingCategory::optimization:
      return kCyan;
    case FindingCategory::opportunity:
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

std::string fixFile(const FixChange& change) {
  return change.locale + "/" + std::string(fileName(change.field));
}

void writeFinding(const Finding& finding, std::ostream& out, const Paint& paint) {
  const auto& verdict = finding.verdict;
  out << "    " << paint(colourOf(finding.category), "•") << ' ' << finding.file << ": " << verdict.message << '\n';
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

void writeFindingJson(JsonWriter& json, const Finding& finding) {
  const auto& verdict = finding.verdict;
  json.beginObject();
  json.member("file", finding.file);
  json.member("property", finding.property);
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

void writeFixLines(const std::vector<FixChange>& fixes, bool dryRun, std::ostream& out, bool colour) {
  const Paint paint(colour);
  for (const auto& change : fixes) {
    out << paint(kBold, dryRun ? "would fix" : "fix") << ": " << fixFile(change) << ": " << change.action << ", "
        << change.charactersBefore << " -> " << change.charactersAfter << " characters\n";
    if (change.charactersBefore <= 200) {
      out << "  " << paint(kRed, "- " + visible(change.before)) << "\n  " << paint(kGreen, "+ " + visible(change.after))
          << '\n';
    }
  }
}

void writeTextReport(const CheckReport& report, std::ostream& out, bool colour) {
  const Paint paint(colour);
  out << "corvane " << CorvaneVersionString << ": checking " << visible(report.directory.string()) << " ("
      << plural(static_cast<std::int64_t>(report.locales.size()), "locale", "locales") << ")\n";
  for (const auto& locale : report.locales) {
    out << '\n' << paint(kBold, locale.locale) << '\n';
    bool any = false;
    for (const auto category : kCategories) {
      const auto count = std::ranges::count(locale.findings, category, &Finding::category);
      if (count == 0) continue;
      any = true;
      out << "  " << paint(colourOf(category), fmt::format("{} ({})", heading(category), count)) << '\n';
      for (const auto& finding : locale.findings) {
        if (finding.category == category) writeFinding(finding, out, paint);
      }
    }
    if (!any) out << "  " << paint(kGreen, "No issues") << '\n';
    const auto done =
        std::ranges::count_if(locale.checklist, [](const auto& item) { return item.status.isCompleted(); });
    out << "  Checklist: " << done << " of " << locale.checklist.size() << " done\n";
    for (const auto& item : locale.checklist) {
      out << "    " << itemMark(item.status, paint) << ' ' << item.title;
      if (!item.status.isCompleted())
        out << paint(kDim, " (" + std::string(statusName(item.status)) + ": " + item.description + ")");
      out << '\n';
    }
  }
  out << '\n'
      << "Completion: " << report.progress.completedItems << " of " << report.progress.totalItems << " items done, "
      << plural(report.progress.blockedItems, "blocked item", "blocked items") << ", status " << report.completionStatus
      << '\n';
  if (report.nextAction) {
    out << "Next: " << report.nextAction->title << " in " << report.nextAction->category.value_or("General") << " ("
        << report.nextAction->description << ")\n";
  }
  const std::string counts =
      fmt::format("{}, {}, {}, {}", plural(report.count(FindingCategory::blocker), "blocker", "blockers"),
                  plural(report.count(FindingCategory::rejectionRisk), "rejection risk", "rejection risks"),
                  plural(report.count(FindingCategory::optimization), "optimization", "optimizations"),
                  plural(report.count(FindingCategory::opportunity), "opportunity", "opportunities"));
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
    for (const auto category : kCategories) {
      json.key(categoryKey(category));
      json.beginArray();
      for (const auto& finding : locale.findings) {
        if (finding.category == category) writeFindingJson(json, finding);
      }
      json.endArray();
    }
    json.key("checklist");
    json.beginArray();
    for (const auto& item : locale.checklist) writeItemJson(json, item);
    json.endArray();
    json.endObject();
  }
  json.endArray();
  json.key("fixes");
  json.beginArray();
  for (const auto& change : report.fixes) {
    json.beginObject();
    json.member("file", fixFile(change));
    json.member("action", change.action);
    json.member("charactersBefore", change.charactersBefore);
    json.member("charactersAfter", change.charactersAfter);
    json.member("before", change.before);
    json.member("after", change.after);
    json.member("written", report.fixesWritten);
    json.endObject();
  }
  json.endArray();
  json.key("completion");
  json.beginObject();
  json.member("completedItems", report.progress.completedItems);
  json.member("totalItems", report.progress.totalItems);
  json.member("blockedItems", report.progress.blockedItems);
  json.member("status", report.completionStatus);
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
  for (const auto category : kCategories) {
    json.key(categoryKey(category));
    json.value(report.count(category));
  }
  json.endObject();
  json.endObject();
}

}  // namespace corvane::cli
