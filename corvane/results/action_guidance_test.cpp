#include "corvane/results/action_guidance.hpp"

#include <gtest/gtest.h>

namespace corvane {
namespace {

using Action = ActionGuidance::Action;
using ActionType = Action::ActionType;

Url url(std::string_view text) {
  // value() throws on a text that does not parse, which fails the test that asked for it.
  return Url::parse(text).value();
}

TEST(ActionType, CopiesOfAnAutoFixShareOneCallable) {
  int calls = 0;
  const Action original{.title = "Trim", .description = "Shorten it", .type = ActionType::autoFix([&] { ++calls; })};
  const Action copy = original;

  ASSERT_TRUE(copy.type.isAutoFix());
  EXPECT_EQ(copy.type.getIf<ActionType::AutoFix>()->handler, original.type.getIf<ActionType::AutoFix>()->handler);
  EXPECT_TRUE(copy.type.runAutoFix());
  EXPECT_TRUE(original.type.runAutoFix());
  EXPECT_EQ(calls, 2);
  (*original.type.getIf<ActionType::AutoFix>())();
  EXPECT_EQ(calls, 3);
}

TEST(ActionType, RunAutoFixReportsWhetherAHandlerRan) {
  EXPECT_FALSE(ActionType::manual({"Do it"}).runAutoFix());
  EXPECT_FALSE(ActionType::quickFix({"A", "B"}).runAutoFix());
  EXPECT_FALSE(ActionType::external(url("https://example.com/help")).runAutoFix());
  EXPECT_FALSE(ActionType::autoFix(nullptr).runAutoFix());
  // An empty handler is skipped when called directly, rather than throwing.
  EXPECT_NO_THROW((*ActionType::autoFix(nullptr).getIf<ActionType::AutoFix>())());
}

TEST(ActionType, QueriesAndPayloads) {
  const auto quick = ActionType::quickFix({"Free", "Paid"});
  EXPECT_TRUE(quick.isQuickFix());
  EXPECT_FALSE(quick.isAutoFix() || quick.isManual() || quick.isExternal());
  EXPECT_EQ(quick.getIf<ActionType::QuickFix>()->options, (std::vector<std::string>{"Free", "Paid"}));
  EXPECT_EQ(quick.getIf<ActionType::Manual>(), nullptr);

  const auto manual = ActionType::manual({"One", "Two"});
  EXPECT_TRUE(manual.isManual());
  EXPECT_FALSE(manual.isAutoFix() || manual.isQuickFix() || manual.isExternal());
  EXPECT_EQ(manual.getIf<ActionType::Manual>()->steps, (std::vector<std::string>{"One", "Two"}));

  const auto external = ActionType::external(url("https://example.com/help"));
  EXPECT_TRUE(external.isExternal());
  EXPECT_FALSE(external.isAutoFix() || external.isQuickFix() || external.isManual());
  EXPECT_EQ(external.getIf<ActionType::External>()->url.text(), "https://example.com/help");
}

TEST(ActionType, EqualityIgnoresHandlersButNotPayloadsOrCases) {
  EXPECT_EQ(ActionType::autoFix([] {}), ActionType::autoFix(nullptr));
  EXPECT_EQ(ActionType::manual({"a", "b"}), ActionType::manual({"a", "b"}));
  EXPECT_NE(ActionType::manual({"a", "b"}), ActionType::manual({"b", "a"}));
  EXPECT_NE(ActionType::quickFix({"a"}), ActionType::quickFix({"a", "b"}));
  EXPECT_NE(ActionType::manual({"a"}), ActionType::quickFix({"a"}));
  EXPECT_NE(ActionType::autoFix([] {}), ActionType::manual({}));
  EXPECT_EQ(ActionType::external(url("https://a.example/")), ActionType::external(url("https://a.example/")));
  EXPECT_NE(ActionType::external(url("https://a.example/")), ActionType::external(url("https://b.example/")));
}

TEST(ActionGuidance, EqualityComparesEveryField) {
  const ActionGuidance base{
      .primaryAction = {.title = "Fix", .description = "Fix it", .type = ActionType::autoFix([] {})},
      .alternativeActions = {{.title = "A", .description = "a", .type = ActionType::manual({"1"})},
                             {.title = "B", .description = "b", .type = ActionType::manual({"2"})}},
      .helpURL = Url::parse("https://example.com/help"),
      .estimatedTime = "1-2 minutes",
  };
  ActionGuidance sameButOtherHandler = base;
  sameButOtherHandler.primaryAction.type = ActionType::autoFix([] {});
  EXPECT_EQ(base, sameButOtherHandler);

  auto differs = [&](auto change) {
    ActionGuidance other = base;
    change(other);
    return other != base;
  };
  EXPECT_TRUE(differs([](ActionGuidance& g) { g.primaryAction.title = "Other"; }));
  EXPECT_TRUE(differs([](ActionGuidance& g) { g.primaryAction.description = "Other"; }));
  EXPECT_TRUE(differs([](ActionGuidance& g) { g.primaryAction.type = ActionType::manual({}); }));
  EXPECT_TRUE(differs([](ActionGuidance& g) { std::swap(g.alternativeActions[0], g.alternativeActions[1]); }));
  EXPECT_TRUE(differs([](ActionGuidance& g) { g.alternativeActions.pop_back(); }));
  EXPECT_TRUE(differs([](ActionGuidance& g) { g.helpURL.reset(); }));
  EXPECT_TRUE(differs([](ActionGuidance& g) { g.helpURL = Url::parse("https://example.com/other"); }));
  EXPECT_TRUE(differs([](ActionGuidance& g) { g.estimatedTime.reset(); }));
  EXPECT_TRUE(differs([](ActionGuidance& g) { g.estimatedTime = "5-15 minutes"; }));
}

TEST(ActionType, DescribesCaseAndPayload) {
  EXPECT_EQ(describe(ActionType::autoFix([] {})), "autoFix(handler: (function))");
  EXPECT_EQ(describe(ActionType::quickFix({"Free", "Paid"})), "quickFix(options: [\"Free\", \"Paid\"])");
  EXPECT_EQ(describe(ActionType::manual({})), "manual(steps: [])");
  EXPECT_EQ(describe(ActionType::external(url("https://example.com/help"))), "external(url: https://example.com/help)");
}

}  // namespace
}  // namespace corvane
