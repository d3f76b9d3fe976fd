// The HTML report read back with an XML parser (the page is well-formed XML as well as
// HTML): its cards, bars, findings and escaping, and that it loads nothing.
#include "cli.hpp"

#include "cli_test_support.hpp"

#include "corvane/resources/corvane_resources.hpp"
#include "corvane/text/characters.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tinyxml2.h>

#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace corvane::cli {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using testing::run;
using testing::TemporaryFolder;
using tinyxml2::XMLElement;

bool hasClass(const XMLElement& element, std::string_view name) {
  const char* classes = element.Attribute("class");
  if (classes == nullptr) return false;
  std::istringstream words(classes);
  for (std::string word; words >> word;) {
    if (word == name) return true;
  }
  return false;
}

// Every element below `root` (itself included), in document order.
void visit(const XMLElement& root, const std::function<void(const XMLElement&)>& action) {
  action(root);
  for (const auto* child = root.FirstChildElement(); child; child = child->NextSiblingElement()) visit(*child, action);
}

std::vector<const XMLElement*> withClass(const XMLElement& root, std::string_view name) {
  std::vector<const XMLElement*> found;
  visit(root, [&](const XMLElement& element) {
    if (hasClass(element, name)) found.push_back(&element);
  });
  return found;
}

const XMLElement* firstWithClass(const XMLElement& root, std::string_view name) {
  const auto found = withClass(root, name);
  return found.empty() ? nullptr : found.front();
}

// The text of an element and everything in it, as a browser shows it.
std::string textOf(const tinyxml2::XMLNode& node) {
  std::string result;
  for (const auto* child = node.FirstChild(); child; child = child->NextSibling()) {
    if (child->ToText() != nullptr) {
      result += child->Value();
    } else {
      result += textOf(*child);
    }
  }
  return result;
}

struct Page {
  tinyxml2::XMLDocument document;
  const XMLElement* body = nullptr;
  std::map<std::string, const XMLElement*> cards;  // by data-locale

  // The field block of `field` in the card of `locale`, or null.
  const XMLElement* field(const std::string& locale, std::string_view field) const {
    const auto card = cards.find(locale);
    if (card == cards.end()) return nullptr;
    for (const auto* element : withClass(*card->second, "field")) {
      if (const char* key = element->Attribute("data-field"); key != nullptr && key == field) return element;
    }
    return nullptr;
  }
};

void parse(const std::string& html, Page& page) {
  ASSERT_EQ(page.document.Parse(html.c_str(), html.size()), tinyxml2::XML_SUCCESS)
      << page.document.ErrorStr() << "\n"
      << html;
  const auto* root = page.document.RootElement();
  ASSERT_NE(root, nullptr);
  ASSERT_STREQ(root->Name(), "html");
  page.body = root->FirstChildElement("body");
  ASSERT_NE(page.body, nullptr);
  for (const auto* card : withClass(*page.body, "card")) {
    const char* locale = card->Attribute("data-locale");
    ASSERT_NE(locale, nullptr);
    EXPECT_TRUE(page.cards.emplace(locale, card).second) << "two cards for " << locale;
  }
}

