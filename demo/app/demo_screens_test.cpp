#include "corvane/cache/validation_cache.hpp"
#include "corvane/entities/showcase_app_entity.hpp"
#include "corvane/results/business_impact.hpp"
#include "corvane/support/main_executor.hpp"
#include "corvane/testing/captured_lines.hpp"
#include "demo/app/demo_screen.hpp"
#include "demo/app/new_change_tracking_demo_model.hpp"
#include "demo/app/tracked_validation_dsl_demo_model.hpp"
#include "ui/qt/headless_test_support.hpp"
#include "ui/qt/observation_bridge.hpp"
#include "ui/qt/symbol_glyphs.hpp"

#include <QtCore/QThread>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>
#include <QtTest/QTest>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>

#include <algorithm>
#include <chrono>
#include <memory>

namespace corvane::demo {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsSupersetOf;

[[maybe_unused]] const auto* const environment = ::testing::AddGlobalTestEnvironment(new ui::HeadlessApplication);

constexpr int patience = 10000;  // milliseconds; a generous bound for waiting, never asserted

TEST(QtMainExecutor, RunsPostedWorkOnTheLoopAndNeverInline) {
  std::vector<int> order;
  boost::asio::post(mainExecutor(), [&] { order.push_back(2); });
  order.push_back(1);
  EXPECT_EQ(order, std::vector<int>{1});
  ASSERT_TRUE(QTest::qWaitFor([&] { return order.size() == 2; }, patience));
  EXPECT_EQ(order, (std::vector<int>{1, 2}));
}

TEST(QtMainExecutor, ResumesATimerAwaitingCoroutineOnTheLoopThread) {
  QThread* resumedOn = nullptr;
  auto sleeper = []() -> boost::asio::awaitable<QThread*> {
    boost::asio::steady_timer timer(co_await boost::asio::this_coro::executor, std::chrono::milliseconds(20));
    co_await timer.async_wait(boost::asio::use_awaitable);
    co_return QThread::currentThread();
  };
  boost::asio::co_spawn(mainExecutor(), sleeper(), [&](std::exception_ptr error, QThread* thread) {
    if (!error) resumedOn = thread;
  });
  ASSERT_TRUE(QTest::qWaitFor([&] { return resumedOn != nullptr; }, patience));
  EXPECT_EQ(resumedOn, QThread::currentThread());
}

TEST(ObservationBridgeSignals, OneChangedPerBurstOfWritesOnceTheLoopRuns) {
  ShowcaseAppEntity entity;
  int reads = 0;
  ui::ObservationBridge bridge([&] {
    ++reads;
    (void)entity.appName();
  });
  int changes = 0;
  QObject::connect(&bridge, &ui::ObservationBridge::changed, [&] { ++changes; });
  EXPECT_EQ(reads, 1);

  entity.setAppName("C");
  entity.setAppName("Co");
  EXPECT_EQ(changes, 0) << "the handler runs before the write; the signal must wait for the loop";
  ASSERT_TRUE(QTest::qWaitFor([&] { return changes == 1; }, patience));
  EXPECT_EQ(reads, 2);

  // Re-armed: the next write is seen too, and a write to something unread is not.
  entity.setSubtitle("unread");
  entity.setAppName("Cor");
  ASSERT_TRUE(QTest::qWaitFor([&] { return changes == 2; }, patience));
  QCoreApplication::processEvents();
  EXPECT_EQ(changes, 2);
}

// One screen in a shown, active window tall enough for all of it, so that clicks and
// key strokes reach its items as they would a user's.
class ScreenTest : public ::testing::Test {
 protected:
  explicit ScreenTest(const char* name) : screen_(QString::fromUtf8(name)) {
    QQuickView& view = screen_.view();
    view.resize(view.width(), static_cast<int>(view.rootObject()->implicitHeight()) + 400);
    view.show();
    view.requestActivate();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
  }

  QQuickItem& item(const char* objectName) {
    QQuickItem* found = screen_.find(QString::fromUtf8(objectName));
    if (found == nullptr) throw std::logic_error(std::string("no item named ") + objectName);
    return *found;
  }

  QString text(const char* objectName) { return item(objectName).property("text").toString(); }
  // The shown value of an InfoRow.
  QString value(const char* objectName) { return item(objectName).property("value").toString(); }

  void type(const char* fieldName, const QString& keys) {
    item(fieldName).forceActiveFocus();
    // QTest types whole strings into widgets only; windows take one key at a time.
    for (const QChar key : keys) QTest::keyClick(&screen_.view(), key.toLatin1());
  }

  void click(const char* objectName) {
    QQuickItem& button = item(objectName);
    const QPointF centre = button.mapToScene(QPointF(button.width() / 2, button.height() / 2));
    QTest::mouseClick(&screen_.view(), Qt::LeftButton, {}, centre.toPoint());
  }

  bool eventually(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, patience); }

