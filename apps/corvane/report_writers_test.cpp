#include "report_writers.hpp"

#include "checker.hpp"
#include "cli_test_support.hpp"

#include <boost/json.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>
#include <string>

namespace corvane::cli {
namespace {

namespace json = boost::json;
using ::testing::HasSubstr;
using ::testing::Not;

std::set<std::string> keysOf(const json::object& object) {
  std::set<std::string> keys;
  for (const auto& member : object) keys.insert(std::string(member.key()));
  return keys;
}

CheckReport sampleReport() {
  CheckOptions options;
  options.directory = testing::sourceSample();
  options.currentYear = 2026;
  Checker checker(options);
  return checker.report();
}

TEST(JsonReportTest, FollowsTheDocumentedSchema) {
  std::ostringstream out;
  writeJsonReport(sampleReport(), out);
  const auto document = json::parse(out.str()).as_object();

  EXPECT_EQ(keysOf(document), (std::set<std::string>{"schemaVersion", "tool", "directory", "locales", "shared", "fixes",
                                                     "removedFiles", "completion", "decision"}));
  EXPECT_TRUE(document.at("removedFiles").as_array().empty());
  EXPECT_EQ(document.at("schemaVersion").as_int64(), 1);
  EXPECT_EQ(document.at("tool").at("name").as_string(), "corvane");
  EXPECT_EQ(document.at("directory").as_string(), testing::sourceSample().string());

  const auto& locales = document.at("locales").as_array();
  ASSERT_EQ(locales.size(), 3u);
  EXPECT_EQ(locales[0].at("locale").as_string(), "de-DE");
  const std::set<std::string> localeKeys = {"locale",        "blockers",      "rejectionRisks",
                                            "optimizations", "opportunities", "checklist"};
  const std::set<std::string> findingKeys = {"rule",           "file",          "line",        "column",
                                             "property",       "severity",      "message",     "businessReason",
                                             "primaryAction",  "suggestedFix"};
  std::int64_t blockers = 0;
  for (const auto& locale : locales) {
    EXPECT_EQ(keysOf(locale.as_object()), localeKeys);
    blockers += static_cast<std::int64_t>(locale.at("blockers").as_array().size());
    for (const char* group : {"blockers", "rejectionRisks", "optimizations", "opportunities"}) {
      for (const auto& finding : locale.at(group).as_array()) EXPECT_EQ(keysOf(finding.as_object()), findingKeys);
    }
    for (const auto& item : locale.at("checklist").as_array()) {
      EXPECT_EQ(keysOf(item.as_object()), (std::set<std::string>{"id", "title", "status", "priority", "detail"}));
    }
  }
  const auto& nameTooLong = locales[0].at("blockers").at(0);
  EXPECT_EQ(nameTooLong.at("file").as_string(), "de-DE/name.txt");
  EXPECT_EQ(nameTooLong.at("rule").as_string(), "name.length");
  EXPECT_EQ(nameTooLong.at("property").as_string(), "name");
  EXPECT_EQ(nameTooLong.at("line").as_int64(), 1);
  EXPECT_EQ(nameTooLong.at("column").as_int64(), 31);
  EXPECT_EQ(nameTooLong.at("severity").as_string(), "critical");
  EXPECT_EQ(nameTooLong.at("primaryAction").at("type").as_string(), "autoFix");
  EXPECT_TRUE(nameTooLong.at("businessReason").is_string());

  const auto& decision = document.at("decision").as_object();
  EXPECT_EQ(keysOf(decision),
            (std::set<std::string>{"canSubmit", "blockers", "rejectionRisks", "optimizations", "opportunities"}));
  EXPECT_FALSE(decision.at("canSubmit").as_bool());
  EXPECT_EQ(decision.at("blockers").as_int64(), blockers);
  EXPECT_EQ(
      keysOf(document.at("completion").as_object()),
      (std::set<std::string>{"completedItems", "totalItems", "blockedItems", "status", "canComplete", "nextAction"}));
  EXPECT_EQ(document.at("completion").at("nextAction").as_string(), "de-DE/name.txt");
  EXPECT_TRUE(document.at("fixes").as_array().empty());
}

TEST(JsonReportTest, AFindingAboutTheFolderItselfHasNoProperty) {
  corvane::testing::TemporaryFolder temporary;
  testing::writeFile(temporary.path() / "en-US" / "name.txt", "Larkspur Notes");
  testing::writeFile(temporary.path() / "en-XY" / "name.txt", "Larkspur Notes");
  CheckOptions options;
  options.directory = temporary.path();
  std::ostringstream out;
  writeJsonReport(Checker(options).report(), out);
  const auto document = json::parse(out.str());
  const auto& blockers = document.at("shared").at("blockers").as_array();
  const auto unknown = std::ranges::find_if(
      blockers, [](const json::value& finding) { return finding.at("rule").as_string() == "locale.unknown"; });
  ASSERT_NE(unknown, blockers.end()) << out.str();
  EXPECT_EQ(unknown->at("file").as_string(), "en-XY");
  EXPECT_TRUE(unknown->at("property").is_null());
}

TEST(TextReportTest, GroupsFindingsAndColoursOnlyWhenAsked) {
  const auto report = sampleReport();
  std::ostringstream plain;
  writeTextReport(report, plain, false);
  const std::string text = plain.str();
  EXPECT_THAT(text, HasSubstr("de-DE\n  Blockers (1)\n    • de-DE/name.txt:1:31: App name: 19 characters too long "
                              "(49 of 30) [name.length]"));
  EXPECT_THAT(text, HasSubstr("do:  Trim to 30 characters (Cut the text after its last character that fits)"));
  EXPECT_THAT(text, HasSubstr("Rejection risks (1)\n    • de-DE/privacy_url.txt: Privacy policy URL uses http://"));
  EXPECT_THAT(text, HasSubstr("en-US/description.txt:5:20: Description mentions another platform: 'Android'"));
  EXPECT_THAT(text, HasSubstr("Optimizations (1)\n    • ja/keywords.txt:1:1: Keyword"));
  EXPECT_THAT(text, HasSubstr("Opportunities (1)\n    • ja/marketing_url.txt: No marketing URL"));
  EXPECT_THAT(text, HasSubstr("Shared by every locale\n  No issues"));
  EXPECT_THAT(text, Not(HasSubstr("hasBlockingIssues"))) << "no internal names in the report";
  EXPECT_THAT(text, HasSubstr("Decision: blocked"));
  EXPECT_THAT(text, Not(HasSubstr("\x1b[")));

  std::ostringstream coloured;
  writeTextReport(report, coloured, true);
  EXPECT_THAT(coloured.str(), HasSubstr("\x1b[31mBlockers (1)\x1b[0m"));
}

}  // namespace
}  // namespace corvane::cli