TEST(HtmlReportTest, ShowsEachLocalesFieldsWithTheirLengthsFindingsAndChecklist) {
  TemporaryFolder temporary;
  const auto sample = testing::copySample(temporary.path() / "metadata");
  fs::create_directories(sample / "en-XY");  // a blocker about the folder, in the shared card
  testing::writeFile(sample / "en-US" / "subtitle.txt", "<script>alert(1)</script> &\"'\n");
  const std::string longText(400, 'x');
  testing::writeFile(sample / "en-US" / "description.txt", longText + "\n");

  const auto result = run({"check", sample.string(), "--format", "html"});
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, exitBlocked);
  Page page;
  ASSERT_NO_FATAL_FAILURE(parse(result.out, page));

  // One card per locale, then the shared files'.
  std::vector<std::string> locales;
  for (const auto& [locale, card] : page.cards) locales.push_back(locale);
  EXPECT_THAT(locales, ElementsAre("de-DE", "en-US", "ja", "shared"));

  // The banner: the decision in words and the distinct findings per level.
  const auto* banner = page.body->FirstChildElement("header");
  ASSERT_NE(banner, nullptr);
  EXPECT_TRUE(hasClass(*banner, "blocked"));
  EXPECT_EQ(textOf(*banner->FirstChildElement("h1")), "Blocked by 2 blockers: fix them before submitting");
  std::map<std::string, std::string> counts;
  for (const auto* level = banner->FirstChildElement("ul")->FirstChildElement("li"); level;
       level = level->NextSiblingElement("li")) {
    counts[level->Attribute("data-level")] = textOf(*level);
  }
  EXPECT_EQ(counts, (std::map<std::string, std::string>{{"blocker", "2Blockers"},
                                                         {"rejection-risk", "1Rejection risk"},
                                                         {"optimization", "3Optimizations"},
                                                         {"opportunity", "2Opportunities"}}));

  // The length bars: the count as the store counts it, against the store's limit.
  struct Bar {
    std::string locale;
    std::string field;
    std::string count;
    std::string limit;
    std::string width;
    std::string words;
  };
  for (const auto& bar : std::vector<Bar>{
           {"de-DE", "name", "49", "30", "width: 100%", "49 of 30 characters, 19 too many"},
           {"de-DE", "subtitle", "19", "30", "width: 63%", "19 of 30 characters"},
           {"ja", "name", "11", "30", "width: 36%", "11 of 30 characters"},
           {"en-US", "description", "400", "4000", "width: 10%", "400 of 4000 characters"},
           {"shared", "review-notes", "58", "4000", "width: 1%", "58 of 4000 characters"},
       }) {
    SCOPED_TRACE(bar.locale + " " + bar.field);
    const auto* field = page.field(bar.locale, bar.field);
    ASSERT_NE(field, nullptr);
    EXPECT_STREQ(field->Attribute("data-count"), bar.count.c_str());
    EXPECT_STREQ(field->Attribute("data-limit"), bar.limit.c_str());
    const auto* fill = firstWithClass(*field, "bar")->FirstChildElement("span");
    ASSERT_NE(fill, nullptr);
    EXPECT_STREQ(fill->Attribute("style"), bar.width.c_str());
    EXPECT_EQ(textOf(*firstWithClass(*field, "count")), bar.words);
    EXPECT_EQ(hasClass(*firstWithClass(*field, "length"), "over"), bar.words.ends_with("too many"));
  }

  // A finding with its level, message, reason, guidance, rule and place.
  const auto* name = page.field("de-DE", "name");
  const auto findings = withClass(*name, "finding");
  ASSERT_EQ(findings.size(), 1u);
  const auto& finding = *findings.front();
  EXPECT_TRUE(hasClass(finding, "blocker"));
  EXPECT_EQ(textOf(*firstWithClass(finding, "badge")), "Blocker");
  EXPECT_EQ(textOf(*firstWithClass(finding, "message")), "BlockerApp name: 19 characters too long (49 of 30)");
  EXPECT_THAT(textOf(*firstWithClass(finding, "why")), StartsWith("Why it matters: "));
  EXPECT_THAT(textOf(*firstWithClass(finding, "do")), StartsWith("What to do: Trim to 30 characters"));
  EXPECT_EQ(textOf(*firstWithClass(finding, "rule")), "name.length");
  EXPECT_EQ(textOf(*firstWithClass(finding, "place")), "de-DE/name.txt:1:31");
  EXPECT_EQ(textOf(*firstWithClass(*name, "text")), "Corvane Notizen – Notizen, die sich selbst prüfen");
  EXPECT_TRUE(withClass(*page.field("de-DE", "subtitle"), "finding").empty());

  // The folder's own finding sits in the shared card.
  const auto* folder = page.field("shared", "folder");
  ASSERT_NE(folder, nullptr);
  EXPECT_EQ(textOf(*firstWithClass(*folder, "rule")), "locale.unknown");

  // A hostile text is text, never markup; a long one is folded.
  const auto* subtitle = page.field("en-US", "subtitle");
  EXPECT_EQ(textOf(*firstWithClass(*subtitle, "text")), "<script>alert(1)</script> &\"'");
  const auto* description = firstWithClass(*page.field("en-US", "description"), "text");
  EXPECT_EQ(textOf(*description), longText);
  EXPECT_STREQ(description->Parent()->ToElement()->Name(), "details");

  // The checklist, in words.
  const auto* checklist = page.cards.at("de-DE")->LastChildElement("ul");
  ASSERT_TRUE(checklist != nullptr && hasClass(*checklist, "checklist"));
  const auto* first = checklist->FirstChildElement("li");
  EXPECT_THAT(textOf(*first), StartsWith("✗ Blocked App name (App name: 19 characters too long"));

  // Self-contained: nothing to run and nothing loaded, links only within the page.
  visit(*page.document.RootElement(), [](const XMLElement& element) {
    for (const auto* tag : {"script", "link", "img", "iframe", "object"}) {
      EXPECT_STRNE(element.Name(), tag);
    }
    EXPECT_EQ(element.Attribute("src"), nullptr) << element.Name();
    if (const char* href = element.Attribute("href")) {
      EXPECT_THAT(href, StartsWith("#"));
    }
  });
}

