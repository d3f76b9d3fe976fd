#include "corvane/tracking/unified_change_tracker.hpp"

#include "corvane/support/sleep.hpp"
#include "corvane/testing/captured_lines.hpp"
#include "corvane/testing/test_main_loop.hpp"
#include "corvane/testing/thrown.hpp"
#include "corvane/tracking/tracked.hpp"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace corvane {
namespace {

using namespace std::chrono_literals;
using testing::thrown;
using testing::thrownMessage;

// An entity whose state a test sets directly, and which records what was done to it.
class FakeEntity final : public TrackableEntity {
 public:
  FakeEntity(std::string id, std::string name) : id_(std::move(id)), name_(std::move(name)) {}

  std::string entityId() const override { return id_; }
  std::string entityName() const override { return name_; }
  bool hasUnsavedChanges() const override { return changed; }
  std::string changeDescription() const override { return changed ? name_ + " edited" : ""; }
  ValidationResult validationResult() const override {
    if (verdictReads) verdictReads->push_back(id_);
    return verdict;
  }

  boost::asio::awaitable<void> saveChanges() override {
    events->push_back("start " + id_);
    co_await sleepFor(saveDelay);
    if (failure) {
      events->push_back("fail " + id_);
      throw std::runtime_error(*failure);
    }
    changed = false;
    events->push_back("saved " + id_);
  }
  void discardChanges() override {
    changed = false;
    events->push_back("discarded " + id_);
  }
  std::vector<StoredProperty> storedProperties() override { return fields; }

  bool changed = false;
  ValidationResult verdict = ValidationResult::valid();
  std::chrono::milliseconds saveDelay{0};
  std::optional<std::string> failure;
  std::vector<std::string>* events = &ownEvents;
  std::vector<std::string>* verdictReads = nullptr;
  std::vector<StoredProperty> fields;

 private:
  std::string id_;
  std::string name_;
  std::vector<std::string> ownEvents;
};

class UnifiedChangeTrackerTest : public ::testing::Test {
 protected:
  std::shared_ptr<FakeEntity> add(std::string id, std::string name) {
    auto entity = std::make_shared<FakeEntity>(std::move(id), std::move(name));
    entity->events = &events;
    tracker.register_(entity);
    return entity;
  }

  static ValidationResult failure(std::string message) {
    return ValidationResult::failure(ValidationSeverity::error, std::move(message));
  }

