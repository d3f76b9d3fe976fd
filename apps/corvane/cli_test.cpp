#include "cli.hpp"

#include "cli_test_support.hpp"

#include "corvane/text/characters.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace corvane::cli {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;
using testing::run;
using testing::TemporaryFolder;

// Every file under `root` with its contents, to prove that nothing changed.
std::map<std::string, std::string> snapshot(const fs::path& root) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    if (entry.is_regular_file()) files[fs::relative(entry.path(), root).string()] = testing::readFile(entry.path());
  }
  return files;
}

TEST(CliTest, ExitStatusSaysWhetherSomethingBlocks) {
  TemporaryFolder temporary;
  const auto sample = testing::copySample(temporary.path() / "metadata");
  const auto blocked = run({"check", sample.string()});
  EXPECT_EQ(blocked.status, exitBlocked);
  EXPECT_THAT(blocked.out, HasSubstr("Decision: blocked"));
  EXPECT_EQ(blocked.err, "");

  testing::writeFile(sample / "de-DE" / "name.txt", "Corvane Notizen\n");
  const auto ready = run({"check", sample.string(), "--format", "json"});
  EXPECT_EQ(ready.status, exitReady) << ready.out;
  EXPECT_THAT(ready.out, HasSubstr("\"canSubmit\": true"));
}

TEST(CliTest, DefaultsToTheBundledSample) {
  const auto result = run({"check", "--format=json"});
  EXPECT_EQ(result.status, exitBlocked);
  EXPECT_THAT(result.out, HasSubstr("corvane-resources/sample-metadata"));
}

