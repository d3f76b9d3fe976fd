// The CI formats read back with real parsers: SARIF with Boost.JSON, JUnit with tinyxml2,
// GitHub workflow commands by their documented syntax.
#include "cli.hpp"

#include "cli_test_support.hpp"

#include "corvane/resources/corvane_resources.hpp"
#include "corvane/store/rule_catalog.hpp"
#include "corvane/store/store_facts.hpp"

#include <boost/json.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tinyxml2.h>

#include <algorithm>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace corvane::cli {
namespace {

namespace fs = std::filesystem;
namespace json = boost::json;
using ::testing::HasSubstr;
using testing::run;
using testing::TemporaryFolder;

// A copy of the sample with an unknown locale folder beside it: findings at every level,
// with and without a position, and one about the folder itself.
fs::path sampleWithUnknownLocale(const TemporaryFolder& temporary) {
  const auto sample = testing::copySample(temporary.path() / "meta data");
  fs::create_directories(sample / "en-XY");
  return sample;
}

TEST(SarifTest, ListsEveryRuleAndEveryFindingWithItsPlace) {
  TemporaryFolder temporary;
  const auto sample = sampleWithUnknownLocale(temporary);
  const auto result = run({"check", sample.string(), "--format", "sarif"});
  EXPECT_EQ(result.status, exitBlocked);
  const auto document = json::parse(result.out);
  EXPECT_EQ(document.at("version").as_string(), "2.1.0");
  const auto& sarifRun = document.at("runs").at(0);

  const auto catalog = store::ruleCatalog(store::StoreFacts::appStore());
  const auto& rules = sarifRun.at("tool").at("driver").at("rules").as_array();
  ASSERT_EQ(rules.size(), catalog.size());
  for (std::size_t i = 0; i < catalog.size(); ++i) {
    EXPECT_EQ(rules[i].at("id").as_string(), catalog[i].id);
    EXPECT_EQ(rules[i].at("shortDescription").at("text").as_string(), catalog[i].summary);
    EXPECT_THAT(std::string(rules[i].at("fullDescription").at("text").as_string()), HasSubstr(catalog[i].reason));
    EXPECT_EQ(rules[i].at("help").at("text").as_string(), catalog[i].reason);
  }
  const auto levelOf = [&](std::string_view id) {
    const auto rule = std::ranges::find_if(rules, [&](const json::value& r) { return r.at("id").as_string() == id; });
    return std::string(rule->at("defaultConfiguration").at("level").as_string());
  };
  EXPECT_EQ(levelOf("name.length"), "error");
  EXPECT_EQ(levelOf("keywords.duplicate"), "note");
  EXPECT_EQ(levelOf("url.insecure"), "warning");

  // Each finding by rule id: its level, file, and position where it has one.
  struct Expected {
    std::string rule;
    std::string level;
    std::string uri;
    std::int64_t line;  // 0: no region
    std::int64_t column;
  };
  const std::vector<Expected> expected = {
      {"name.length", "error", "de-DE/name.txt", 1, 31},
      {"url.insecure", "warning", "de-DE/privacy_url.txt", 0, 0},
      {"marketing-url.missing", "note", "ja/marketing_url.txt", 0, 0},
      {"content.other-platform", "warning", "en-US/description.txt", 5, 20},
      {"locale.unknown", "error", "en-XY", 0, 0},
  };
  const auto& results = sarifRun.at("results").as_array();
  for (const auto& want : expected) {
    SCOPED_TRACE(want.rule);
    const auto found = std::ranges::find_if(results, [&](const json::value& r) {
      return r.at("ruleId").as_string() == want.rule &&
             r.at("locations").at(0).at("physicalLocation").at("artifactLocation").at("uri").as_string() == want.uri;
    });
    ASSERT_NE(found, results.end()) << result.out;
    EXPECT_EQ(found->at("level").as_string(), want.level);
    EXPECT_FALSE(found->at("message").at("text").as_string().empty());
    const auto& rule = rules.at(static_cast<std::size_t>(found->at("ruleIndex").as_int64()));
    EXPECT_EQ(rule.at("id").as_string(), want.rule);
    const auto& physical = found->at("locations").at(0).at("physicalLocation").as_object();
    EXPECT_EQ(physical.at("artifactLocation").at("uriBaseId").as_string(), "METADATA");
    if (want.line == 0) {
      EXPECT_FALSE(physical.contains("region"));
    } else {
      EXPECT_EQ(physical.at("region").at("startLine").as_int64(), want.line);
      EXPECT_EQ(physical.at("region").at("startColumn").as_int64(), want.column);
    }
  }
  // The base is the folder, with the space in its name percent-encoded.
  const std::string base(sarifRun.at("originalUriBaseIds").at("METADATA").at("uri").as_string());
  EXPECT_TRUE(base.starts_with("file:///")) << base;
  EXPECT_TRUE(base.ends_with("/meta%20data/")) << base;
}

// Undoes the workflow-command escaping, to compare what GitHub will show.
std::string unescape(std::string text) {
  for (const auto& [from, to] : std::vector<std::pair<std::string, std::string>>{
           {"%0D", "\r"}, {"%0A", "\n"}, {"%3A", ":"}, {"%2C", ","}, {"%25", "%"}}) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
      text.replace(at, from.size(), to);
    }
  }
  return text;
}

