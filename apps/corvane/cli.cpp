#include "cli.hpp"

#include "checker.hpp"
#include "report_writers.hpp"

#include "corvane/store/input_error.hpp"
#include "corvane/store/listing_configuration.hpp"
#include "corvane/store/rule_catalog.hpp"
#include "corvane/store/staged_file.hpp"
#include "corvane/store/store_facts.hpp"

#include "corvane/resources/corvane_resources.hpp"
#include "corvane/support/print_line.hpp"
#include "corvane/version.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <optional>
#include <sstream>
#include <stdexcept>

namespace corvane::cli {
namespace {

enum class Format { text, json, sarif, github, junit, html };

struct Invocation {
  CheckOptions options;
  Format format = Format::text;
  // The least urgent level that still makes the exit status 1.
  store::RuleLevel failOn = store::RuleLevel::blocker;
  // Findings only: no headings, checklist, fixes or summary.
  bool quiet = false;
  // Where the report goes instead of standard output.
  std::optional<std::filesystem::path> output;
};

class UsageError final : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// "--format must be text or json, not 'xml'" rather than a list of internals.
CLI::Validator oneOf(std::vector<std::string> choices) {
  std::string words;
  for (std::size_t i = 0; i < choices.size(); ++i) {
    if (i > 0) words += i + 1 == choices.size() ? " or " : ", ";
    words += choices[i];
  }
  return CLI::Validator(
      [choices, words](std::string& value) -> std::string {
        if (std::ranges::find(choices, value) != choices.end()) return {};
        return "must be " + words + ", not '" + value + "'";
      },
      words);
}

// A value that is an option ("--config --fix") means the value was forgotten; taking the
// option as a file name would hide the mistake.
const CLI::Validator kNotAnOption(
    [](std::string& value) -> std::string { return value.starts_with("--") ? "needs a value before " + value : ""; },
    "");

// CLI11's messages, in the words the rest of the program uses.
std::string usageMessage(const CLI::ParseError& error, const CLI::App& app) {
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    const std::string what = error.what();
    return what.substr(0, what.find(':')) + " needs a value";
  }
  if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
    std::vector<std::string> extras = app.remaining();
    for (const auto* command : app.get_subcommands()) {
      const auto more = command->remaining();
      extras.insert(extras.end(), more.begin(), more.end());
    }
    if (!extras.empty()) {
      if (extras.front().starts_with("-")) return "unknown option '" + extras.front() + "'";
      return "only one folder can be checked at a time, not also '" + extras.front() + "'";
    }
  }
  return error.what();
}

Format formatNamed(const std::string& name) {
  if (name == "json") return Format::json;
  if (name == "sarif") return Format::sarif;
  if (name == "github") return Format::github;
  if (name == "junit") return Format::junit;
  if (name == "html") return Format::html;
  return Format::text;
}

// The library prints diagnostics lines (such as its combine trace) on standard output;
// they would corrupt the report, so they are silenced while the checker runs.
class QuietLibrary {
 public:
  QuietLibrary() : previous_(setLineOutput([](std::string_view) {})) {}
  ~QuietLibrary() { setLineOutput(std::move(previous_)); }
  QuietLibrary(const QuietLibrary&) = delete;
  QuietLibrary& operator=(const QuietLibrary&) = delete;

 private:
  LineOutput previous_;
};

// `corvane rules`: every rule with its level, what it checks and why the store cares.
int listRules(Format format, std::ostream& out) {
  const auto catalog = store::everyStoreRuleCatalog();
  if (format == Format::json) {
    writeRulesJson(catalog, out);
    return exitReady;
  }
  for (const auto& rule : catalog) {
    out << rule.id << " (" << store::levelName(rule.defaultLevel) << ")\n    " << rule.summary << "\n    "
        << rule.reason << '\n';
  }
  return exitReady;
}

