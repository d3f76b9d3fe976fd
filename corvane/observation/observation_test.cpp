#include "corvane/observation/observation_registrar.hpp"
#include "corvane/observation/observation_signal.hpp"
#include "corvane/observation/observation_tracking.hpp"
#include "corvane/observation/pending_change.hpp"
#include "corvane/observation/wait_list.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace corvane {
namespace {

// A minimal observable with two properties, written the way library classes write theirs.
class Box : public Observable {
 public:
  int width() const {
    observationRegistrar().access("width");
    return width_;
  }
  void setWidth(int value) {
    observationRegistrar().withMutation("width", [&] { width_ = value; });
  }
  int height() const {
    observationRegistrar().access("height");
    return height_;
  }
  void setHeight(int value) {
    observationRegistrar().withMutation("height", [&] { height_ = value; });
  }

 private:
  int width_ = 0;
  int height_ = 0;
};

TEST(ObservationTracking, FiresOnceBeforeTheFirstWriteToAKeyThatWasRead) {
  Box box;
  int calls = 0;
  int widthSeenByHandler = -1;
  int seen = withObservationTracking([&] { return box.width(); },
                                     [&] {
                                       ++calls;
                                       widthSeenByHandler = box.width();
                                     });
  EXPECT_EQ(seen, 0);
  EXPECT_EQ(calls, 0);

  box.setWidth(5);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(widthSeenByHandler, 0) << "the handler runs before the store";

  box.setWidth(6);
  EXPECT_EQ(calls, 1) << "tracking is one-shot";
}

TEST(ObservationTracking, IgnoresKeysThatWereNotRead) {
  Box box;
  int calls = 0;
  withObservationTracking([&] { (void)box.width(); }, [&] { ++calls; });
  box.setHeight(3);
  EXPECT_EQ(calls, 0);
  box.setWidth(3);
  EXPECT_EQ(calls, 1);
}

TEST(ObservationTracking, EqualWritesAreStillAnnounced) {
  Box box;
  int calls = 0;
  withObservationTracking([&] { (void)box.width(); }, [&] { ++calls; });
  box.setWidth(0);
  EXPECT_EQ(calls, 1);
}

TEST(ObservationTracking, ReadsOfSeveralObjectsShareOneHandler) {
  Box first;
  Box second;
  int calls = 0;
  withObservationTracking(
      [&] {
        (void)first.width();
        (void)second.height();
        (void)second.height();
      },
      [&] { ++calls; });
  second.setHeight(1);
  first.setWidth(1);
  second.setHeight(2);
  EXPECT_EQ(calls, 1);
}

TEST(ObservationTracking, NestedScopesReportInnerReadsToTheOuterScope) {
  Box box;
  int outer = 0;
  int inner = 0;
  withObservationTracking([&] { withObservationTracking([&] { (void)box.height(); }, [&] { ++inner; }); },
                          [&] { ++outer; });
  box.setHeight(9);
  EXPECT_EQ(inner, 1);
  EXPECT_EQ(outer, 1);
}

TEST(ObservationTracking, NothingReadMeansNothingFires) {
  Box box;
  int calls = 0;
  withObservationTracking([] {}, [&] { ++calls; });
  box.setWidth(1);
  EXPECT_EQ(calls, 0);
}

TEST(ObservationTracking, ReadsOutsideAScopeAreNotRecorded) {
  Box box;
  (void)box.width();  // no scope: must not leak into the next one
  int calls = 0;
  withObservationTracking([&] { (void)box.height(); }, [&] { ++calls; });
  box.setWidth(2);
  EXPECT_EQ(calls, 0);
}

TEST(ObservationTracking, AnObjectDestroyedInsideTheScopeIsForgotten) {
  Box survivor;
  int calls = 0;
  withObservationTracking(
      [&] {
        auto temporary = std::make_unique<Box>();
        (void)temporary->width();
        (void)survivor.width();
      },
      [&] { ++calls; });
  survivor.setWidth(4);
  EXPECT_EQ(calls, 1);
}

TEST(ObservationTracking, AnObjectDestroyedAfterTheScopeNeverFires) {
  int calls = 0;
  {
    Box box;
    withObservationTracking([&] { (void)box.width(); }, [&] { ++calls; });
  }
  EXPECT_EQ(calls, 0);
}

TEST(ObservationTracking, AThrowingScopeInstallsNothing) {
  Box box;
  int calls = 0;
  EXPECT_THROW(withObservationTracking(
                   [&]() -> int {
                     (void)box.width();
                     throw std::runtime_error("boom");
                   },
                   [&] { ++calls; }),
               std::runtime_error);
  box.setWidth(1);
  EXPECT_EQ(calls, 0);
}

// A scope lives while it can still fire: until it fires, or until every object it waits on
// is gone. Nothing of it stays behind on a key that never changes.
TEST(ObservationTracking, ScopesAreReclaimedOnceTheyCanNoLongerFire) {
  constexpr std::size_t kScopes = 1000;
  const auto live = [base = detail::PendingChange::liveCount()] { return detail::PendingChange::liveCount() - base; };
  Box kept;

  for (std::size_t i = 0; i < kScopes; ++i)
    withObservationTracking([&] { return kept.width() + kept.height(); }, [] {});
  EXPECT_EQ(live(), kScopes);
  kept.setWidth(1);
  EXPECT_EQ(live(), 0u) << "fired through width";
  EXPECT_EQ(kept.observationRegistrar().waitList("height")->size(), 0u) << "left behind on height";

  {
    Box gone;
    for (std::size_t i = 0; i < kScopes; ++i) withObservationTracking([&] { return gone.width(); }, [] {});
    EXPECT_EQ(live(), kScopes);
  }
  EXPECT_EQ(live(), 0u) << "waiting only on a destroyed object";

  std::size_t calls = 0;
  {
    Box gone;
    for (std::size_t i = 0; i < kScopes; ++i) {
      withObservationTracking([&] { return gone.width() + kept.height(); }, [&] { ++calls; });
    }
  }
  EXPECT_EQ(live(), kScopes) << "still waiting on a live object";
  kept.setHeight(2);
  EXPECT_EQ(calls, kScopes);
  EXPECT_EQ(live(), 0u);
}

// Every scope waiting for a key fires, also after an earlier handler threw.
TEST(ObservationTracking, AThrowingHandlerDoesNotKeepTheOthersFromFiring) {
  Box box;
  int calls = 0;
  withObservationTracking([&] { return box.width(); }, [] { throw std::runtime_error("handler failed"); });
  withObservationTracking([&] { return box.width(); }, [&] { ++calls; });
  EXPECT_THROW(box.setWidth(1), std::runtime_error);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(box.width(), 0) << "a handler that throws stops the write";
}

TEST(ObservationObserve, CallsBackAfterEveryWriteOfItsKey) {
  Box box;
  std::vector<int> seen;
  auto connection = box.observe("width", [&] { seen.push_back(box.width()); });
  box.setWidth(1);
  box.setHeight(7);
  box.setWidth(1);
  box.setWidth(2);
  EXPECT_EQ(seen, (std::vector<int>{1, 1, 2}));
}

TEST(ObservationObserve, ADroppedConnectionNoLongerFires) {
  Box box;
  int calls = 0;
  {
    auto connection = box.observe("width", [&] { ++calls; });
    box.setWidth(1);
  }
  box.setWidth(2);
  EXPECT_EQ(calls, 1);

  auto connection = box.observe("width", [&] { ++calls; });
  connection.disconnect();
  box.setWidth(3);
  EXPECT_EQ(calls, 1);
}

TEST(ObservationObserve, AConnectionMayOutliveItsObject) {
  ObservationConnection connection;
  {
    Box box;
    connection = box.observe("width", [] {});
  }
  connection.disconnect();  // must not touch the destroyed registrar
  EXPECT_FALSE(connection.connected());
}

TEST(ObservationObjectWillChange, FiresBeforeEveryAnnouncedWrite) {
  Box box;
  std::vector<std::pair<int, int>> before;
  auto connection = box.objectWillChange().connect([&] { before.emplace_back(box.width(), box.height()); });
  box.setWidth(1);
  box.setHeight(2);
  box.setHeight(2);
  EXPECT_EQ(before, (std::vector<std::pair<int, int>>{{0, 0}, {1, 0}, {1, 2}}));
}

TEST(ObservationRegistrarMutation, ReturnsTheMutationsResultAndAnnouncesAThrowingWrite) {
  ObservationRegistrar registrar;
  int didSet = 0;
  auto connection = registrar.observe("k", [&] { ++didSet; });
  EXPECT_EQ(registrar.withMutation("k", [] { return 42; }), 42);
  EXPECT_THROW(registrar.withMutation("k", []() -> int { throw std::logic_error("no"); }), std::logic_error);
  EXPECT_EQ(didSet, 2);
}

TEST(ObservationRegistrarMutation, AnObserverThatThrowsReachesTheWriterAfterTheWrite) {
  Box box;
  auto connection = box.observationRegistrar().observe("width", [&] {
    if (box.width() == 7) throw std::runtime_error("observer refused 7");
  });
  EXPECT_THROW(box.setWidth(7), std::runtime_error);
  EXPECT_EQ(box.width(), 7);
  box.setWidth(8);  // the registrar is still usable
  EXPECT_EQ(box.width(), 8);
}

// A writer may skip announcements only while nothing can hear them: every way of listening
// counts from its start (a tracking scope from its first read, before it finishes), while
// reads outside a scope and writes do not.
TEST(ObservationRegistrarMayBeObserved, TurnsTrueWithTheFirstListenerOnly) {
  struct Case {
    const char* name;
    std::function<void(Box&)> use;
    bool observed;
  };
  const Case cases[] = {
      {"nothing", [](Box&) {}, false},
      {"reads and writes outside a scope",
       [](Box& box) {
         (void)box.width();
         box.setWidth(3);
       },
       false},
      {"an observer, also once dropped", [](Box& box) { auto connection = box.observe("width", [] {}); }, true},
      {"objectWillChange", [](Box& box) { auto connection = box.objectWillChange().connect([] {}); }, true},
      {"a tracking scope, from its first read on",
       [](Box& box) {
         withObservationTracking(
             [&] {
               (void)box.width();
               EXPECT_TRUE(box.observationRegistrar().mayBeObserved()) << "before the scope finishes";
             },
             [] {});
       },
       true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Box box;
    c.use(box);
    EXPECT_EQ(box.observationRegistrar().mayBeObserved(), c.observed);
  }
}
}  // namespace
}  // namespace corvane
