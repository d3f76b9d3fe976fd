#include "report_writers.hpp"

#include "corvane/results/validation_severity.hpp"
#include "corvane/store/store_facts.hpp"
#include "corvane/support/describe.hpp"
#include "corvane/text/characters.hpp"
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
    out << "  " << paint(colourOf(level), fmt::format("{} ({})", store::levelTitlePlural(level), count)) << '\n';
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
  // A store whose layout has no shared files (Google Play's) has nothing to say here.
  if (!report.shared.findings.empty() || !report.shared.checklist.empty()) {
    writeSection(report.shared, "Shared by every locale", out, paint);
  }
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

void writeFindingLines(const CheckReport& report, std::ostream& out, bool colour) {
  const Paint paint(colour);
  for (const auto* finding : report.distinctFindings()) {
    out << visible(location(*finding)) << ": " << paint(colourOf(finding->level), std::string(store::levelName(finding->level)))
        << ": " << visible(finding->verdict.message) << paint(kDim, " [" + finding->rule + "]") << '\n';
  }
}

namespace {

std::string_view githubCommand(RuleLevel level) {
  switch (level) {
    case RuleLevel::blocker:
      return "error";
    case RuleLevel::rejectionRisk:
      return "warning";
    case RuleLevel::optimization:
    case RuleLevel::opportunity:
      return "notice";
  }
  return {};
}

// A workflow command's message: a line break would end the command early.
std::string githubData(std::string_view text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '%':
        result += "%25";
        break;
      case '\r':
        result += "%0D";
        break;
      case '\n':
        result += "%0A";
        break;
      default:
        result += c;
    }
  }
  return result;
}

// A property value: ':' and ',' would also end it.
std::string githubProperty(std::string_view text) {
  std::string result;
  for (const char c : githubData(text)) {
    if (c == ':') {
      result += "%3A";
    } else if (c == ',') {
      result += "%2C";
    } else {
      result += c;
    }
  }
  return result;
}

std::string countsLine(const CheckReport& report) {
  return fmt::format("{}, {}, {}, {}", plural(report.count(RuleLevel::blocker), "blocker", "blockers"),
                     plural(report.count(RuleLevel::rejectionRisk), "rejection risk", "rejection risks"),
                     plural(report.count(RuleLevel::optimization), "optimization", "optimizations"),
                     plural(report.count(RuleLevel::opportunity), "opportunity", "opportunities"));
}

}  // namespace

void writeGithubReport(const CheckReport& report, std::ostream& out, bool quiet) {
  for (const auto* finding : report.distinctFindings()) {
    // Annotations are placed by the path from the repository's root: the folder as given
    // (run from the root) joined with the file.
    const auto file = (report.directory / finding->file).lexically_normal().generic_string();
    out << "::" << githubCommand(finding->level) << " file=" << githubProperty(file);
    if (finding->position) out << ",line=" << finding->position->line << ",col=" << finding->position->column;
    std::string message = finding->verdict.message;
    if (finding->verdict.businessReason) message += "\n" + *finding->verdict.businessReason;
    out << ",title=" << githubProperty(fmt::format("{} ({})", finding->rule, store::levelName(finding->level)))
        << "::" << githubData(message) << '\n';
  }
  if (quiet) return;
  out << (report.blocked() ? "Decision: blocked" : "Decision: ready to submit") << " - " << countsLine(report) << '\n';
}

namespace {


struct TestCase {
  std::string name;
  std::string file;
  std::vector<const ListingFinding*> findings;
};

void writeSuite(std::string_view name, const std::vector<TestCase>& cases, RuleLevel failOn, std::ostream& out) {
  std::size_t failures = 0;
  for (const auto& testCase : cases) {
    failures += static_cast<std::size_t>(std::ranges::count_if(
        testCase.findings, [&](const ListingFinding* finding) { return finding->level <= failOn; }));
  }
  out << "  <testsuite name=\"" << markupEscaped(name) << "\" tests=\"" << cases.size() << "\" failures=\"" << failures
      << "\" errors=\"0\" skipped=\"0\">\n";
  for (const auto& testCase : cases) {
    out << "    <testcase classname=\"" << markupEscaped(name) << "\" name=\"" << markupEscaped(testCase.name)
        << "\" file=\"" << markupEscaped(testCase.file) << "\"";
    if (testCase.findings.empty()) {
      out << "/>\n";
      continue;
    }
    out << ">\n";
    std::string below;
    for (const auto* finding : testCase.findings) {
      std::string detail = location(*finding) + ": " + finding->verdict.message;
      if (finding->verdict.businessReason) detail += "\nwhy: " + *finding->verdict.businessReason;
      if (finding->level > failOn) {
        below += fmt::format("{} [{}, {}]\n", detail, finding->rule, store::levelName(finding->level));
        continue;
      }
      out << "      <failure type=\"" << markupEscaped(finding->rule) << "\" message=\""
          << markupEscaped(fmt::format("{}: {}", store::levelName(finding->level), finding->verdict.message)) << "\">"
          << markupEscaped(detail) << "</failure>\n";
    }
    if (!below.empty()) out << "      <system-out>" << markupEscaped(below) << "</system-out>\n";
    out << "    </testcase>\n";
  }
  out << "  </testsuite>\n";
}

}  // namespace

std::string markupEscaped(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const auto bad = firstInvalidUtf8Offset(text);
    for (const char c : text.substr(0, bad.value_or(text.size()))) {
      const auto byte = static_cast<unsigned char>(c);
      switch (c) {
        case '&':
          result += "&amp;";
          break;
        case '<':
          result += "&lt;";
          break;
        case '>':
          result += "&gt;";
          break;
        case '"':
          result += "&quot;";
          break;
        case '\'':
          result += "&#39;";  // HTML 4 has no &apos;
          break;
        case '\n':
        case '\t':
          result += c;
          break;
        default:
          if (byte < 0x20 || byte == 0x7F) {
            result += fmt::format("\\x{:02X}", byte);
          } else {
            result += c;
          }
      }
    }
    if (!bad) break;
    result += "\uFFFD";
    text.remove_prefix(*bad + 1);
  }
  return result;
}

void writeJunitReport(const CheckReport& report, RuleLevel failOn, std::ostream& out) {
  out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"corvane\">\n";
  auto casesFor = [](const LocaleReport& section, std::span<const store::ListingField> fields,
                     const std::string& folder) {
    std::vector<TestCase> cases;
    for (const auto field : fields) {
      TestCase testCase{std::string(store::fieldKey(field)), folder + std::string(store::fieldFile(field)), {}};
      for (const auto& finding : section.findings) {
        if (finding.field != field) continue;
        testCase.file = finding.file;  // perhaps default/, where the text really is
        testCase.findings.push_back(&finding);
      }
      cases.push_back(std::move(testCase));
    }
    // Findings about the folder itself (an unknown locale folder) have no field.
    for (const auto& finding : section.findings) {
      if (!finding.field) cases.push_back(TestCase{finding.file, finding.file, {&finding}});
    }
    return cases;
  };
  const auto& facts = store::StoreFacts::of(report.store);
  for (const auto& locale : report.locales) {
    writeSuite(locale.locale, casesFor(locale, facts.localeFields(), locale.locale + "/"), failOn, out);
  }
  writeSuite("shared", casesFor(report.shared, facts.sharedFields(), ""), failOn, out);
  out << "</testsuites>\n";
}

}  // namespace corvane::cli