// Applies any fixes, writes the report and returns it.
CheckReport writeReport(const Invocation& invocation, Checker& checker, std::ostream& out, bool colour) {
  const bool text = invocation.format == Format::text;
  if (invocation.options.fix) {
    const auto fixes = checker.plannedFixes();
    // Listed once applied, so that a refused or failed write claims no change.
    checker.applyFixes(fixes);
    if (text && !invocation.quiet) {
      writeRemovedLines(checker.removedLeftovers(), out);
      writeFixLines(fixes, invocation.options.dryRun, out, colour);
      if (fixes.empty()) out << "Nothing to fix automatically.\n";
      out << '\n';
    }
  }
  const auto report = checker.report();
  switch (invocation.format) {
    case Format::json:
      writeJsonReport(report, out);
      break;
    case Format::sarif:
      writeSarifReport(report, store::ruleCatalog(store::StoreFacts::of(report.store)), out);
      break;
    case Format::github:
      writeGithubReport(report, out, invocation.quiet);
      break;
    case Format::junit:
      writeJunitReport(report, invocation.failOn, out);
      break;
    case Format::html:
      writeHtmlReport(report, out);
      break;
    case Format::text:
      if (invocation.quiet) {
        writeFindingLines(report, out, colour);
      } else {
        writeTextReport(report, out, colour);
        if (invocation.failOn != store::RuleLevel::blocker && report.failsAt(invocation.failOn) && !report.blocked()) {
          out << "The run fails: findings at " << store::levelName(invocation.failOn)
              << " level or more urgent (--fail-on)\n";
        }
      }
      break;
  }
  return report;
}

int check(const Invocation& invocation, std::ostream& out, std::ostream& err, bool colour, bool& filesWritten) {
  QuietLibrary quiet;
  Checker checker(invocation.options);
  if (!invocation.output) {
    const auto report = writeReport(invocation, checker, out, colour);
    filesWritten = report.fixesWritten && !report.fixes.empty();
    return report.failsAt(invocation.failOn) ? exitBlocked : exitReady;
  }
  // A report file is replaced whole or not at all: a CI step must never read half a report.
  std::ostringstream buffer;
  const auto report = writeReport(invocation, checker, buffer, false);
  filesWritten = report.fixesWritten && !report.fixes.empty();
  try {
    store::StagedFile(*invocation.output, buffer.str()).commit();
  } catch (const store::InputError& error) {
    err << "corvane: cannot write the report: " << error.what()
        << (filesWritten ? "; the fixes were written to the files" : "") << '\n';
    return exitUsageOrInput;
  }
  return report.failsAt(invocation.failOn) ? exitBlocked : exitReady;
}

constexpr std::string_view kUsage =
    "usage: corvane check [DIR] [--format text|json|sarif|github|junit|html] [--output FILE]\n"
    "                     [--config FILE] [--fail-on LEVEL] [--quiet] [--first-version] [--fix]\n"
    "                     [--dry-run] [--store appstore|play|auto]\n";

}  // namespace

std::string usageText() {
  return std::string(kUsage) +
         "       corvane rules [--format text|json]\n"
         "       corvane --help | --version\n"
         "\n"
         "Checks an app's store metadata folder against the store's rules and reports blockers,\n"
         "rejection risks, optimizations and opportunities. An App Store folder has one folder\n"
         "per locale (such as en-US) with name.txt, subtitle.txt, description.txt, keywords.txt,\n"
         "...; default/ for texts every locale shares; copyright.txt, the category files and\n"
         "review_information/ at the top. A Google Play folder has one folder per locale with\n"
         "title.txt, short_description.txt, full_description.txt, video.txt and changelogs/.\n"
         "Without DIR, checks the bundled sample. 'corvane rules' lists the rules.\n"
         "\n"
         "  --format text|json|sarif|github|junit|html\n"
         "                       report format (default text): sarif for code scanning, github for\n"
         "                       pull request annotations, junit for CI test reports, html for a\n"
         "                       page to read in a browser\n"
         "  --output FILE        write the report to FILE (replaced whole) instead of standard output\n"
         "  --fail-on LEVEL      the least urgent level that fails the run: blocker (default),\n"
         "                       rejection-risk, optimization or opportunity\n"
         "  --quiet              print the findings only, one a line\n"
         "  --config FILE        rule levels and words (default: DIR/.corvane.toml when present)\n"
         "  --first-version      this is the app's first version: release notes are not required\n"
         "  --fix                apply automatic fixes (trims, keyword tidying) and write the files\n"
         "  --dry-run            show the automatic fixes without writing anything\n"
         "  --store appstore|play|auto\n"
         "                       which store's layout and rules (auto: recognised from the folder)\n"
         "\n"
         "Exit status: 0 nothing at the --fail-on level or above; 1 something is (by default:\n"
         "something blocks submission); 2 a usage or input error, a failed write (every file put\n"
         "back) or a report that could not be written.\n";
}

