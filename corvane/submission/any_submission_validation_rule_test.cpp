#include "corvane/submission/any_submission_validation_rule.hpp"

#include "corvane/testing/test_main_loop.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace corvane {
namespace {

using Result = SubmissionValidationResult;

// The smallest entities a rule can be bound to: nothing to save, one value to judge.
class StubEntity : public SubmissionEntity {
 public:
  bool hasUnsavedChanges() const override { return false; }
  std::string changeDescription() const override { return {}; }
  boost::asio::awaitable<void> saveChanges() override { co_return; }
  void discardChanges() override {}
};

class NamedEntity final : public StubEntity {
 public:
  explicit NamedEntity(std::string initialName) : name(std::move(initialName)) {}
  std::string entityId() const override { return "named"; }
  std::string name;
};

class CountedEntity final : public StubEntity {
 public:
  std::string entityId() const override { return "counted"; }
  int count = 0;
};

SubmissionValidationRule<NamedEntity> nameRequired() {
  return {"name-required", [](const NamedEntity& entity) -> boost::asio::awaitable<Result> {
            co_return entity.name.empty() ? Result::invalid("name missing", entity.entityId()) : Result::valid();
          }};
}

SubmissionValidationRule<CountedEntity> countPositive() {
  return {"count-positive", [](const CountedEntity& entity) -> boost::asio::awaitable<Result> {
            co_return entity.count > 0 ? Result::valid() : Result::warning("count is zero");
          }};
}

TEST(AnySubmissionValidationRule, RulesOverDifferentEntitiesShareOneList) {
  testing::TestMainLoop loop;
  auto named = std::make_shared<NamedEntity>("");
  auto counted = std::make_shared<CountedEntity>();
  const std::vector<AnySubmissionValidationRule> rules{{nameRequired(), named}, {countPositive(), counted}};
  EXPECT_EQ(rules[0].id(), "name-required");
  EXPECT_EQ(rules[1].id(), "count-positive");

  const Result missing = loop.run(rules[0].validate());
  EXPECT_FALSE(missing.isValid);
  ASSERT_EQ(missing.errors().size(), 1u);
  EXPECT_EQ(missing.errors()[0].description, "name missing");
  EXPECT_EQ(missing.errors()[0].entityId, "named");
  EXPECT_EQ(loop.run(rules[1].validate()).warnings().size(), 1u);

  // The rule judges its entity as it is when run.
  named->name = "Corvane";
  counted->count = 1;
  EXPECT_TRUE(loop.run(rules[0].validate()).issues.empty());
  EXPECT_TRUE(loop.run(rules[1].validate()).issues.empty());
}

TEST(AnySubmissionValidationRule, KeepsItsEntityAliveBeyondTheRuleItself) {
  testing::TestMainLoop loop;
  auto named = std::make_shared<NamedEntity>("");
  std::weak_ptr<NamedEntity> watched = named;
  auto rule = std::make_unique<AnySubmissionValidationRule>(nameRequired(), std::move(named));
  ASSERT_FALSE(watched.expired());
  auto operation = rule->validate();
  rule.reset();
  ASSERT_FALSE(watched.expired());
  EXPECT_FALSE(loop.run(std::move(operation)).isValid);
  EXPECT_TRUE(watched.expired());
}

TEST(AnySubmissionValidationRuleDeathTest, NeedsACheckAndAnEntity) {
  EXPECT_DEATH(AnySubmissionValidationRule(nameRequired(), std::shared_ptr<NamedEntity>()),
               "precondition failed: .*needs an entity");
  EXPECT_DEATH(AnySubmissionValidationRule(SubmissionValidationRule<NamedEntity>{"empty", {}},
                                           std::make_shared<NamedEntity>("x")),
               "precondition failed: .*needs a rule with a check");
}

}  // namespace
}  // namespace corvane
