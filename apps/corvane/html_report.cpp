// The HTML report: one page a person opens from a CI artifact. It loads nothing (the style
// is inline, there is no script) and is well-formed XML as well as HTML, so that tests read
// it back with an XML parser.
#include "report_writers.hpp"

#include "corvane/store/store_facts.hpp"
#include "corvane/text/characters.hpp"
#include "corvane/version.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <string>

namespace corvane::cli {
namespace {

using store::kRuleLevels;
using store::ListingFinding;

// Texts longer than this are folded under <details>, so that a description does not push
// the findings of the next field off the screen.
constexpr std::size_t kFoldedCharacters = 280;

// The level's class name in the style sheet.
std::string_view levelClass(RuleLevel level) {
  switch (level) {
    case RuleLevel::blocker:
      return "blocker";
    case RuleLevel::rejectionRisk:
      return "risk";
    case RuleLevel::optimization:
      return "optimization";
    case RuleLevel::opportunity:
      return "opportunity";
  }
  return {};
}

std::string plural(std::int64_t count, std::string_view one, std::string_view many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

// The ids of cards and fields come from locale codes and file names: only letters, digits
// and '-' survive, so that a hostile folder name cannot break out of an attribute or a link.
std::string anchor(std::string_view prefix, std::string_view name) {
  std::string result(prefix);
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    result += (std::isalnum(byte) != 0 && byte < 0x80) ? c : '-';
  }
  return result;
}

constexpr std::string_view kStyle = R"(
:root { --ink: #1d1d1f; --muted: #5f6368; --line: #d7d9de; --page: #f4f5f7; --card: #fff;
  --blocker: #b3261e; --blocker-bg: #fdeceb; --risk: #8a4b00; --risk-bg: #fff3dc;
  --optimization: #0b57d0; --optimization-bg: #e8f0fe; --opportunity: #17692f; --opportunity-bg: #e6f4ea; }
* { box-sizing: border-box; }
body { margin: 0; padding: 24px; background: var(--page); color: var(--ink);
  font: 15px/1.5 system-ui, -apple-system, "Segoe UI", "DejaVu Sans", sans-serif; }
main, header.banner, nav { max-width: 1100px; margin: 0 auto 20px; }
h1, h2, h3 { line-height: 1.25; margin: 0; }
code, .file, .place { font-family: ui-monospace, "DejaVu Sans Mono", monospace; font-size: 0.88em; }
.banner { border-radius: 10px; padding: 20px 24px; border: 2px solid; background: var(--card); }
.banner.blocked { border-color: var(--blocker); }
.banner.blocked h1 { color: var(--blocker); }
.banner.ready { border-color: var(--opportunity); }
.banner.ready h1 { color: var(--opportunity); }
.banner h1 { font-size: 1.6em; }
.banner p { margin: 6px 0 0; }
.meta { color: var(--muted); }
.counts { display: flex; flex-wrap: wrap; gap: 10px; list-style: none; padding: 0; margin: 14px 0 0; }
.counts li { border-radius: 8px; padding: 6px 14px; font-weight: 600; }
.counts .number { font-size: 1.4em; margin-right: 6px; }
.blocker { --level: var(--blocker); --level-bg: var(--blocker-bg); }
.risk { --level: var(--risk); --level-bg: var(--risk-bg); }
.optimization { --level: var(--optimization); --level-bg: var(--optimization-bg); }
.opportunity { --level: var(--opportunity); --level-bg: var(--opportunity-bg); }
.counts li, .badge { color: var(--level); background: var(--level-bg); border: 1px solid var(--level); }
.counts li.none { color: var(--muted); background: var(--card); border-color: var(--line); }
nav ul { list-style: none; padding: 0; margin: 0; display: flex; flex-wrap: wrap; gap: 8px; }
nav a { display: inline-block; padding: 4px 12px; border-radius: 999px; background: var(--card);
  border: 1px solid var(--line); color: var(--ink); text-decoration: none; }
.card { background: var(--card); border: 1px solid var(--line); border-radius: 10px; padding: 18px 22px; margin-bottom: 20px; }
.card > h2 { font-size: 1.35em; padding-bottom: 8px; border-bottom: 1px solid var(--line); }
.card > h2 .meta { font-size: 0.7em; font-weight: normal; margin-left: 8px; }
.absent { margin: 12px 0 0; }
.field { padding: 14px 0; border-bottom: 1px solid var(--line); break-inside: avoid; }
.field h3 { font-size: 1.05em; display: flex; flex-wrap: wrap; gap: 4px 12px; align-items: baseline; }
.field h3 .file { font-weight: normal; color: var(--muted); }
.length { display: flex; align-items: center; gap: 12px; margin: 8px 0; }
.bar { flex: 0 0 260px; height: 10px; border-radius: 5px; background: #e3e5e8; overflow: hidden; }
.bar span { display: block; height: 100%; background: #4b5563; }
.length.over .bar span { background: var(--blocker); }
.length.over .count { color: var(--blocker); font-weight: 600; }
.count { font-size: 0.9em; }
.text { white-space: pre-wrap; overflow-wrap: anywhere; background: #f8f9fa; border: 1px solid var(--line);
  border-radius: 6px; padding: 8px 12px; margin: 6px 0; }
.empty { color: var(--muted); font-style: italic; }
details summary { cursor: pointer; color: var(--optimization); }
.findings { list-style: none; padding: 0; margin: 8px 0 0; }
.finding { border-left: 4px solid var(--level); background: var(--level-bg); border-radius: 4px; padding: 8px 12px; margin: 8px 0; }
.finding p { margin: 2px 0; }
.finding .message { font-weight: 600; }
.badge { display: inline-block; font-size: 0.8em; font-weight: 700; padding: 0 8px; border-radius: 4px; margin-right: 8px; background: var(--card); }
.label { font-weight: 600; }
.checklist { list-style: none; padding: 0; margin: 8px 0 0; }
.checklist li { padding: 3px 0; }
.status { display: inline-block; min-width: 8.5em; font-size: 0.85em; font-weight: 700; }
.status.done { color: var(--opportunity); }
.status.blocked, .status.missing { color: var(--blocker); }
.status.progress { color: var(--risk); }
.status.optional { color: var(--muted); }
.card h3.section { margin-top: 16px; font-size: 1.05em; }
@media print {
  body { background: #fff; padding: 0; font-size: 11pt; }
  nav { display: none; }
  .card, .banner { border-color: #999; break-inside: auto; }
  * { -webkit-print-color-adjust: exact; print-color-adjust: exact; }
}
)";

// One finding: its level in words, message, why the store cares, what to do, and where.
void writeFinding(const ListingFinding& finding, std::ostream& out) {
  const auto& verdict = finding.verdict;
  out << "<li class=\"finding " << levelClass(finding.level) << "\" data-rule=\"" << markupEscaped(finding.rule)
      << "\">\n"
      << "<p class=\"message\"><span class=\"badge\">" << store::levelTitle(finding.level) << "</span>"
      << markupEscaped(verdict.message) << "</p>\n";
  if (verdict.businessReason) {
    out << "<p class=\"why\"><span class=\"label\">Why it matters:</span> " << markupEscaped(*verdict.businessReason)
        << "</p>\n";
  }
  std::string action;
  if (verdict.actionGuidance) {
    const auto& primary = verdict.actionGuidance->primaryAction;
    action = primary.title;
    if (!primary.description.empty()) action += ": " + primary.description;
    if (primary.type.isAutoFix()) action += " (corvane check --fix does this)";
  } else if (verdict.suggestedFix) {
    action = *verdict.suggestedFix;
  }
  if (!action.empty()) {
    out << "<p class=\"do\"><span class=\"label\">What to do:</span> " << markupEscaped(action) << "</p>\n";
  }
  out << "<p class=\"meta\">Rule <code class=\"rule\">" << markupEscaped(finding.rule)
      << "</code> at <span class=\"place\">" << markupEscaped(finding.file);
  if (finding.position) out << ':' << finding.position->line << ':' << finding.position->column;
  out << "</span></p>\n</li>\n";
}

void writeFindings(const std::vector<const ListingFinding*>& findings, std::ostream& out) {
  if (findings.empty()) return;
  out << "<ul class=\"findings\">\n";
  for (const auto* finding : findings) writeFinding(*finding, out);
  out << "</ul>\n";
}

// One field: its label and file, the length against the store's limit as a bar, the text,
// and the findings on it.
void writeField(const FieldText& field, const store::FieldFacts& facts, const LocaleReport& section,
                std::ostream& out) {
  const auto label = facts.label.empty() ? std::string(store::fieldKey(field.field)) : facts.label;
  const auto count = static_cast<std::int64_t>(characterCount(trimmed(field.text)));
  out << "<div class=\"field\" id=\"" << anchor("field-" + section.locale + "-", store::fieldKey(field.field))
      << "\" data-field=\"" << store::fieldKey(field.field) << "\" data-count=\"" << count << "\"";
  if (facts.limit) out << " data-limit=\"" << *facts.limit << "\"";
  out << ">\n<h3><span>" << markupEscaped(label) << "</span><span class=\"file\">" << markupEscaped(field.file);
  if (field.source == store::TextSource::defaults) out << " (from default/)";
  out << "</span></h3>\n";

  if (field.source == store::TextSource::none) {
    out << "<p class=\"empty\">No file" << (facts.required ? ": the store requires this field" : "") << "</p>\n";
  } else {
    if (facts.limit) {
      const auto limit = std::max<std::int64_t>(*facts.limit, 1);
      const auto percent = std::min<std::int64_t>(count * 100 / limit, 100);
      const bool over = count > *facts.limit;
      out << "<div class=\"length" << (over ? " over" : "") << "\"><div class=\"bar\"><span style=\"width: " << percent
          << "%\"></span></div><span class=\"count\">" << count << " of " << *facts.limit << " characters";
      if (over) out << ", " << count - *facts.limit << " too many";
      out << "</span></div>\n";
    } else {
      out << "<div class=\"length\"><span class=\"count\">" << plural(count, "character", "characters")
          << "</span></div>\n";
    }
    if (trimmed(field.text).empty()) {
      out << "<p class=\"empty\">Empty</p>\n";
    } else if (characterCount(field.text) > kFoldedCharacters) {
      out << "<details><summary>Show the text (" << plural(count, "character", "characters")
          << ")</summary>\n<div class=\"text\">" << markupEscaped(field.text) << "</div>\n</details>\n";
    } else {
      out << "<div class=\"text\">" << markupEscaped(field.text) << "</div>\n";
    }
  }

  std::vector<const ListingFinding*> findings;
  for (const auto& finding : section.findings) {
    if (finding.field == field.field) findings.push_back(&finding);
  }
  writeFindings(findings, out);
  out << "</div>\n";
}

std::string_view statusClass(const CompletionItem::CompletionStatus& status) {
  if (status.isCompleted()) return "done";
  if (status.isBlocked()) return "blocked";
  if (status.isMissing()) return "missing";
  if (status.isInProgress()) return "progress";
  return "optional";
}

std::string_view statusWords(const CompletionItem::CompletionStatus& status) {
  if (status.isCompleted()) return "✓ Done";
  if (status.isBlocked()) return "✗ Blocked";
  if (status.isMissing()) return "✗ Missing";
  if (status.isInProgress()) return "◐ In progress";
  return "○ Optional";
}

void writeChecklist(const std::vector<CompletionItem>& checklist, std::ostream& out) {
  if (checklist.empty()) return;
  const auto done = std::ranges::count_if(checklist, [](const auto& item) { return item.status.isCompleted(); });
  out << "<h3 class=\"section\">Checklist: " << done << " of " << checklist.size() << " done</h3>\n"
      << "<ul class=\"checklist\">\n";
  for (const auto& item : checklist) {
    out << "<li class=\"item " << statusClass(item.status) << "\"><span class=\"status " << statusClass(item.status)
        << "\">" << statusWords(item.status) << "</span> " << markupEscaped(item.title);
    if (!item.status.isCompleted()) out << " <span class=\"meta\">(" << markupEscaped(item.description) << ")</span>";
    out << "</li>\n";
  }
  out << "</ul>\n";
}

std::string sectionCounts(const LocaleReport& section) {
  std::vector<std::string> parts;
  for (const auto level : kRuleLevels) {
    const auto count = std::ranges::count(section.findings, level, &ListingFinding::level);
    if (count > 0)
      parts.push_back(
          fmt::format("{} {}", count, count == 1 ? store::levelTitle(level) : store::levelTitlePlural(level)));
  }
  if (parts.empty()) return "no findings";
  std::string result = parts.front();
  for (std::size_t i = 1; i < parts.size(); ++i) result += ", " + parts[i];
  return result;
}

void writeCard(const LocaleReport& section, std::string_view title, const store::StoreFacts& facts, std::ostream& out) {
  out << "<section class=\"card\" id=\"" << anchor("locale-", section.locale) << "\" data-locale=\""
      << markupEscaped(section.locale) << "\">\n<h2>" << markupEscaped(title) << "<span class=\"meta\">"
      << markupEscaped(sectionCounts(section)) << "</span></h2>\n";
  // A field the store does not require, without a file and without findings, says nothing
  // worth a block of its own: such fields share one line at the end.
  std::vector<std::string> absent;
  for (const auto& field : section.texts) {
    const auto& fieldFacts = facts.field(field.field);
    const bool quiet = field.source == store::TextSource::none && !fieldFacts.required &&
                       std::ranges::none_of(section.findings, [&](const ListingFinding& finding) {
                         return finding.field == field.field;
                       });
    if (quiet) {
      absent.push_back(fieldFacts.label.empty() ? std::string(store::fieldKey(field.field)) : fieldFacts.label);
      continue;
    }
    writeField(field, fieldFacts, section, out);
  }
  if (!absent.empty()) {
    std::string names = absent.front();
    for (std::size_t i = 1; i < absent.size(); ++i) names += ", " + absent[i];
    out << "<p class=\"absent meta\">Not provided (optional): " << markupEscaped(names) << "</p>\n";
  }
  // Findings that belong to no field shown here: the folder itself (an unknown locale folder).
  std::vector<const ListingFinding*> others;
  for (const auto& finding : section.findings) {
    const bool shown = finding.field && std::ranges::any_of(section.texts, [&](const FieldText& field) {
                         return field.field == *finding.field;
                       });
    if (!shown) others.push_back(&finding);
  }
  if (!others.empty()) {
    out << "<div class=\"field\" data-field=\"folder\">\n<h3><span>The folder</span></h3>\n";
    writeFindings(others, out);
    out << "</div>\n";
  }
  writeChecklist(section.checklist, out);
  out << "</section>\n";
}

void writeBanner(const CheckReport& report, std::ostream& out) {
  const auto blockers = report.count(RuleLevel::blocker);
  out << "<header class=\"banner " << (blockers > 0 ? "blocked" : "ready") << "\" id=\"summary\">\n<h1>";
  if (blockers > 0) {
    out << "Blocked by " << plural(blockers, "blocker", "blockers") << ": fix " << (blockers == 1 ? "it" : "them")
        << " before submitting";
  } else {
    out << "Can submit: nothing blocks submission";
  }
  out << "</h1>\n<p class=\"meta\">" << store::storeName(report.store) << " rules, "
      << plural(static_cast<std::int64_t>(report.locales.size()), "locale", "locales") << ", checked by corvane "
      << CorvaneVersionString << "<br/>Folder: <code class=\"folder\">" << markupEscaped(report.directory.string())
      << "</code></p>\n"
      << "<ul class=\"counts\">\n";
  for (const auto level : kRuleLevels) {
    const auto count = report.count(level);
    out << "<li class=\"" << levelClass(level) << (count == 0 ? " none" : "") << "\" data-level=\""
        << store::levelName(level) << "\"><span class=\"number\">" << count << "</span>"
        << (count == 1 ? store::levelTitle(level) : store::levelTitlePlural(level)) << "</li>\n";
  }
  out << "</ul>\n<p>Checklist: " << report.progress.completedItems << " of " << report.progress.totalItems
      << " items done, " << markupEscaped(completionSummary(report)) << ".";
  if (report.nextAction) {
    out << " Next: " << markupEscaped(report.nextAction->title) << " <span class=\"meta\">("
        << markupEscaped(report.nextAction->description) << ")</span>";
  }
  out << "</p>\n";
  if (!report.fixes.empty()) {
    out << "<p>" << (report.fixesWritten ? "Fixed automatically: " : "Would fix automatically: ");
    for (std::size_t i = 0; i < report.fixes.size(); ++i) {
      const auto& fix = report.fixes[i];
      out << (i > 0 ? "; " : "") << markupEscaped(fix.file) << " (" << markupEscaped(fix.action) << ", "
          << fix.charactersBefore << " to " << fix.charactersAfter << " characters)";
    }
    out << "</p>\n";
  }
  out << "</header>\n";
}

}  // namespace

void writeHtmlReport(const CheckReport& report, std::ostream& out) {
  const auto& facts = store::StoreFacts::of(report.store);
  // A store whose layout has no shared files (Google Play's) has nothing to show there.
  const bool shared = !report.shared.findings.empty() || !report.shared.checklist.empty();
  out << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\"/>\n"
      << "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n"
      << "<title>Corvane report: " << markupEscaped(report.directory.filename().string()) << "</title>\n"
      << "<style>" << kStyle << "</style>\n</head>\n<body>\n";
  writeBanner(report, out);
  out << "<nav aria-label=\"Locales\"><ul>\n";
  for (const auto& locale : report.locales) {
    out << "<li><a href=\"#" << anchor("locale-", locale.locale) << "\">" << markupEscaped(locale.locale)
        << "</a></li>\n";
  }
  if (shared) out << "<li><a href=\"#locale-shared\">Shared files</a></li>\n";
  out << "</ul></nav>\n<main>\n";
  for (const auto& locale : report.locales) writeCard(locale, locale.locale, facts, out);
  if (shared) writeCard(report.shared, "Shared by every locale", facts, out);
  out << "</main>\n</body>\n</html>\n";
}

}  // namespace corvane::cli