namespace {

int dispatch(std::span<const std::string> arguments, std::ostream& out, std::ostream& err, Terminal terminal,
             bool& filesWritten) {
  try {
    if (arguments.empty()) throw UsageError("missing command; try 'corvane check'");
    const std::string& command = arguments.front();
    if (command == "help") {
      out << usageText();
      return exitReady;
    }
    if (!command.starts_with("-") && command != "check" && command != "rules") {
      throw UsageError("unknown command '" + command + "'");
    }

    CLI::App app("corvane", "corvane");
    bool version = false;
    app.add_flag("--version", version);
    app.require_subcommand(0, 1);

    Invocation invocation;
    std::string checkFormat = "text";
    std::optional<std::filesystem::path> directory;
    std::string configFile;
    bool dryRun = false;
    CLI::App* checkCommand = app.add_subcommand("check");
    checkCommand->add_option("DIR", directory);
    checkCommand->add_option("--format", checkFormat)->check(oneOf({"text", "json", "sarif", "github", "junit", "html"}));
    std::string failOn = "blocker";
    checkCommand->add_option("--fail-on", failOn)
        ->check(oneOf({"blocker", "rejection-risk", "optimization", "opportunity"}));
    checkCommand->add_flag("--quiet", invocation.quiet);
    checkCommand->add_option("--output", invocation.output)->check(kNotAnOption);
    checkCommand->add_option("--config", configFile)->check(kNotAnOption);
    checkCommand->add_flag("--first-version", invocation.options.firstVersion);
    checkCommand->add_flag("--fix", invocation.options.fix);
    checkCommand->add_flag("--dry-run", dryRun);
    checkCommand->add_option("--store", invocation.options.store)->check(oneOf({"appstore", "play", "auto"}));

    std::string rulesFormat = "text";
    CLI::App* rules = app.add_subcommand("rules");
    rules->add_option("--format", rulesFormat)->check(oneOf({"text", "json"}));

    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    try {
      app.parse(reversed);
    } catch (const CLI::CallForHelp&) {
      out << usageText();
      return exitReady;
    } catch (const CLI::ParseError& error) {
      throw UsageError(usageMessage(error, app));
    }
    if (version) {
      out << "corvane " << CorvaneVersionString << '\n';
      return exitReady;
    }
    if (rules->parsed()) return listRules(formatNamed(rulesFormat), out);
    if (!checkCommand->parsed()) throw UsageError("missing command; try 'corvane check'");

    invocation.format = formatNamed(checkFormat);
    invocation.failOn = *store::parseRuleLevel(failOn);
    if (!configFile.empty()) invocation.options.configFile = configFile;
    if (dryRun) invocation.options.fix = invocation.options.dryRun = true;
    if (!directory && invocation.options.fix && !invocation.options.dryRun) {
      throw UsageError("--fix needs a folder: the bundled sample is never rewritten");
    }
    invocation.options.directory = directory ? *directory : CorvaneResources::sampleMetadataDirectory();
    return check(invocation, out, err, terminal.isTerminal && !terminal.noColor, filesWritten);
  } catch (const UsageError& error) {
    err << "corvane: " << error.what() << "\n" << kUsage;
    return exitUsageOrInput;
  } catch (const store::ConfigurationError& error) {
    err << "corvane: " << error.what() << '\n';
    return exitUsageOrInput;
  } catch (const store::InputError& error) {
    err << "corvane: " << error.what() << '\n';
    return exitUsageOrInput;
  } catch (const std::filesystem::filesystem_error& error) {
    err << "corvane: " << error.what() << '\n';
    return exitUsageOrInput;
  }
}

}  // namespace

int runCli(std::span<const std::string> arguments, std::ostream& out, std::ostream& err, Terminal terminal) {
  bool filesWritten = false;
  const int status = dispatch(arguments, out, err, terminal, filesWritten);
  out.flush();
  if (out) return status;
  // A full disk or a closed pipe: the report is lost, so the run cannot count as passed.
  err << "corvane: cannot write the report to standard output"
      << (filesWritten ? "; the fixes were written to the files" : "") << '\n';
  return exitUsageOrInput;
}

}  // namespace corvane::cli