  testing::TestMainLoop loop;
  UnifiedChangeTracker tracker;
  std::vector<std::string> events;
};

TEST_F(UnifiedChangeTrackerTest, RegistrationKeepsOrderReplacesByIdAndRaisesTheVersion) {
  auto a = add("a", "Alpha");
  auto b = add("b", "Beta");
  EXPECT_EQ(tracker.stateVersion(), 2);
  auto replacement = std::make_shared<FakeEntity>("a", "Alpha 2");
  tracker.register_(replacement);
  EXPECT_EQ(tracker.stateVersion(), 3);
  auto all = tracker.registeredEntities();
  ASSERT_EQ(all.size(), 2u);
  EXPECT_EQ(all[0], replacement) << "a replacement keeps its place";
  EXPECT_EQ(all[1], b);
  EXPECT_EQ(tracker.getEntity<FakeEntity>("a"), replacement);
  EXPECT_EQ(tracker.getEntity<FakeEntity>("zzz"), nullptr);

  tracker.unregister("nobody");
  EXPECT_EQ(tracker.stateVersion(), 4) << "unregistering an unknown id still raises the version";
  tracker.unregister("a");
  EXPECT_EQ(tracker.registeredEntities().size(), 1u);
  EXPECT_EQ(tracker.stateVersion(), 5);

  tracker.reset();
  EXPECT_EQ(tracker.stateVersion(), 0);
  EXPECT_TRUE(tracker.registeredEntities().empty());
}

TEST_F(UnifiedChangeTrackerTest, GetEntityChecksTheConcreteType) {
  class Other final : public TrackableEntity {
   public:
    std::string entityId() const override { return "o"; }
    std::string entityName() const override { return "Other"; }
    bool hasUnsavedChanges() const override { return false; }
    std::string changeDescription() const override { return ""; }
    ValidationResult validationResult() const override { return ValidationResult::valid(); }
  };
  tracker.register_(std::make_shared<Other>());
  EXPECT_EQ(tracker.getEntity<FakeEntity>("o"), nullptr);
  EXPECT_NE(tracker.getEntity<TrackableEntity>("o"), nullptr);
}

TEST_F(UnifiedChangeTrackerTest, PerEntityQueriesAnswerForUnknownIdentifiers) {
  auto a = add("a", "Alpha");
  EXPECT_FALSE(tracker.hasChanges("x"));
  EXPECT_FALSE(tracker.isValid("x"));
  EXPECT_FALSE(tracker.getValidationResult("x"));
  EXPECT_EQ(tracker.getChangeDescription("x"), "Entity not found");
  EXPECT_EQ(tracker.getStatusText("x"), "Entity not found");

  EXPECT_EQ(tracker.getStatusText("a"), "No changes");
  a->changed = true;
  a->verdict = failure("broken");
  EXPECT_EQ(tracker.getStatusText("a"), "Has validation issues");
  a->verdict = ValidationResult::valid();
  EXPECT_EQ(tracker.getStatusText("a"), "Ready to submit");
  EXPECT_EQ(tracker.getChangeDescription("a"), "Alpha edited");

  const auto version = tracker.stateVersion();
  tracker.discard("x");
  EXPECT_EQ(tracker.stateVersion(), version);
  tracker.discard("a");
  EXPECT_EQ(tracker.stateVersion(), version + 1);
  EXPECT_FALSE(a->changed);
}

TEST_F(UnifiedChangeTrackerTest, AggregateTextsCountChangedAndInvalidEntities) {
  auto a = add("a", "Alpha");
  auto b = add("b", "Beta");
  auto c = add("c", "Gamma");
  EXPECT_EQ(tracker.changeDescription(), "No changes to submit");
  EXPECT_EQ(tracker.statusText(), "No changes to submit");
  EXPECT_FALSE(tracker.canSubmit());

  b->changed = true;
  EXPECT_EQ(tracker.changeDescription(), "Beta has changes");
  EXPECT_EQ(tracker.statusText(), "Ready to submit");
  EXPECT_TRUE(tracker.canSubmit());

  c->changed = true;
  EXPECT_EQ(tracker.changeDescription(), "Beta and Gamma have changes");
  a->changed = true;
  EXPECT_EQ(tracker.changeDescription(), "3 entities have changes");

  a->verdict = failure("x");
  EXPECT_EQ(tracker.statusText(), "1 issue to fix");
  EXPECT_FALSE(tracker.canSubmit());
  c->verdict = failure("y");
  EXPECT_EQ(tracker.statusText(), "2 issues to fix");
  EXPECT_EQ(tracker.validationErrors(), (std::vector<std::string>{"Alpha: x", "Gamma: y"}));
  EXPECT_EQ(tracker.entitiesWithErrors().size(), 2u);
}

TEST_F(UnifiedChangeTrackerTest, SubmitChecksPresenceChangesAndValidityInThatOrder) {
  auto a = add("a", "Alpha");
  auto refusal = [&](std::string id) {
    return thrown<ChangeTrackingError>([&] { loop.run(tracker.submit(std::move(id))); }).value();
  };
  EXPECT_EQ(refusal("missing").errorDescription(), "Could not find entity 'missing'");
  a->verdict = failure("broken");  // invalid but unchanged: "nothing to submit" wins
  EXPECT_TRUE(refusal("a").getIf<ChangeTrackingError::NothingToSubmit>());
  a->changed = true;
  EXPECT_EQ(refusal("a").errorDescription(), "Cannot submit: Alpha: broken");
  EXPECT_TRUE(events.empty()) << "nothing is saved when a check fails";
  const auto version = tracker.stateVersion();
  a->verdict = ValidationResult::valid();
  loop.run(tracker.submit("a"));
  EXPECT_EQ(events, (std::vector<std::string>{"start a", "saved a"}));
  EXPECT_EQ(tracker.stateVersion(), version + 1);
}

TEST_F(UnifiedChangeTrackerTest, SubmitPassesTheEntitysOwnErrorThroughUnchanged) {
  auto a = add("a", "Alpha");
  a->changed = true;
  a->failure = "disk full";
  const auto version = tracker.stateVersion();
  EXPECT_EQ(thrownMessage<std::runtime_error>([&] { loop.run(tracker.submit("a")); }), "disk full");
  EXPECT_EQ(tracker.stateVersion(), version);
}

TEST_F(UnifiedChangeTrackerTest, SubmitAllRefusesWhenNothingChangedOrAnythingIsInvalid) {
  auto a = add("a", "Alpha");
  auto b = add("b", "Beta");
  auto refusal = [&] { return thrown<ChangeTrackingError>([&] { loop.run(tracker.submitAll()); }).value(); };
  const auto nothing = refusal();
  EXPECT_EQ(nothing.errorDescription(), "No changes to submit to App Store");
  EXPECT_EQ(describe(nothing), "nothingToSubmit");
  a->changed = true;
  b->verdict = failure("unchanged but invalid");
  const auto blocked = refusal();
  EXPECT_EQ(blocked.errorDescription(), "Cannot submit: Beta: unchanged but invalid");
  ASSERT_TRUE(blocked.getIf<ChangeTrackingError::SubmissionBlocked>());
  EXPECT_EQ(blocked.getIf<ChangeTrackingError::SubmissionBlocked>()->reason, "Fix this issue");
  a->verdict = failure("also invalid");
  EXPECT_EQ(refusal().errorDescription(), "Cannot submit: Fix 2 issues (2 issues)");
  EXPECT_TRUE(events.empty());
}

// Reading a verdict may print (ValidationResult::combine does): submitAll reads every
// entity's verdict, in registration order, but none when nothing changed.
TEST_F(UnifiedChangeTrackerTest, SubmitAllReadsVerdictsInOrderOnlyOnceSomethingChanged) {
  struct Case {
    const char* name;
    std::string changed;  // of the entities a, b and c
    std::vector<std::string> reads;
  };
  const Case cases[] = {
      {"nothing changed", "", {}},
      {"the first changed", "a", {"a", "b", "c"}},
      {"only the last changed", "c", {"a", "b", "c"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    UnifiedChangeTracker own;
    std::vector<std::string> reads;
    for (char id : std::string("abc")) {
      auto entity = std::make_shared<FakeEntity>(std::string(1, id), std::string(1, id));
      entity->changed = c.changed.find(id) != std::string::npos;
      entity->verdictReads = &reads;
      own.register_(entity);
    }
    try {
      loop.run(own.submitAll());
    } catch (const ChangeTrackingError& refusal) {
      EXPECT_TRUE(c.changed.empty()) << describe(refusal);
    }
    EXPECT_EQ(reads, c.reads);
  }
}

TEST_F(UnifiedChangeTrackerTest, SubmitAllSavesChangedEntitiesConcurrently) {
  testing::CapturedLines lines;
  UnifiedChangeTracker logged({10, true});
  std::vector<std::shared_ptr<FakeEntity>> entities;
  for (std::string id : {"slow", "unchanged", "fast"}) {
    auto entity = std::make_shared<FakeEntity>(id, id);
    entity->events = &events;
    entity->changed = id != "unchanged";
    entities.push_back(entity);
  }
  entities[0]->saveDelay = 40ms;
  logged.register_(entities);
  const auto version = logged.stateVersion();
  loop.run(logged.submitAll());
  // Both saves started before either finished: they ran side by side, not one after another.
  EXPECT_EQ(events, (std::vector<std::string>{"start slow", "start fast", "saved fast", "saved slow"}));
  EXPECT_EQ(logged.stateVersion(), version + 1);
  EXPECT_FALSE(logged.hasUnsavedChanges());
  EXPECT_EQ(lines.lines(), (std::vector<std::string>{
                               "ChangeTracker: Registered entity 'slow'",
                               "ChangeTracker: Registered entity 'unchanged'",
                               "ChangeTracker: Registered entity 'fast'",
                               "ChangeTracker: Submitting 2 entities",
                               "ChangeTracker: Successfully submitted all entities",
                           }));
}

TEST_F(UnifiedChangeTrackerTest, SubmitAllPropagatesTheFirstErrorAndCancelsTheRest) {
  auto slow = add("slow", "Slow");
  auto failing = add("failing", "Failing");
  slow->changed = true;
  slow->saveDelay = 1h;  // only cancellation can end this save
  failing->changed = true;
  failing->failure = "quota exceeded";
  const auto version = tracker.stateVersion();
  EXPECT_EQ(thrownMessage<std::runtime_error>([&] { loop.run(tracker.submitAll()); }), "quota exceeded");
  EXPECT_EQ(tracker.stateVersion(), version);
  EXPECT_TRUE(slow->changed) << "the cancelled save did not complete";
}

// An entity whose save either ends at once or waits until the test opens its gate, and
// then fails if told to. A save cancelled while it waits says so and ends with the
// cancellation error.
class GatedEntity final : public TrackableEntity {
 public:
  GatedEntity(char id, bool waits, bool fails, std::vector<std::string>& events)
      : id_(1, id), waits_(waits), fails_(fails), events_(events) {}

  std::string entityId() const override { return id_; }
  std::string entityName() const override { return id_; }
  bool hasUnsavedChanges() const override { return changed; }
  std::string changeDescription() const override { return {}; }
  ValidationResult validationResult() const override { return ValidationResult::valid(); }
  boost::asio::awaitable<void> saveChanges() override {
    events_.push_back("start " + id_);
    if (waits_) {
      boost::asio::steady_timer gate(co_await boost::asio::this_coro::executor,
                                     boost::asio::steady_timer::time_point::max());
      gate_ = &gate;
      boost::system::error_code ended;
      co_await gate.async_wait(boost::asio::redirect_error(boost::asio::use_awaitable, ended));
      gate_ = nullptr;
      if (!opened_) {
        events_.push_back("cancelled " + id_);
        throw boost::system::system_error(ended);
      }
    }
    if (fails_) {
      events_.push_back("fail " + id_);
      throw std::runtime_error(id_ + " failed");
    }
    changed = false;
    events_.push_back("saved " + id_);
  }
  void discardChanges() override { changed = false; }

  bool waiting() const { return gate_ != nullptr; }
  void open() {
    opened_ = true;
    gate_->cancel();
  }

  bool changed = true;

 private:
  std::string id_;
  bool waits_;
  bool fails_;
  std::vector<std::string>& events_;
  boost::asio::steady_timer* gate_ = nullptr;
  bool opened_ = false;
};

// An executor that queues every function on an io_context, even one it could run at once
// (asio's own run a function at once when called from inside their context), as an executor
// that hands work to another event loop may.
class QueueingExecutor {
 public:
  explicit QueueingExecutor(boost::asio::io_context& context) : context_(&context) {}

  boost::asio::execution_context& query(boost::asio::execution::context_t) const noexcept { return *context_; }
  static constexpr boost::asio::execution::blocking_t query(boost::asio::execution::blocking_t) noexcept {
    return boost::asio::execution::blocking.never;
  }
  QueueingExecutor require(boost::asio::execution::blocking_t::never_t) const { return *this; }
  template <class Function>
  void execute(Function function) const {
    boost::asio::post(*context_, std::move(function));
  }
  friend bool operator==(const QueueingExecutor&, const QueueingExecutor&) = default;

 private:
  boost::asio::io_context* context_;
};

// How submitAll ends, whichever of its saves wait, fail, or end at once: the first failure
// in time is rethrown, the saves that wait then are cancelled, those not started never start
// and those done stay done; the state version rises only when every save succeeded. The
// same on an executor that runs what it can at once and on one that queues everything.
TEST(UnifiedChangeTrackerSubmitAll, TheFirstFailureEndsTheGroup) {
  struct Case {
    const char* name;
    std::string entities;  // one letter each, registered in this order, all changed
    std::string waiting;   // those whose saves wait until opened; the others end at once
    std::string failing;   // those whose saves fail, with "<letter> failed"
    std::string opened;    // gates opened, step by step: "c a" opens c, then a; "ca" both at once
    std::string error;     // what submitAll throws; nothing when empty
    std::string events;
    std::string unsaved;
  };
  const Case cases[] = {
      {"one entity, its save ends at once", "a", "", "", "", "", "start a, saved a", ""},
      {"one entity, its save waits", "a", "a", "", "a", "", "start a, saved a", ""},
      {"one entity, its save fails", "a", "a", "a", "a", "a failed", "start a, fail a", "a"},
      {"no save waits", "abc", "", "", "", "", "start a, saved a, start b, saved b, start c, saved c", ""},
      {"saves that end at once between saves that wait", "abc", "ac", "", "c a", "",
       "start a, start b, saved b, start c, saved c, saved a", ""},
      {"the first save fails while the others wait", "abc", "abc", "a", "a", "a failed",
       "start a, start b, start c, fail a, cancelled b, cancelled c", "abc"},
      {"the last save fails after the others were saved", "abc", "abc", "c", "a b c", "c failed",
       "start a, start b, start c, saved a, saved b, fail c", "c"},
      {"every save fails: the first to fail is rethrown, not the first registered", "abc", "abc", "abc", "cab",
       "c failed", "start a, start b, start c, fail c, fail a, fail b", "abc"},
      {"the first save fails at once: the others never start", "abc", "", "a", "", "a failed", "start a, fail a",
       "abc"},
      {"a save fails at once while one waits: that one is cancelled, the last never starts", "abc", "a", "b", "",
       "b failed", "start a, start b, fail b, cancelled a", "abc"},
  };
  auto check = [](const Case& c, bool queued) {
    SCOPED_TRACE(std::string(c.name) + (queued ? ", queued" : ""));
    testing::TestMainLoop loop;
    const auto executor = queued ? boost::asio::any_io_executor(QueueingExecutor(loop.context()))
                                 : boost::asio::any_io_executor(loop.context().get_executor());
    auto tracker = std::make_shared<UnifiedChangeTracker>();
    std::vector<std::string> events;
    std::vector<std::shared_ptr<GatedEntity>> entities;
    for (char id : c.entities) {
      entities.push_back(std::make_shared<GatedEntity>(id, c.waiting.find(id) != std::string::npos,
                                                       c.failing.find(id) != std::string::npos, events));
      tracker->register_(entities.back());
    }
    const auto version = tracker->stateVersion();
    bool done = false;
    std::exception_ptr failure;
    boost::asio::co_spawn(executor, tracker->submitAll(), [&](std::exception_ptr error) {
      failure = error;
      done = true;
    });
    loop.drain();
    std::istringstream steps(c.opened);
    for (std::string step; steps >> step;) {
      for (char id : step) {
        auto& entity = *entities[c.entities.find(id)];
        ASSERT_TRUE(entity.waiting()) << id;
        entity.open();
      }
      loop.drain();
    }
    ASSERT_TRUE(done);
    EXPECT_EQ(fmt::format("{}", fmt::join(events, ", ")), c.events);
    if (c.error.empty()) {
      EXPECT_FALSE(failure);
    } else {
      EXPECT_EQ(thrownMessage<std::runtime_error>([&] { std::rethrow_exception(failure); }), c.error);
    }
    EXPECT_EQ(tracker->stateVersion(), c.error.empty() ? version + 1 : version);
    std::string unsaved;
    for (const auto& entity : entities) {
      if (entity->changed) unsaved += entity->entityId();
    }
    EXPECT_EQ(unsaved, c.unsaved);
  };
  for (const bool queued : {false, true}) {
    for (const auto& c : cases) check(c, queued);
  }
}

// Cancelling the submit itself cancels the saves that wait; the one already done stays done.
TEST(UnifiedChangeTrackerSubmitAll, CancellingTheSubmitCancelsTheSavesThatWait) {
  testing::TestMainLoop loop;
  auto tracker = std::make_shared<UnifiedChangeTracker>();
  std::vector<std::string> events;
  auto a = std::make_shared<GatedEntity>('a', true, false, events);
  auto b = std::make_shared<GatedEntity>('b', false, false, events);
  auto c = std::make_shared<GatedEntity>('c', true, false, events);
  tracker->register_(std::vector{a, b, c});
  const auto version = tracker->stateVersion();
  EXPECT_EQ(loop.cancelWhileWaiting(tracker->submitAll()).code(), boost::asio::error::operation_aborted);
  EXPECT_EQ(events,
            (std::vector<std::string>{"start a", "start b", "saved b", "start c", "cancelled a", "cancelled c"}));
  EXPECT_TRUE(a->changed);
  EXPECT_FALSE(b->changed);
  EXPECT_TRUE(c->changed);
  EXPECT_EQ(tracker->stateVersion(), version);
}

TEST_F(UnifiedChangeTrackerTest, DiscardAllTouchesOnlyChangedEntitiesAndAlwaysRaisesTheVersion) {
  testing::CapturedLines lines;
  UnifiedChangeTracker logged({10, true});
  auto a = std::make_shared<FakeEntity>("a", "A");
  auto b = std::make_shared<FakeEntity>("b", "B");
  a->events = b->events = &events;
  logged.register_(a);
  logged.register_(b);
  lines.clear();
  auto version = logged.stateVersion();
  logged.discardAll();
  EXPECT_EQ(logged.stateVersion(), version + 1);
  b->changed = true;
  logged.discardAll();
  EXPECT_EQ(events, std::vector<std::string>{"discarded b"});
  EXPECT_EQ(lines.lines(), (std::vector<std::string>{
                               "ChangeTracker: Discarding changes in 0 entities",
                               "ChangeTracker: Successfully discarded all changes",
                               "ChangeTracker: Discarding changes in 1 entities",
                               "ChangeTracker: Successfully discarded all changes",
                           }));
  logged.unregister("a");
  logged.reset();
  EXPECT_EQ(lines.lines().back(), "ChangeTracker: Reset change tracker state");
  EXPECT_EQ(lines.lines()[lines.lines().size() - 2], "ChangeTracker: Unregistered entity 'a'");
}

TEST_F(UnifiedChangeTrackerTest, PrintsNothingWithLoggingOff) {
  testing::CapturedLines lines;
  auto a = add("a", "A");
  a->changed = true;
  tracker.discardAll();
  tracker.unregister("a");
  tracker.reset();
  EXPECT_TRUE(lines.lines().empty());
}

TEST_F(UnifiedChangeTrackerTest, CategoriesFollowImpactAndSeverity) {
  using Impact = BusinessImpact;
  const ValidationResult criticalFailure = ValidationResult::failure(ValidationSeverity::critical, "critical");
  const ValidationResult highRisk(false, ValidationSeverity::error, "high", std::nullopt, std::nullopt,
                                  Impact::rejectionRisk(Impact::RejectionSeverity::high), std::nullopt, std::nullopt);
  const ValidationResult lowRisk(false, ValidationSeverity::warning, "low", std::nullopt, std::nullopt,
                                 Impact::rejectionRisk(Impact::RejectionSeverity::low), std::nullopt, std::nullopt);
  const ValidationResult plainError = failure("plain error");
  const ValidationResult validWarning(true, ValidationSeverity::warning, "valid warning");
  const ValidationResult criticalOpportunity(false, ValidationSeverity::critical, "critical opportunity", std::nullopt,
                                             std::nullopt, Impact::opportunity("x"), std::nullopt, std::nullopt);
  const ValidationResult invalidWarning = ValidationResult::warning();  // no impact, invalid: no category
  const std::vector<ValidationResult> verdicts{criticalFailure,   highRisk,     lowRisk,
                                               plainError,        validWarning, ValidationResult::info("tip"),
                                               criticalOpportunity, invalidWarning, ValidationResult::valid()};
  for (std::size_t i = 0; i < verdicts.size(); ++i) add(std::to_string(i), "E" + std::to_string(i))->verdict = verdicts[i];

  auto messages = [](const std::vector<ValidationResult>& results) {
    std::vector<std::string> texts;
    for (const auto& result : results) texts.push_back(result.message);
    return texts;
  };
  EXPECT_EQ(messages(tracker.blockers()), (std::vector<std::string>{"critical", "high", "critical opportunity"}));
  EXPECT_EQ(messages(tracker.rejectionRisks()), (std::vector<std::string>{"low", "plain error"}));
  EXPECT_EQ(messages(tracker.optimizations()), std::vector<std::string>{"valid warning"});
  EXPECT_EQ(messages(tracker.opportunities()), (std::vector<std::string>{"tip", "critical opportunity"}));
  // By display priority, stable: critical 1000 (twice, category order kept), errors 800,
  // warnings 500, infos 200.
  EXPECT_EQ(messages(tracker.enhancedValidationResults()),
            (std::vector<std::string>{"critical", "critical opportunity", "critical opportunity", "high", "plain error",
                                      "low", "valid warning", "tip"}));
}

TEST_F(UnifiedChangeTrackerTest, FieldResultsWalkEntitiesAndTheirTrackedProperties) {
  Tracked<std::string> name("", {[](const std::string&) { return ValidationResult::required("Name"); }});
  Tracked<std::string> title("ok", {[](const std::string&) { return ValidationResult::validRequired("Title"); }});
  Tracked<std::string> note("", {[](const std::string&) { return ValidationResult::failure(ValidationSeverity::warning, "short"); }});
  Tracked<int> plain(1);

  class PlainChangeDetector final : public ChangeDetectable {
   public:
    bool hasChanged() const override { return false; }
    std::string changeDescription() const override { return ""; }
    std::optional<std::string> propertyName() const override { return name_; }
    void setPropertyName(std::optional<std::string> name) override { name_ = std::move(name); }
    void markSaved() override {}
    void discardChanges() override {}

   private:
    std::optional<std::string> name_;
  } unvalidated;

  auto first = add("first", "First");
  first->fields = {{"_name", &name}, {"count", nullptr}, {"_title", &title}, {"_flag", &unvalidated}};
  auto second = add("second", "Second");
  second->fields = {{"_note", &note}, {std::nullopt, &plain}};

  EXPECT_EQ(tracker.validatedFieldNames(), (std::vector<std::string>{"name", "title", "note", "unknown"}));
  EXPECT_EQ(tracker.totalTrackedFieldCount(), 5);
  const auto summary = tracker.getValidationSummary();
  EXPECT_EQ(summary.totalRequiredFields, 2);
  EXPECT_EQ(summary.validRequiredFields, std::vector<std::string>{"title"});
  ASSERT_EQ(summary.allValidationIssues.size(), 2u);
  EXPECT_EQ(summary.allValidationIssues[0].fieldName, "name");
  EXPECT_EQ(summary.allValidationIssues[1].fieldName, "note");
  EXPECT_EQ(summary.allValidationIssues[1].result.message, "short");
}

TEST_F(UnifiedChangeTrackerTest, ObserversSeeEveryVersionChange) {
  std::vector<std::int64_t> versions;
  auto connection = tracker.observe("stateVersion", [&] { versions.push_back(tracker.stateVersion()); });
  add("a", "A");
  tracker.notifyChange();
  tracker.discardAll();
  tracker.reset();
  EXPECT_EQ(versions, (std::vector<std::int64_t>{1, 2, 3, 0}));
}

// Resource limits: the tracker filled to its default capacity behaves as with a few entities
// (bench/tracking_bench measures how the time grows).
TEST_F(UnifiedChangeTrackerTest, TenThousandEntitiesRegisterQuerySubmitAndUnregister) {
  constexpr int kCount = 10000;
  UnifiedChangeTracker large({kCount, false});
  std::vector<std::shared_ptr<FakeEntity>> entities;
  entities.reserve(kCount);
  for (int i = 0; i < kCount; ++i) {
    auto entity = std::make_shared<FakeEntity>("entity-" + std::to_string(i), "Entity " + std::to_string(i));
    entity->events = &events;
    entity->changed = i % 2 == 0;
    entities.push_back(entity);
    large.register_(entity);
  }
  ASSERT_EQ(large.registeredEntities().size(), std::size_t{kCount});
  EXPECT_EQ(large.stateVersion(), kCount);
  EXPECT_EQ(large.entitiesWithChanges().size(), std::size_t{kCount / 2});
  EXPECT_TRUE(large.entitiesWithErrors().empty());
  EXPECT_EQ(large.getEntity<FakeEntity>("entity-9999"), entities.back());
  EXPECT_TRUE(large.hasChanges("entity-4242"));
  EXPECT_FALSE(large.hasChanges("entity-4243"));

  loop.run(large.submitAll());
  // Each changed entity saved exactly once, none of the unchanged ones.
  const auto saved =
      std::count_if(events.begin(), events.end(), [](const std::string& event) { return event.starts_with("saved "); });
  EXPECT_EQ(saved, kCount / 2);
  EXPECT_FALSE(large.hasUnsavedChanges());

  // The last registered first: a linear list scan per removal would make this quadratic.
  for (int i = kCount - 1; i >= 0; --i) large.unregister("entity-" + std::to_string(i));
  EXPECT_TRUE(large.registeredEntities().empty());
  EXPECT_EQ(large.getEntity<FakeEntity>("entity-0"), nullptr);
  for (const auto& entity : entities) EXPECT_EQ(entity.use_count(), 1);
}

using UnifiedChangeTrackerDeathTest = UnifiedChangeTrackerTest;

TEST_F(UnifiedChangeTrackerDeathTest, RegisteringBeyondTheLimitIsFatalEvenForAKnownIdentifier) {
  UnifiedChangeTracker small({2, false});
  small.register_(std::make_shared<FakeEntity>("a", "A"));
  small.register_(std::make_shared<FakeEntity>("a", "A again"));  // one entry: room for one more
  small.register_(std::make_shared<FakeEntity>("b", "B"));
  EXPECT_DEATH(small.register_(std::make_shared<FakeEntity>("b", "B again")), "maxEntities");
  EXPECT_DEATH(small.register_(std::make_shared<FakeEntity>("c", "C")), "maxEntities");
}

// An entity whose save waits until the test releases it.
class ParkedEntity final : public TrackableEntity {
 public:
  std::string entityId() const override { return "parked"; }
  std::string entityName() const override { return "Parked"; }
  bool hasUnsavedChanges() const override { return changed; }
  std::string changeDescription() const override { return {}; }
  ValidationResult validationResult() const override { return ValidationResult::valid(); }
  boost::asio::awaitable<void> saveChanges() override {
    boost::asio::steady_timer timer(co_await boost::asio::this_coro::executor,
                                    boost::asio::steady_timer::time_point::max());
    parked = &timer;
    boost::system::error_code released;
    co_await timer.async_wait(boost::asio::redirect_error(boost::asio::use_awaitable, released));
    parked = nullptr;
    changed = false;
  }
  void discardChanges() override { changed = false; }
  void release() { parked->cancel(); }

  bool changed = true;
  boost::asio::steady_timer* parked = nullptr;
};

using Submit = boost::asio::awaitable<void> (*)(UnifiedChangeTracker&);

// A tracker that a shared pointer owns lives until its own submit ends, when its owner lets
// go while the save is under way or even before the submit has started.
TEST(UnifiedChangeTrackerLifetime, ASubmitKeepsASharedTrackerAliveUntilItEnds) {
  struct Case {
    const char* name;
    Submit submit;
    bool dropBeforeStart;
  };
  const Case cases[] = {
      {"submit, dropped during the save", [](UnifiedChangeTracker& t) { return t.submit("parked"); }, false},
      {"submitAll, dropped during the save", [](UnifiedChangeTracker& t) { return t.submitAll(); }, false},
      {"submit, dropped before it starts", [](UnifiedChangeTracker& t) { return t.submit("parked"); }, true},
      {"submitAll, dropped before it starts", [](UnifiedChangeTracker& t) { return t.submitAll(); }, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    testing::TestMainLoop loop;
    auto entity = std::make_shared<ParkedEntity>();
    auto tracker = std::make_shared<UnifiedChangeTracker>();
    tracker->register_(entity);
    const std::weak_ptr<UnifiedChangeTracker> weak = tracker;
    auto operation = c.submit(*tracker);
    if (c.dropBeforeStart) tracker.reset();
    bool done = false;
    std::exception_ptr failure;
    boost::asio::co_spawn(loop.context(), std::move(operation), [&](std::exception_ptr error) {
      failure = error;
      done = true;
    });
    loop.drain();
    ASSERT_NE(entity->parked, nullptr);
    tracker.reset();
    EXPECT_FALSE(weak.expired()) << "the submit let go of its tracker while it waited";
    entity->release();
    loop.drain();
    EXPECT_TRUE(done);
    EXPECT_FALSE(failure);
    EXPECT_FALSE(entity->changed);
    EXPECT_TRUE(weak.expired()) << "the finished submit still holds its tracker";
  }
}

// A submit still waiting when its loop is destroyed goes with the loop, and so lets go of
// its tracker and the entities it was saving.
TEST(UnifiedChangeTrackerLifetime, ASubmitAbandonedWithItsLoopLetsGoOfTrackerAndEntities) {
  std::weak_ptr<UnifiedChangeTracker> weakTracker;
  std::weak_ptr<ParkedEntity> weakEntity;
  {
    testing::TestMainLoop loop;
    auto entity = std::make_shared<ParkedEntity>();
    auto tracker = std::make_shared<UnifiedChangeTracker>();
    tracker->register_(entity);
    weakTracker = tracker;
    weakEntity = entity;
    boost::asio::co_spawn(loop.context(), tracker->submitAll(), boost::asio::detached);
    loop.drain();
    ASSERT_NE(entity->parked, nullptr);
  }
  EXPECT_TRUE(weakTracker.expired());
  EXPECT_TRUE(weakEntity.expired());
}

// A tracker that no shared pointer owns cannot be kept alive: destroying it while one of
// its submits is under way is a programming error, caught before the submit runs on.
TEST(UnifiedChangeTrackerLifetimeDeathTest, DestroyingAnUnsharedTrackerDuringASubmitIsFatal) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        testing::TestMainLoop loop;
        auto entity = std::make_shared<ParkedEntity>();
        auto tracker = std::make_unique<UnifiedChangeTracker>();
        tracker->register_(entity);
        boost::asio::co_spawn(loop.context(), tracker->submit("parked"), boost::asio::detached);
        loop.drain();
        tracker.reset();
      },
      "precondition failed: .*submit");
}

}  // namespace
}  // namespace corvane