  bool printed(const std::string& line) const {
    const auto all = lines_.lines();
    return std::find(all.begin(), all.end(), line) != all.end();
  }

  testing::CapturedLines lines_;  // first: the screen prints as it appears
  DemoScreen screen_;
};

class ShowcaseScreen : public ScreenTest {
 protected:
  ShowcaseScreen() : ScreenTest("NewChangeTrackingDemo") {}

  NewChangeTrackingDemoModel& model() { return static_cast<NewChangeTrackingDemoModel&>(screen_.model()); }

  std::vector<QQuickItem*> chips() {
    std::vector<QQuickItem*> result;
    for (QQuickItem* child : item("keywordChips").childItems()) {
      if (!child->inherits("QQuickRepeater")) result.push_back(child);
    }
    return result;
  }
};

TEST_F(ShowcaseScreen, AppearingRegistersTheAppEntityAndReadsNoChanges) {
  EXPECT_EQ(value("changesRow"), "No changes");
  EXPECT_EQ(value("entitiesRow"), "1 registered, 0 with changes");
  EXPECT_EQ(value("validationRow"), "1 error(s)");  // the empty app name
  EXPECT_EQ(model().canSubmitSymbol(), "clock");
  EXPECT_EQ(value("canSubmitRow"), ui::SymbolGlyphs::glyphFor("clock"));
  EXPECT_THAT(lines_.lines(),
              ElementsAre("🎯 Simple demo initialized!", "✨ First principles: Just what we need, nothing more"));
}

TEST_F(ShowcaseScreen, TypingAnAppNameUpdatesSymbolAndStatus) {
  type("appNameField", "C");
  ASSERT_TRUE(eventually([&] { return value("changesRow") == "Showcase App Entity has changes"; }));
  EXPECT_EQ(model().appNameSymbol(), "exclamationmark.circle.fill");
  EXPECT_EQ(text("appNameSymbol"), ui::SymbolGlyphs::glyphFor("exclamationmark.circle.fill"));
  EXPECT_EQ(value("validationRow"), "1 error(s)");

  type("appNameField", "orvane");
  ASSERT_TRUE(eventually([&] { return value("validationRow") == "0 error(s)"; }));
  EXPECT_EQ(model().appName(), "Corvane");
  EXPECT_EQ(model().appNameSymbol(), "checkmark.circle.fill");
  EXPECT_EQ(text("appNameSymbol"), ui::SymbolGlyphs::glyphFor("checkmark.circle.fill"));
  EXPECT_EQ(value("entitiesRow"), "1 registered, 1 with changes");
  EXPECT_EQ(model().canSubmitSymbol(), "checkmark.circle.fill");

  type("versionField", ".");
  ASSERT_TRUE(eventually([&] { return model().versionSymbol() == "exclamationmark.circle.fill"; }));
  EXPECT_EQ(text("versionSymbol"), ui::SymbolGlyphs::glyphFor("exclamationmark.circle.fill"));
  EXPECT_EQ(model().subtitleSymbol(), "checkmark.circle.fill");
}

TEST_F(ShowcaseScreen, AddKeywordAddsChipsThatWrapIntoRows) {
  type("keywordField", "notes");
  click("addKeywordButton");
  ASSERT_TRUE(eventually([&] { return chips().size() == 1; }));
  EXPECT_EQ(text("keywordCount"), "Keywords: 1/100");
  EXPECT_EQ(text("keywordField"), "");
  EXPECT_EQ(model().appEntity().keywords(), std::vector<std::string>{"notes"});

  // Return in the field adds too; a duplicate and blanks add nothing.
  for (const char* keyword : {"notes", "   ", "productivity", "markdown", "journal", "sync", "writing"}) {
    type("keywordField", QString::fromUtf8(keyword));
    QTest::keyClick(&screen_.view(), Qt::Key_Return);
  }
  ASSERT_TRUE(eventually([&] { return chips().size() == 6; }));
  EXPECT_EQ(text("keywordCount"), "Keywords: 6/100");

  // Six chips are wider than the screen: once laid out, they wrap.
  const QQuickItem& flow = item("keywordChips");
  ASSERT_TRUE(eventually([&] {
    const auto all = chips();
    return std::any_of(all.begin(), all.end(), [](const QQuickItem* chip) { return chip->y() > 0; });
  }));
  const auto all = chips();
  EXPECT_EQ(all.front()->position(), QPointF(0, 0));
  for (const QQuickItem* chip : all) {
    EXPECT_LE(chip->x() + chip->width(), flow.width());
    EXPECT_EQ(chip->size(), QSizeF(chip->implicitWidth(), chip->implicitHeight()));
  }
  const QQuickItem* last = all.back();
  EXPECT_EQ(flow.implicitHeight(), last->y() + last->height());
  EXPECT_EQ(flow.height(), flow.implicitHeight());
}