TEST(GithubTest, OneEscapedWorkflowCommandPerFindingThenTheSummary) {
  TemporaryFolder temporary;
  // ':' and ',' in a property, '%' in a message: each must survive the round trip.
  const auto root = temporary.path() / "a,b:100%";
  testing::writeFile(root / "en-US" / "name.txt", std::string(31, 'n'));
  testing::writeFile(root / "en-US" / "privacy_url.txt", "http://example.com/privacy");
  const auto result = run({"check", root.string(), "--format", "github"});
  EXPECT_EQ(result.status, exitBlocked);

  const std::regex command(R"(^::(error|warning|notice) ([^:]*)::(.*)$)");
  std::vector<std::map<std::string, std::string>> annotations;
  std::istringstream lines(result.out);
  std::vector<std::string> other;
  for (std::string line; std::getline(lines, line);) {
    std::smatch match;
    if (!std::regex_match(line, match, command)) {
      other.push_back(line);
      continue;
    }
    std::map<std::string, std::string> annotation{{"command", match[1]}, {"message", unescape(match[3])}};
    std::istringstream properties(match[2].str());
    for (std::string property; std::getline(properties, property, ',');) {
      const auto equals = property.find('=');
      ASSERT_NE(equals, std::string::npos) << property;
      annotation[property.substr(0, equals)] = unescape(property.substr(equals + 1));
    }
    annotations.push_back(annotation);
  }
  ASSERT_EQ(other.size(), 1u) << result.out;
  EXPECT_THAT(other.front(), ::testing::StartsWith("Decision: blocked - "));

  const auto name = std::ranges::find_if(annotations, [](auto& a) { return a["title"] == "name.length (blocker)"; });
  ASSERT_NE(name, annotations.end()) << result.out;
  EXPECT_EQ((*name)["command"], "error");
  EXPECT_EQ((*name)["file"], (root / "en-US" / "name.txt").generic_string());
  EXPECT_EQ((*name)["line"], "1");
  EXPECT_EQ((*name)["col"], "31");
  EXPECT_THAT((*name)["message"], HasSubstr("1 character too long (31 of 30)\nThe store refuses")) << "the reason follows on its own line";

  const auto http =
      std::ranges::find_if(annotations, [](auto& a) { return a["title"] == "url.insecure (rejection-risk)"; });
  ASSERT_NE(http, annotations.end()) << result.out;
  EXPECT_EQ((*http)["command"], "warning");
  EXPECT_EQ((*http).count("line"), 0u) << "a finding about the whole file has no position";

  const auto quiet = run({"check", root.string(), "--format", "github", "--quiet"});
  EXPECT_EQ(quiet.out.find("Decision"), std::string::npos);
  EXPECT_EQ(std::ranges::count(quiet.out, '\n'), static_cast<std::ptrdiff_t>(annotations.size()));
}

struct Suite {
  std::map<std::string, std::vector<std::string>> failures;  // test case -> failure types
  std::map<std::string, std::string> files;                  // test case -> file
  std::map<std::string, std::string> systemOut;              // test case -> system-out
  int declaredFailures = 0;
};

