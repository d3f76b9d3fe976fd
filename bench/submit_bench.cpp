// What submitting every changed entity at once costs beside the least a host could do: one
// coroutine that awaits each entity's save in turn. Both run on an io_context driven to
// completion per iteration, over 1k, 10k and 100k entities.
#include "corvane/tracking/tracked.hpp"
#include "corvane/tracking/unified_change_tracker.hpp"

#include <boost/asio/awaitable.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <vector>

namespace {

// A minimal entity: one tracked field, and a save that marks it saved without suspending,
// so that what is measured is the submitting, not the saving.
class NoteEntity final : public corvane::TrackableEntity {
 public:
  explicit NoteEntity(std::string id) : id_(std::move(id)) {}

  std::string entityId() const override { return id_; }
  std::string entityName() const override { return "Note " + id_; }
  bool hasUnsavedChanges() const override { return title.hasChanged(); }
  std::string changeDescription() const override { return title.changeDescription(); }
  corvane::ValidationResult validationResult() const override { return title.validationResult(); }
  boost::asio::awaitable<void> saveChanges() override {
    title.markSaved();
    co_return;
  }
  void discardChanges() override { title.discardChanges(); }

  corvane::Tracked<std::string> title{""};

 private:
  std::string id_;
};

struct Fixture {
  explicit Fixture(std::int64_t count)
      : tracker(std::make_shared<corvane::UnifiedChangeTracker>(
            corvane::UnifiedChangeTracker::Configuration{count, false})) {
    entities.reserve(static_cast<std::size_t>(count));
    for (std::int64_t i = 0; i < count; ++i) {
      entities.push_back(std::make_shared<NoteEntity>("note-" + std::to_string(i)));
      tracker->register_(entities.back());
    }
  }

  // Outside the timed region: every entity gets an unsaved edit again.
  void editAll(benchmark::State& state) {
    state.PauseTiming();
    edit = edit == "a" ? "b" : "a";
    for (const auto& entity : entities) entity->title.setWrappedValue(edit);
    state.ResumeTiming();
  }

  // Runs `operation` on the io_context until nothing is left to do; a failure ends the run.
  void run(benchmark::State& state, boost::asio::awaitable<void> operation) {
    std::exception_ptr failure;
    boost::asio::co_spawn(context, std::move(operation), [&](std::exception_ptr error) { failure = error; });
    context.restart();
    context.run();
    if (failure) state.SkipWithError("the submit failed");
  }

  void checkAllSaved(benchmark::State& state) const {
    for (const auto& entity : entities) {
      if (entity->hasUnsavedChanges()) {
        state.SkipWithError("an entity was not saved");
        return;
      }
    }
  }

  boost::asio::io_context context;
  std::shared_ptr<corvane::UnifiedChangeTracker> tracker;
  std::vector<std::shared_ptr<NoteEntity>> entities;
  std::string edit = "a";
};

void SubmitAll(benchmark::State& state) {
  Fixture fixture(state.range(0));
  for (auto _ : state) {
    fixture.editAll(state);
    fixture.run(state, fixture.tracker->submitAll());
  }
  fixture.checkAllSaved(state);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(SubmitAll)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

// The same entities saved one after another by one coroutine: no checks, no concurrency.
boost::asio::awaitable<void> saveEach(const std::vector<std::shared_ptr<NoteEntity>>& entities) {
  for (const auto& entity : entities) co_await entity->saveChanges();
}

void PlainSaveLoopBaseline(benchmark::State& state) {
  Fixture fixture(state.range(0));
  for (auto _ : state) {
    fixture.editAll(state);
    fixture.run(state, saveEach(fixture.entities));
  }
  fixture.checkAllSaved(state);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(PlainSaveLoopBaseline)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

}  // namespace
