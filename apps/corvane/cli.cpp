#include "cli.hpp"

#include "checker.hpp"
#include "json_writer.hpp"
#include "report_writers.hpp"

#include "corvane/store/input_error.hpp"
#include "corvane/store/listing_configuration.hpp"
#include "corvane/store/rule_catalog.hpp"
#include "corvane/store/store_facts.hpp"

#include "corvane/resources/corvane_resources.hpp"
#include "corvane/support/print_line.hpp"
#include "corvane/version.hpp"

#include <optional>
#include <stdexcept>

namespace corvane::cli {
namespace {

enum class Format { text, json };

struct Invocation {
  CheckOptions options;
  Format format = Format::text;
};

class UsageError final : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

Invocation parseCheck(std::span<const std::string> arguments) {
  Invocation invocation;
  std::optional<std::filesystem::path> directory;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    auto valueOf = [&](std::string_view option) -> std::string {
      const std::string prefix = std::string(option) + "=";
      if (argument.starts_with(prefix)) return argument.substr(prefix.size());
      // "--config --fix" forgot the file; it must not swallow the next option.
      if (i + 1 >= arguments.size() || arguments[i + 1].starts_with("--")) {
        throw UsageError(std::string(option) + " needs a value");
      }
      return arguments[++i];
    };
    if (argument == "--format" || argument.starts_with("--format=")) {
      const std::string format = valueOf("--format");
      if (format == "text") {
        invocation.format = Format::text;
      } else if (format == "json") {
        invocation.format = Format::json;
      } else {
        throw UsageError("--format must be text or json, not '" + format + "'");
      }
    } else if (argument == "--config" || argument.starts_with("--config=")) {
      invocation.options.configFile = valueOf("--config");
    } else if (argument == "--first-version") {
      invocation.options.firstVersion = true;
    } else if (argument == "--fix") {
      invocation.options.fix = true;
    } else if (argument == "--dry-run") {
      invocation.options.fix = true;
      invocation.options.dryRun = true;
    } else if (argument.starts_with("-") && argument != "-") {
      throw UsageError("unknown option '" + argument + "'");
    } else if (directory) {
      throw UsageError("only one folder can be checked at a time");
    } else {
      directory = argument;
    }
  }
  if (!directory && invocation.options.fix && !invocation.options.dryRun) {
    throw UsageError("--fix needs a folder: the bundled sample is never rewritten");
  }
  invocation.options.directory = directory ? *directory : CorvaneResources::sampleMetadataDirectory();
  return invocation;
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
int listRules(std::span<const std::string> arguments, std::ostream& out) {
  Format format = Format::text;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    std::string value;
    if (argument.starts_with("--format=")) {
      value = argument.substr(9);
    } else if (argument == "--format" && i + 1 < arguments.size()) {
      value = arguments[++i];
    } else {
      throw UsageError("'corvane rules' takes only --format text|json, not '" + argument + "'");
    }
    if (value != "text" && value != "json") throw UsageError("--format must be text or json, not '" + value + "'");
    format = value == "json" ? Format::json : Format::text;
  }
  const auto catalog = store::everyStoreRuleCatalog();
  if (format == Format::json) {
    JsonWriter json(out);
    json.beginObject();
    json.key("rules");
    json.beginArray();
    for (const auto& rule : catalog) {
      json.beginObject();
      json.member("id", rule.id);
      json.member("defaultLevel", store::levelName(rule.defaultLevel));
      json.member("checks", rule.summary);
      json.member("why", rule.reason);
      json.endObject();
    }
    json.endArray();
    json.endObject();
    return exitReady;
  }
  for (const auto& rule : catalog) {
    out << rule.id << " (" << store::levelName(rule.defaultLevel) << ")\n    " << rule.summary << "\n    "
        << rule.reason << '\n';
  }
  return exitReady;
}

int check(const Invocation& invocation, std::ostream& out, bool colour, bool& filesWritten) {
  QuietLibrary quiet;
  Checker checker(invocation.options);
  if (invocation.options.fix) {
    const auto fixes = checker.plannedFixes();
    // Listed once applied, so that a refused or failed write claims no change.
    checker.applyFixes(fixes);
    filesWritten = !invocation.options.dryRun && !fixes.empty();
    if (invocation.format == Format::text) {
      writeRemovedLines(checker.removedLeftovers(), out);
      writeFixLines(fixes, invocation.options.dryRun, out, colour);
      if (fixes.empty()) out << "Nothing to fix automatically.\n";
    }
  }
  const auto report = checker.report();
  if (invocation.format == Format::json) {
    writeJsonReport(report, out);
  } else {
    if (invocation.options.fix) out << '\n';
    writeTextReport(report, out, colour);
  }
  return report.blocked() ? exitBlocked : exitReady;
}

constexpr std::string_view kUsage =
    "usage: corvane check [DIR] [--format text|json] [--config FILE] [--first-version] [--fix] [--dry-run]\n";

}  // namespace

std::string usageText() {
  return std::string(kUsage) +
         "       corvane rules [--format text|json]\n"
         "       corvane --help | --version\n"
         "\n"
         "Checks an app's App Store metadata folder (one folder per locale, such as en-US, with\n"
         "name.txt, subtitle.txt, description.txt, keywords.txt, ...; default/ for texts every\n"
         "locale shares; copyright.txt, the category files and review_information/ at the top)\n"
         "against the store's rules and reports blockers, rejection risks, optimizations and\n"
         "opportunities. Without DIR, checks the bundled sample. 'corvane rules' lists the rules.\n"
         "\n"
         "  --format text|json   report format (default text)\n"
         "  --config FILE        rule levels and words (default: DIR/.corvane.toml when present)\n"
         "  --first-version      this is the app's first version: release notes are not required\n"
         "  --fix                apply automatic fixes (trims, keyword tidying) and write the files\n"
         "  --dry-run            show the automatic fixes without writing anything\n"
         "\n"
         "Exit status: 0 nothing blocks submission, 1 something blocks it, 2 usage or input error,\n"
         "a failed write (every file put back) or a report that could not be written.\n";
}

namespace {

int dispatch(std::span<const std::string> arguments, std::ostream& out, std::ostream& err, Terminal terminal,
             bool& filesWritten) {
  try {
    if (arguments.empty()) throw UsageError("missing command; try 'corvane check'");
    const std::string& command = arguments.front();
    if (command == "--help" || command == "-h" || command == "help") {
      out << usageText();
      return exitReady;
    }
    if (command == "--version") {
      out << "corvane " << CorvaneVersionString << '\n';
      return exitReady;
    }
    if (command == "rules") return listRules(arguments.subspan(1), out);
    if (command != "check") throw UsageError("unknown command '" + command + "'");
    const auto rest = arguments.subspan(1);
    for (const auto& argument : rest) {
      if (argument == "--help" || argument == "-h") {
        out << usageText();
        return exitReady;
      }
    }
    const Invocation invocation = parseCheck(rest);
    return check(invocation, out, terminal.isTerminal && !terminal.noColor, filesWritten);
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