std::map<std::string, Suite> parseJunit(const std::string& xml) {
  tinyxml2::XMLDocument document;
  EXPECT_EQ(document.Parse(xml.c_str(), xml.size()), tinyxml2::XML_SUCCESS) << document.ErrorStr() << "\n" << xml;
  std::map<std::string, Suite> suites;
  const auto* root = document.FirstChildElement("testsuites");
  if (root == nullptr) return suites;
  for (const auto* suite = root->FirstChildElement("testsuite"); suite; suite = suite->NextSiblingElement("testsuite")) {
    Suite& parsed = suites[suite->Attribute("name")];
    parsed.declaredFailures = suite->IntAttribute("failures");
    int cases = 0;
    for (const auto* testCase = suite->FirstChildElement("testcase"); testCase;
         testCase = testCase->NextSiblingElement("testcase")) {
      ++cases;
      const std::string name = testCase->Attribute("name");
      parsed.files[name] = testCase->Attribute("file");
      auto& failures = parsed.failures[name];
      for (const auto* failure = testCase->FirstChildElement("failure"); failure;
           failure = failure->NextSiblingElement("failure")) {
        failures.push_back(failure->Attribute("type"));
      }
      if (const auto* out = testCase->FirstChildElement("system-out")) parsed.systemOut[name] = out->GetText();
    }
    EXPECT_EQ(suite->IntAttribute("tests"), cases);
  }
  return suites;
}

TEST(JunitTest, OneSuitePerLocaleOneCasePerFieldFailuresFromTheFailOnLevel) {
  TemporaryFolder temporary;
  const auto sample = sampleWithUnknownLocale(temporary);
  const auto result = run({"check", sample.string(), "--format", "junit"});
  EXPECT_EQ(result.status, exitBlocked);
  auto suites = parseJunit(result.out);
  ASSERT_EQ(suites.size(), 4u) << result.out;
  for (const auto* locale : {"de-DE", "en-US", "ja"}) {
    EXPECT_EQ(suites[locale].files.size(), 10u) << locale;
  }
  EXPECT_EQ(suites["de-DE"].failures["name"], std::vector<std::string>{"name.length"});
  EXPECT_EQ(suites["de-DE"].files["name"], "de-DE/name.txt");
  EXPECT_TRUE(suites["de-DE"].failures["privacy-url"].empty()) << "a rejection risk is below the default level";
  EXPECT_THAT(suites["de-DE"].systemOut["privacy-url"], HasSubstr("[url.insecure, rejection-risk]"));
  EXPECT_EQ(suites["de-DE"].declaredFailures, 1);
  EXPECT_EQ(suites["shared"].failures["en-XY"], std::vector<std::string>{"locale.unknown"});

  const auto strict = parseJunit(run({"check", sample.string(), "--format", "junit", "--fail-on", "opportunity"}).out);
  EXPECT_EQ(strict.at("de-DE").failures.at("privacy-url"), std::vector<std::string>{"url.insecure"});
  EXPECT_EQ(strict.at("ja").failures.at("marketing-url"), std::vector<std::string>{"marketing-url.missing"});
  EXPECT_EQ(strict.at("en-US").failures.at("description"), std::vector<std::string>{"content.other-platform"});
}

TEST(StoreFormatsTest, APlayFolderIsReportedWithPlaysFieldsAndRules) {
  const auto sample = CorvaneResources::samplePlayMetadataDirectory().string();
  auto suites = parseJunit(run({"check", sample, "--format", "junit", "--fail-on", "opportunity"}).out);
  ASSERT_TRUE(suites.contains("en-US"));
  EXPECT_THAT(suites["en-US"].failures["title"], ::testing::Contains("title.emoji"));
  EXPECT_EQ(suites["en-US"].files["full-description"], "en-US/full_description.txt");
  EXPECT_FALSE(suites["en-US"].files.contains("keywords")) << "Play has no keywords field";

  const auto sarif = json::parse(run({"check", sample, "--format", "sarif"}).out);
  std::set<std::string> rules;
  for (const auto& rule : sarif.at("runs").at(0).at("tool").at("driver").at("rules").as_array()) {
    rules.insert(std::string(rule.at("id").as_string()));
  }
  EXPECT_TRUE(rules.contains("title.emoji"));
  EXPECT_FALSE(rules.contains("keywords.duplicate")) << "only the chosen store's rules are listed";

  const auto text = run({"check", sample}).out;
  EXPECT_THAT(text, HasSubstr("ja-JP/changelogs/default.txt: No release notes"));
  EXPECT_THAT(text, ::testing::Not(HasSubstr("Shared by every locale"))) << "Play's layout has no shared files";
}