TEST(HtmlReportTest, TheDecisionFollowsTheBlockersAndAFolderNameIsEscaped) {
  TemporaryFolder temporary;
  // A folder name that is not UTF-8 and looks like markup.
  const auto sample = testing::copySample(temporary.path() / "meta\xFF<i>&data");
  testing::writeFile(sample / "de-DE" / "name.txt", "Corvane Notizen\n");
  const auto result = run({"check", sample.string(), "--format", "html"});
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.status, exitReady);
  Page page;
  ASSERT_NO_FATAL_FAILURE(parse(result.out, page));
  const auto* banner = page.body->FirstChildElement("header");
  EXPECT_TRUE(hasClass(*banner, "ready"));
  EXPECT_EQ(textOf(*banner->FirstChildElement("h1")), "Can submit: nothing blocks submission");
  EXPECT_THAT(textOf(*firstWithClass(*banner, "folder")), HasSubstr("meta\uFFFD<i>&data"));
  EXPECT_EQ(textOf(*page.document.RootElement()->FirstChildElement("head")->FirstChildElement("title")),
            "Corvane report: meta\uFFFD<i>&data");
  EXPECT_EQ(page.field("de-DE", "name")->Attribute("data-count"), std::string("15"));
}

TEST(HtmlReportTest, APlayFolderHasItsLocalesAndNoSharedCard) {
  const auto sample = CorvaneResources::samplePlayMetadataDirectory();
  const auto result = run({"check", sample.string(), "--format", "html"});
  EXPECT_EQ(result.err, "");
  Page page;
  ASSERT_NO_FATAL_FAILURE(parse(result.out, page));
  std::set<std::string> expected;
  for (const auto& entry : fs::directory_iterator(sample)) {
    if (entry.is_directory()) expected.insert(entry.path().filename().string());
  }
  std::set<std::string> locales;
  for (const auto& [locale, card] : page.cards) locales.insert(locale);
  EXPECT_EQ(locales, expected);
  const auto* title = page.field("en-US", "title");
  ASSERT_NE(title, nullptr);
  EXPECT_STREQ(title->Attribute("data-limit"), "30");
  const auto text = testing::readFile(sample / "en-US" / "title.txt");
  EXPECT_EQ(title->Attribute("data-count"), std::to_string(characterCount(trimmed(text))));
  EXPECT_THAT(result.out, HasSubstr("data-rule=\"title.emoji\""));
}

}  // namespace
}  // namespace corvane::cli