TEST(CliTest, UsageErrorsExitWithStatus2) {
  TemporaryFolder temporary;
  const auto folder = temporary.path().string();
  struct Case {
    std::vector<std::string> arguments;
    std::string message;
  };
  for (const auto& c : std::vector<Case>{
           {{}, "missing command"},
           {{"lint"}, "unknown command 'lint'"},
           {{"check", "--format", "xml"}, "--format: must be text, json, sarif, github, junit or html, not 'xml'"},
           {{"check", folder, "--fail-on", "warning"},
            "--fail-on: must be blocker, rejection-risk, optimization or opportunity, not 'warning'"},
           {{"check", folder, "--output"}, "--output needs a value"},
           {{"check", "--format"}, "--format needs a value"},
           {{"check", "--colour"}, "unknown option '--colour'"},
           {{"check", "a", "b"}, "only one folder can be checked at a time, not also 'b'"},
           // a forgotten value must not swallow an option
           {{"check", folder, "--config", "--fix"}, "--config: needs a value before --fix"},
           {{"check", folder, "--store", "google"}, "--store: must be appstore, play or auto, not 'google'"},
           {{"rules", "--fix"}, "unknown option '--fix'"},
           {{"rules", "--format", "sarif"}, "--format: must be text or json, not 'sarif'"},
           // the bundled sample is never rewritten
           {{"check", "--fix"}, "--fix needs a folder"}}) {
    const auto result = run(c.arguments);
    EXPECT_EQ(result.status, exitUsageOrInput) << ::testing::PrintToString(c.arguments);
    EXPECT_THAT(result.err, HasSubstr("corvane: " + c.message)) << ::testing::PrintToString(c.arguments);
    EXPECT_THAT(result.err, HasSubstr("usage: corvane check"));
    EXPECT_EQ(result.out, "");
  }
  const auto help = run({"check", "--help"});
  EXPECT_EQ(help.status, exitReady);
  EXPECT_THAT(help.out, HasSubstr("usage: corvane check [DIR]"));
  EXPECT_THAT(run({"--version"}).out, ::testing::MatchesRegex("corvane [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(CliTest, BadInputIsOneLineNamingTheFileAndWritesNothing) {
  TemporaryFolder temporary;
  const auto sample = testing::copySample(temporary.path() / "metadata");
  testing::writeFile(sample / "ja" / "keywords.txt", "ok\xff");
  const auto before = snapshot(temporary.path());
  const auto result = run({"check", sample.string(), "--fix"});
  EXPECT_EQ(result.status, exitUsageOrInput);
  EXPECT_EQ(result.err,
            "corvane: " + (sample / "ja" / "keywords.txt").string() + ": not valid UTF-8 at byte offset 2\n");
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(snapshot(temporary.path()), before) << "the too-long German name must not have been trimmed";
}

TEST(CliTest, AReportThatCannotBeWrittenIsStatus2AndSaysWhetherFilesWereFixed) {
  TemporaryFolder temporary;
  const auto sample = testing::copySample(temporary.path() / "metadata");
  const std::string message = "corvane: cannot write the report to standard output";
  struct Case {
    std::vector<std::string> arguments;
    std::string err;
  };
  for (const auto& c :
       std::vector<Case>{{{"check", sample.string()}, message + "\n"},
                         {{"check", sample.string(), "--format", "json", "--dry-run"}, message + "\n"},
                         {{"rules"}, message + "\n"},
                         {{"--version"}, message + "\n"},
                         {{"check", sample.string(), "--fix"}, message + "; the fixes were written to the files\n"}}) {
    std::ostream broken(nullptr);  // fails every write, as a closed pipe or a full disk does
    std::ostringstream err;
    EXPECT_EQ(runCli(c.arguments, broken, err, {}), exitUsageOrInput) << ::testing::PrintToString(c.arguments);
    EXPECT_EQ(err.str(), c.err) << ::testing::PrintToString(c.arguments);
  }
  EXPECT_EQ(testing::readFile(sample / "de-DE" / "name.txt"), "Corvane Notizen – Notizen, die\n");
}

TEST(CliTest, DryRunPrintsTheFixesAndWritesNothing) {
  TemporaryFolder temporary;
  const auto sample = testing::copySample(temporary.path() / "metadata");
  const auto before = snapshot(temporary.path());
  const auto result = run({"check", sample.string(), "--dry-run"});
  EXPECT_EQ(result.status, exitBlocked);
  EXPECT_THAT(result.out, HasSubstr("would fix: de-DE/name.txt: Trim to 30 characters, 49 -> 30 characters\n"
                                    "  - Corvane Notizen – Notizen, die sich selbst prüfen\n"
                                    "  + Corvane Notizen – Notizen, die\n"));
  EXPECT_THAT(result.out, HasSubstr("Decision: blocked"));
  EXPECT_EQ(snapshot(temporary.path()), before);
}

TEST(CliTest, FixTrimsAtomicallyAndTheNextCheckPassesThatRule) {
  TemporaryFolder temporary;
  const auto sample = testing::copySample(temporary.path() / "metadata");
  auto expected = snapshot(temporary.path());
  expected["metadata/de-DE/name.txt"] = "Corvane Notizen – Notizen, die\n";
  fs::permissions(sample / "de-DE" / "name.txt", fs::perms::owner_read | fs::perms::owner_write);

  const auto result = run({"check", sample.string(), "--fix", "--format", "json"});
  EXPECT_THAT(result.out, HasSubstr("\"written\": true"));
  // Only the trimmed file changed, no temporary file was left, the permissions survived.
  EXPECT_EQ(snapshot(temporary.path()), expected);
  EXPECT_EQ(fs::status(sample / "de-DE" / "name.txt").permissions(), fs::perms::owner_read | fs::perms::owner_write);
  // The http privacy address still risks rejection, but nothing blocks any more.
  EXPECT_EQ(result.status, exitReady);

  const auto again = run({"check", sample.string(), "--fix"});
  EXPECT_THAT(again.out, HasSubstr("Nothing to fix automatically."));
  EXPECT_EQ(snapshot(temporary.path()), expected);
}

TEST(CliTest, FixRemovesTheFilesAnInterruptedRunLeftAndNothingElse) {
  TemporaryFolder temporary;
  const auto root = temporary.path();
  testing::writeFile(root / "en-US" / "name.txt", "Corvane");
  testing::writeFile(root / "texts" / "about.txt", "Notes that check themselves.");
  fs::create_symlink("../texts/about.txt", root / "en-US" / "description.txt");
  const std::vector<fs::path> leftovers = {
      root / "en-US" / ".name.txt.corvane-Ab12Cd", root / "en-US" / ".keywords.txt.corvane-backup-XyZ789",
      root / ".copyright.txt.corvane-000000", root / "texts" / ".about.txt.corvane-q1W2e3"};  // beside a link's target
  const std::vector<fs::path> others = {
      root / "en-US" / ".name.txt.corvane-Ab12C",      root / "en-US" / ".name.txt.corvane-Ab12Cd.bak",
      root / "en-US" / "name.txt.corvane-Ab12Cd",      root / "en-US" / ".corvane-Ab12Cd",
      root / "en-US" / ".name.txt.corvane-Ab_2Cd",     root / "en-US" / ".name.txt.corvane-backup-Ab12Cd7",
      root / "en-US" / ".name.txt.corvane-old-Ab12Cd", root / "notes" / ".name.txt.corvane-Ab12Cd"};
  for (const auto& file : leftovers) testing::writeFile(file, "half");
  for (const auto& file : others) testing::writeFile(file, "mine");
  fs::create_directories(root / "en-US" / ".subtitle.txt.corvane-Folder");

  const auto dryRun = run({"check", root.string(), "--dry-run"});
  EXPECT_NE(dryRun.status, exitUsageOrInput) << dryRun.err;
  for (const auto& file : leftovers) EXPECT_TRUE(fs::exists(file)) << file << ": a dry run writes nothing";

  const auto fixed = run({"check", root.string(), "--fix"});
  EXPECT_NE(fixed.status, exitUsageOrInput) << fixed.err;
  for (const auto& file : leftovers) {
    EXPECT_FALSE(fs::exists(file)) << file;
    EXPECT_THAT(fixed.out,
                HasSubstr("removed: " + fs::relative(file, root).string() + " (left by an interrupted run)"));
  }
  for (const auto& file : others) EXPECT_EQ(testing::readFile(file), "mine") << file;
  EXPECT_TRUE(fs::is_directory(root / "en-US" / ".subtitle.txt.corvane-Folder"));

  testing::writeFile(leftovers.front(), "half");
  const auto json = run({"check", root.string(), "--fix", "--format", "json"});
  EXPECT_THAT(json.out, HasSubstr("\"removedFiles\": [\n    \"en-US/.name.txt.corvane-Ab12Cd\"\n  ]"));
  EXPECT_FALSE(fs::exists(leftovers.front()));
}

TEST(CliTest, FixWritesThroughALinkInsideTheFolder) {
  TemporaryFolder temporary;
  const auto root = temporary.path();
  testing::writeFile(root / "en-US" / "name.txt", std::string(35, 'n'));
  fs::create_directories(root / "en-GB");
  fs::create_symlink("../en-US/name.txt", root / "en-GB" / "name.txt");
  const auto result = run({"check", root.string(), "--fix"});
  EXPECT_THAT(result.out, HasSubstr("fix: en-GB/name.txt"));
  EXPECT_TRUE(fs::is_symlink(root / "en-GB" / "name.txt"));
  EXPECT_EQ(testing::readFile(root / "en-US" / "name.txt"), std::string(30, 'n'));
}

TEST(CliTest, FixKeepsByteOrderMarkAndLineBreaksAsWritten) {
  TemporaryFolder temporary;
  const auto root = temporary.path();
  // The mark and the line breaks are not counted: 31 letters need exactly one trimmed.
  testing::writeFile(root / "en-US" / "name.txt", "\xEF\xBB\xBF" + std::string(31, 'n') + "\r\n\r\n");
  const auto result = run({"check", root.string(), "--fix"});
  EXPECT_THAT(result.out, HasSubstr("fix: en-US/name.txt: Trim to 30 characters, 31 -> 30 characters"));
  EXPECT_EQ(testing::readFile(root / "en-US" / "name.txt"), "\xEF\xBB\xBF" + std::string(30, 'n') + "\r\n\r\n");
}

TEST(CliTest, FieldsSharingAFileThatNeedDifferentFixesChangeNothing) {
  using Link = void (*)(const fs::path& target, const fs::path& link);
  const std::vector<std::pair<std::string, Link>> links = {
      {"symbolic links",
       [](const fs::path& target, const fs::path& link) { fs::create_symlink(target.filename(), link); }},
      {"hard links", [](const fs::path& target, const fs::path& link) { fs::create_hard_link(target, link); }}};
  for (const auto& [kind, makeLink] : links) {
    SCOPED_TRACE(kind);
    TemporaryFolder temporary;
    const auto root = temporary.path();
    testing::writeFile(root / "en-US" / "shared.txt", std::string(200, 'x') + "\n");
    makeLink(root / "en-US" / "shared.txt", root / "en-US" / "name.txt");
    makeLink(root / "en-US" / "shared.txt", root / "en-US" / "promotional_text.txt");
    const auto before = snapshot(root);
    for (const auto* mode : {"--fix", "--dry-run"}) {
      const auto result = run({"check", root.string(), mode});
      EXPECT_EQ(result.status, exitUsageOrInput) << mode;
      EXPECT_THAT(result.err, HasSubstr("are the same file")) << mode;
      EXPECT_EQ(result.out, "") << mode << ": no fix may be listed as made";
      EXPECT_EQ(snapshot(root), before) << mode;
      EXPECT_EQ(fs::hard_link_count(root / "en-US" / "shared.txt"), kind == "hard links" ? 3u : 1u) << mode;
    }
  }
}

TEST(CliTest, HardLinkedFieldsThatNeedTheSameFixAreAllWritten) {
  TemporaryFolder temporary;
  const auto root = temporary.path();
  testing::writeFile(root / "en-US" / "name.txt", std::string(35, 'n'));
  fs::create_directories(root / "en-GB");
  fs::create_hard_link(root / "en-US" / "name.txt", root / "en-GB" / "name.txt");
  const auto result = run({"check", root.string(), "--fix"});
  EXPECT_EQ(result.err, "");
  EXPECT_THAT(result.out, HasSubstr("fix: en-GB/name.txt: Trim to 30 characters"));
  EXPECT_THAT(result.out, HasSubstr("fix: en-US/name.txt: Trim to 30 characters"));
  EXPECT_EQ(testing::readFile(root / "en-US" / "name.txt"), std::string(30, 'n'));
  EXPECT_EQ(testing::readFile(root / "en-GB" / "name.txt"), std::string(30, 'n'));
}

TEST(CliTest, ReportsStayCleanWhateverTheFilesAndFolderNamesHold) {
  TemporaryFolder temporary;
  const auto root = temporary.path() / "caf\xe9";  // a folder name that is not UTF-8
  testing::writeFile(root / "en-US" / "name.txt", "Escape \x1b[2J" + std::string(30, 'e'));
  const auto json = run({"check", root.string(), "--format", "json"});
  EXPECT_EQ(firstInvalidUtf8Offset(json.out), std::nullopt) << json.out;
  EXPECT_THAT(json.out, HasSubstr("caf\uFFFD"));
  const auto text = run({"check", root.string(), "--dry-run"});
  EXPECT_THAT(text.out, Not(HasSubstr("\x1b"))) << "file contents must not reach the terminal raw";
  EXPECT_THAT(text.out, HasSubstr("- Escape \\x1B[2J"));
}

TEST(CliTest, ADefaultTextCountsOnceThoughEveryLocaleListsIt) {
  TemporaryFolder temporary;
  const auto root = temporary.path();
  testing::writeFile(root / "default" / "description.txt", "Notes that check themselves. Coming soon: sync.");
  for (const auto* locale : {"de-DE", "en-US", "fr-FR"}) testing::writeFile(root / locale / "name.txt", "Corvane");
  const auto result = run({"check", root.string(), "--format", "json"});
  const auto lastLocale = result.out.rfind("\"locale\": \"fr-FR\"");
  ASSERT_NE(lastLocale, std::string::npos);
  EXPECT_NE(result.out.find("\"file\": \"default/description.txt\"", lastLocale), std::string::npos);
  EXPECT_NE(result.out.find("\"rule\": \"content.future-feature\"", lastLocale), std::string::npos);
  EXPECT_THAT(result.out, HasSubstr("\"rejectionRisks\": 1,\n"));
}

TEST(CliTest, ConfigurationSetsLevelsAndBadConfigurationIsAUsageError) {
  TemporaryFolder temporary;
  const auto root = temporary.path();
  testing::writeFile(root / "en-US" / "name.txt", std::string(31, 'n'));
  EXPECT_EQ(run({"check", root.string()}).status, exitBlocked);
  testing::writeFile(root / ".corvane.toml", "[rules]\n\"name.length\" = \"optimization\"\n"
                                              "\"name.required\" = \"off\"\n");
  const auto relaxed = run({"check", root.string()});
  EXPECT_THAT(relaxed.out, HasSubstr("Optimizations (1)\n    • en-US/name.txt:1:31: App name: 1 character too long"));
  testing::writeFile(root / "other.toml", "[rules]\nname.lenght = \"off\"\n");
  const auto bad = run({"check", root.string(), "--config", (root / "other.toml").string()});
  EXPECT_EQ(bad.status, exitUsageOrInput);
  EXPECT_THAT(bad.err, HasSubstr("other.toml:2: "));
  EXPECT_THAT(bad.err, HasSubstr("'name.length'"));
}

TEST(CliTest, RulesListsEveryRuleInTextAndJson) {
  const auto text = run({"rules"});
  EXPECT_EQ(text.status, exitReady);
  for (const auto* id : {"name.length (blocker)", "keywords.duplicate (optimization)", "content.other-platform",
                         "locale.unknown (blocker)", "copyright.year"}) {
    EXPECT_THAT(text.out, HasSubstr(id));
  }
  EXPECT_THAT(run({"rules", "--format", "json"}).out, HasSubstr("\"id\": \"keywords.spacing\""));
}

TEST(CliTest, ColoursOnlyOnATerminalWithoutNoColor) {
  TemporaryFolder temporary;
  const auto sample = testing::copySample(temporary.path() / "metadata");
  EXPECT_THAT(run({"check", sample.string()}, {.isTerminal = true, .noColor = false}).out, HasSubstr("\x1b["));
  EXPECT_THAT(run({"check", sample.string()}, {.isTerminal = true, .noColor = true}).out, Not(HasSubstr("\x1b[")));
  EXPECT_THAT(run({"check", sample.string()}, {.isTerminal = false, .noColor = false}).out, Not(HasSubstr("\x1b[")));
  EXPECT_THAT(run({"check", sample.string(), "--format", "json"}, {.isTerminal = true, .noColor = false}).out,
              Not(HasSubstr("\x1b[")));
}

}  // namespace
}  // namespace corvane::cli