TEST_F(ShowcaseScreen, TestCacheCountsOnTopOfEarlierCountersUntilTheLoopRuns) {
  ValidationCache& cache = ValidationCache::shared();
  // Earlier lookups, so that the counters the action starts from are not zero.
  for (int i = 0; i < 3; ++i) (void)model().appEntity().appNameProperty().validateCached();
  const std::int64_t hits = cache.cacheHits();
  const std::int64_t requests = cache.totalRequests();
  ASSERT_GE(requests, 3);
  ASSERT_TRUE(eventually([&] { return value("validationsRow") == QString::number(requests); }));
  lines_.clear();

  // Emitting the button's signal runs the action without spinning the event loop, so the
  // counters can be read before the clear's reset lands.
  QMetaObject::invokeMethod(&item("testCacheButton"), "clicked");

  // One miss after the clear, then ten hits, on top of the counters the clear resets later.
  const std::int64_t expectedHits = hits + 10;
  const std::int64_t expectedRequests = requests + 11;
  EXPECT_THAT(lines_.lines(), ElementsAre("🎯 Testing simple cache...",
                                          fmt::format("✨ Cache stats: {}/{} hits ({}%)", expectedHits, expectedRequests,
                                                      expectedHits * 100 / expectedRequests),
                                          "🎯 UI updates automatically - first principles!"));
  EXPECT_EQ(cache.totalRequests(), expectedRequests);

  ASSERT_TRUE(eventually([&] { return cache.totalRequests() == 0; }));
  EXPECT_EQ(cache.cacheHits(), 0);
  EXPECT_TRUE(eventually(
      [&] { return value("validationsRow") == "0" && value("cacheHitsRow") == "0" && value("hitRateRow") == "0.0%"; }));
  EXPECT_TRUE(eventually([&] { return value("cacheSizeRow") == "1"; }));  // the one entry stored after the clear
}

TEST_F(ShowcaseScreen, SubmitAllWithoutChangesReportsNothingToSubmit) {
  click("submitAllButton");
  EXPECT_TRUE(eventually([&] { return printed("❌ Submission failed: nothingToSubmit"); }));
}

TEST_F(ShowcaseScreen, SubmitAllSavesOnTheUserInterfaceLoopAcrossTheSaveDelay) {
  type("appNameField", "Corvane");
  ASSERT_TRUE(eventually([&] { return model().canSubmit(); }));
  click("submitAllButton");

  // The save sleeps on an Asio timer of the Qt-loop context before it finishes.
  ASSERT_TRUE(eventually([&] { return printed("🎉 All entities submitted successfully!"); }));
  EXPECT_THAT(lines_.lines(),
              IsSupersetOf({"💾 Saving Showcase App Entity...", "✅ Showcase App Entity saved successfully!"}));
  EXPECT_TRUE(eventually([&] { return value("changesRow") == "No changes"; }));
  EXPECT_EQ(text("appNameField"), "Corvane");
}

TEST_F(ShowcaseScreen, DiscardAllChangesRestoresTheFields) {
  type("appNameField", "Corvane");
  type("subtitleField", "Notes");
  type("keywordField", "notes");
  click("addKeywordButton");
  ASSERT_TRUE(eventually([&] { return chips().size() == 1 && text("appNameField") == "Corvane"; }));

  click("discardAllButton");

  EXPECT_TRUE(eventually([&] { return text("appNameField").isEmpty(); }));
  EXPECT_EQ(text("subtitleField"), "");
  EXPECT_EQ(text("versionField"), "1.0.0");
  EXPECT_TRUE(eventually([&] { return chips().empty(); }));
  EXPECT_EQ(value("changesRow"), "No changes");
  EXPECT_THAT(lines_.lines(), Contains("🔄 Discarding changes for Showcase App Entity..."));
}

class RuleLanguageScreen : public ScreenTest {
 protected:
  RuleLanguageScreen() : ScreenTest("TrackedValidationDSLDemoView") {}

  TrackedValidationDSLDemoModel& model() { return static_cast<TrackedValidationDSLDemoModel&>(screen_.model()); }
};

TEST_F(RuleLanguageScreen, EditingAFieldShowsItsVerdictAndTheCombinedImpact) {
  type("supportEmailField", "helpdesk");
  ASSERT_TRUE(eventually([&] { return text("supportEmailMessage") == "Support email should contain @"; }));
  EXPECT_EQ(model().supportEmailResult().value("symbol").toString(), "exclamationmark.triangle.fill");
  EXPECT_EQ(model().entity().supportEmail(), "helpdesk");

  type("supportEmailField", "@corvane.dev");
  ASSERT_TRUE(eventually([&] { return text("supportEmailMessage") != "Support email should contain @"; }));

  // The empty app name still decides the entity's verdict: a blocker outranks everything.
  EXPECT_EQ(text("businessImpact"), R"(Business Impact: blocker(reason: "Required field"))");
  EXPECT_EQ(text("overallMessage"), "Field is required");
}

}  // namespace
}  // namespace corvane::demo