TEST(FailOnTest, TheLevelDecidesTheExitStatus) {
  TemporaryFolder temporary;
  const auto sample = testing::copySample(temporary.path() / "metadata");
  testing::writeFile(sample / "de-DE" / "name.txt", "Corvane Notizen\n");  // no blocker left
  // The same folder with its rejection risks configured down to opportunities.
  const auto relaxed = temporary.path() / "relaxed";
  fs::copy(sample, relaxed, fs::copy_options::recursive);
  testing::writeFile(relaxed / ".corvane.toml",
                     "[rules]\n\"url.insecure\" = \"opportunity\"\n\"content.other-platform\" = \"opportunity\"\n");
  struct Case {
    fs::path folder;
    std::string failOn;
    int status;
  };
  for (const auto& c : std::vector<Case>{{sample, "blocker", exitReady},
                                         {sample, "rejection-risk", exitBlocked},
                                         {sample, "opportunity", exitBlocked},
                                         {relaxed, "rejection-risk", exitReady},
                                         {relaxed, "optimization", exitBlocked}}) {
    for (const auto* format : {"text", "json", "sarif", "github", "junit", "html"}) {
      const auto result = run({"check", c.folder.string(), "--fail-on", c.failOn, "--format", format});
      EXPECT_EQ(result.status, c.status) << c.folder << " --fail-on " << c.failOn << " --format " << format;
    }
  }
  EXPECT_THAT(run({"check", sample.string(), "--fail-on", "rejection-risk"}).out,
              HasSubstr("The run fails: findings at rejection-risk level or more urgent (--fail-on)"));
}

TEST(QuietTest, PrintsOneLinePerFindingAndNothingElse) {
  TemporaryFolder temporary;
  const auto sample = testing::copySample(temporary.path() / "metadata");
  const auto result = run({"check", sample.string(), "--quiet", "--dry-run"});
  EXPECT_EQ(result.status, exitBlocked);
  const std::regex finding(R"(^[^ :]+(:\d+:\d+)?: (blocker|rejection-risk|optimization|opportunity): .+ \[[a-z.-]+\]$)");
  std::istringstream lines(result.out);
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    EXPECT_TRUE(std::regex_match(line, finding)) << line;
  }
  EXPECT_EQ(count, 8) << result.out;
  EXPECT_THAT(result.out, HasSubstr("de-DE/name.txt:1:31: blocker: App name: 19 characters too long (49 of 30) "
                                    "[name.length]\n"));
}

TEST(OutputTest, EveryFormatGoesToTheFileWholeAndNothingToStandardOutput) {
  TemporaryFolder temporary;
  const auto sample = testing::copySample(temporary.path() / "metadata");
  const auto target = temporary.path() / "reports" / "report";
  fs::create_directories(target.parent_path());
  for (const auto* format : {"text", "json", "sarif", "github", "junit", "html"}) {
    SCOPED_TRACE(format);
    testing::writeFile(target, "an older report");
    const auto toStdout = run({"check", sample.string(), "--format", format});
    const auto toFile = run({"check", sample.string(), "--format", format, "--output", target.string()});
    EXPECT_EQ(toFile.status, toStdout.status);
    EXPECT_EQ(toFile.out, "");
    EXPECT_EQ(testing::readFile(target), toStdout.out);
    // Nothing but the report itself: no temporary file left beside it.
    EXPECT_EQ(std::distance(fs::directory_iterator(target.parent_path()), fs::directory_iterator()), 1);
  }
  const auto missing = run({"check", sample.string(), "--output", (temporary.path() / "nowhere" / "r").string()});
  EXPECT_EQ(missing.status, exitUsageOrInput);
  EXPECT_THAT(missing.err, HasSubstr("corvane: cannot write the report: "));
  EXPECT_THAT(missing.err, HasSubstr("nowhere"));
  EXPECT_EQ(missing.out, "");
}

}  // namespace
}  // namespace corvane::cli
