// The JSON report and the rule list as JSON. Boost.JSON is included here only, so that its
// headers cost one translation unit.
#include "report_writers.hpp"

#include "corvane/results/validation_severity.hpp"
#include "corvane/store/rule_catalog.hpp"
#include "corvane/support/describe.hpp"
#include "corvane/text/characters.hpp"
#include "corvane/version.hpp"

#include <boost/json.hpp>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string>

namespace corvane::cli {
namespace {

namespace json = boost::json;
using store::ListingFinding;
using store::kRuleLevels;
using ItemStatus = CompletionItem::CompletionStatus;

// File contents are checked on reading, but a folder's name may hold any bytes; those that
// are not UTF-8 become U+FFFD, so that the report stays valid JSON.
json::string text(std::string_view value) {
  json::string result;
  while (const auto offset = firstInvalidUtf8Offset(value)) {
    result.append(value.substr(0, *offset));
    result.append("\uFFFD");
    value.remove_prefix(*offset + 1);
  }
  result.append(value);
  return result;
}

json::value optionalText(const std::optional<std::string>& value) {
  if (!value) return nullptr;
  return text(*value);
}

// Two-space indentation, one member per line: the report is read by people as well.
void pretty(std::ostream& out, const json::value& value, std::string& indent) {
  switch (value.kind()) {
    case json::kind::object: {
      const auto& object = value.get_object();
      if (object.empty()) {
        out << "{}";
        return;
      }
      out << '{';
      indent += "  ";
      bool first = true;
      for (const auto& member : object) {
        out << (first ? "\n" : ",\n") << indent << json::serialize(member.key()) << ": ";
        pretty(out, member.value(), indent);
        first = false;
      }
      indent.resize(indent.size() - 2);
      out << '\n' << indent << '}';
      return;
    }
    case json::kind::array: {
      const auto& array = value.get_array();
      if (array.empty()) {
        out << "[]";
        return;
      }
      out << '[';
      indent += "  ";
      bool first = true;
      for (const auto& element : array) {
        out << (first ? "\n" : ",\n") << indent;
        pretty(out, element, indent);
        first = false;
      }
      indent.resize(indent.size() - 2);
      out << '\n' << indent << ']';
      return;
    }
    default:
      out << json::serialize(value);
  }
}

void writeDocument(std::ostream& out, const json::value& document) {
  std::string indent;
  pretty(out, document, indent);
  out << '\n';
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

json::object findingJson(const ListingFinding& finding) {
  const auto& verdict = finding.verdict;
  json::object object;
  object["rule"] = text(finding.rule);
  object["file"] = text(finding.file);
  object["line"] = finding.position ? json::value(finding.position->line) : json::value(nullptr);
  object["column"] = finding.position ? json::value(finding.position->column) : json::value(nullptr);
  object["property"] = finding.field ? json::value(text(store::fieldKey(*finding.field))) : json::value(nullptr);
  object["severity"] = text(describe(verdict.severity));
  object["message"] = text(verdict.message);
  object["businessReason"] = optionalText(verdict.businessReason);
  if (verdict.actionGuidance) {
    const auto& action = verdict.actionGuidance->primaryAction;
    object["primaryAction"] = json::object{{"title", text(action.title)},
                                           {"description", text(action.description)},
                                           {"type", actionTypeName(action.type)}};
  } else {
    object["primaryAction"] = nullptr;
  }
  object["suggestedFix"] = optionalText(verdict.suggestedFix);
  return object;
}

json::array checklistJson(const std::vector<CompletionItem>& checklist) {
  json::array items;
  for (const auto& item : checklist) {
    items.push_back(json::object{{"id", text(item.id)},
                                 {"title", text(item.title)},
                                 {"status", statusName(item.status)},
                                 {"priority", priorityName(item.priority)},
                                 {"detail", text(item.description)}});
  }
  return items;
}

void addGroups(json::object& object, const std::vector<ListingFinding>& findings) {
  for (const auto level : kRuleLevels) {
    json::array group;
    for (const auto& finding : findings) {
      if (finding.level == level) group.push_back(findingJson(finding));
    }
    object[categoryKey(level)] = std::move(group);
  }
}

}  // namespace

void writeJsonReport(const CheckReport& report, std::ostream& out) {
  json::object document;
  document["schemaVersion"] = kJsonSchemaVersion;
  document["tool"] = json::object{{"name", "corvane"}, {"version", CorvaneVersionString}};
  document["directory"] = text(report.directory.string());
  json::array locales;
  for (const auto& locale : report.locales) {
    json::object object;
    object["locale"] = text(locale.locale);
    // Shared findings are listed under every locale too, as the schema has always done.
    std::vector<ListingFinding> findings = locale.findings;
    findings.insert(findings.end(), report.shared.findings.begin(), report.shared.findings.end());
    std::ranges::stable_sort(findings, {}, &ListingFinding::level);
    addGroups(object, findings);
    object["checklist"] = checklistJson(locale.checklist);
    locales.push_back(std::move(object));
  }
  document["locales"] = std::move(locales);
  json::object shared;
  addGroups(shared, report.shared.findings);
  shared["checklist"] = checklistJson(report.shared.checklist);
  document["shared"] = std::move(shared);
  json::array fixes;
  for (const auto& change : report.fixes) {
    fixes.push_back(json::object{{"file", text(change.file)},
                                 {"action", text(change.action)},
                                 {"charactersBefore", change.charactersBefore},
                                 {"charactersAfter", change.charactersAfter},
                                 {"before", text(change.before)},
                                 {"after", text(change.after)},
                                 {"written", report.fixesWritten}});
  }
  document["fixes"] = std::move(fixes);
  json::array removed;
  for (const auto& file : report.removedFiles) removed.push_back(text(file));
  document["removedFiles"] = std::move(removed);
  document["completion"] =
      json::object{{"completedItems", report.progress.completedItems},
                   {"totalItems", report.progress.totalItems},
                   {"blockedItems", report.progress.blockedItems},
                   {"status", text(completionSummary(report))},
                   {"canComplete", report.canComplete},
                   {"nextAction", report.nextAction ? json::value(text(report.nextAction->id)) : json::value(nullptr)}};
  json::object decision;
  decision["canSubmit"] = !report.blocked();
  for (const auto level : kRuleLevels) decision[categoryKey(level)] = report.count(level);
  document["decision"] = std::move(decision);
  writeDocument(out, document);
}

void writeRulesJson(const std::vector<store::RuleInfo>& catalog, std::ostream& out) {
  json::array rules;
  for (const auto& rule : catalog) {
    rules.push_back(json::object{{"id", text(rule.id)},
                                 {"defaultLevel", store::levelName(rule.defaultLevel)},
                                 {"checks", text(rule.summary)},
                                 {"why", text(rule.reason)}});
  }
  writeDocument(out, json::object{{"rules", std::move(rules)}});
}

namespace {

std::string_view sarifLevel(store::RuleLevel level) {
  switch (level) {
    case store::RuleLevel::blocker:
      return "error";
    case store::RuleLevel::rejectionRisk:
      return "warning";
    case store::RuleLevel::optimization:
    case store::RuleLevel::opportunity:
      return "note";
  }
  return {};
}

// A path as a URI reference: every byte but the unreserved ones and '/' percent-encoded.
std::string uriPath(std::string_view path) {
  std::string result;
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    if (std::isalnum(byte) != 0 || c == '-' || c == '.' || c == '_' || c == '~' || c == '/') {
      result += c;
    } else {
      static constexpr char kHex[] = "0123456789ABCDEF";
      result += '%';
      result += kHex[byte >> 4];
      result += kHex[byte & 0xF];
    }
  }
  return result;
}

}  // namespace

void writeSarifReport(const CheckReport& report, const std::vector<store::RuleInfo>& catalog, std::ostream& out) {
  json::array rules;
  for (const auto& rule : catalog) {
    rules.push_back(json::object{
        {"id", text(rule.id)},
        {"shortDescription", json::object{{"text", text(rule.summary)}}},
        {"fullDescription", json::object{{"text", text(rule.summary + " " + rule.reason)}}},
        {"help", json::object{{"text", text(rule.reason)}}},
        {"defaultConfiguration", json::object{{"level", sarifLevel(rule.defaultLevel)}}},
        {"properties", json::object{{"corvaneLevel", store::levelName(rule.defaultLevel)}}}});
  }
  json::array results;
  for (const auto* finding : report.distinctFindings()) {
    json::object physical;
    physical["artifactLocation"] = json::object{{"uri", uriPath(finding->file)}, {"uriBaseId", "METADATA"}};
    if (finding->position) {
      physical["region"] =
          json::object{{"startLine", finding->position->line}, {"startColumn", finding->position->column}};
    }
    json::object result;
    result["ruleId"] = text(finding->rule);
    const auto rule = std::ranges::find(catalog, finding->rule, &store::RuleInfo::id);
    if (rule != catalog.end()) result["ruleIndex"] = rule - catalog.begin();
    result["level"] = sarifLevel(finding->level);
    std::string message = finding->verdict.message;
    if (finding->verdict.businessReason) message += " " + *finding->verdict.businessReason;
    result["message"] = json::object{{"text", text(message)}};
    result["locations"] = json::array{json::object{{"physicalLocation", std::move(physical)}}};
    results.push_back(std::move(result));
  }
  // The findings' paths are relative to the folder; the base says where it is.
  auto folder = std::filesystem::absolute(report.directory).lexically_normal().generic_string();
  if (!folder.ends_with('/')) folder += '/';
  json::object run{
      {"tool", json::object{{"driver", json::object{{"name", "corvane"},
                                                    {"version", CorvaneVersionString},
                                                    {"rules", std::move(rules)}}}}},
      {"originalUriBaseIds", json::object{{"METADATA", json::object{{"uri", "file://" + uriPath(folder)}}}}},
      {"results", std::move(results)}};
  writeDocument(out, json::object{{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
                                  {"version", "2.1.0"},
                                  {"runs", json::array{std::move(run)}}});
}

}  // namespace corvane::cli
