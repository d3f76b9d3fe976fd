#include "corvane/observation/observation_registrar.hpp"

#include "corvane/observation/observation_signal.hpp"
#include "corvane/observation/observation_tracking.hpp"
#include "corvane/observation/pending_change.hpp"
#include "corvane/observation/wait_list.hpp"

#include <exception>

#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace corvane {

struct ObservationRegistrar::Storage {
  struct KeySignals {
    // Allocated apart from its control block: a scope still waiting on another object
    // keeps only the control block of a destroyed registrar's list.
    std::shared_ptr<detail::WaitList> willSet{new detail::WaitList};
    ObservationSignal didSet;
  };

  // Signals live behind shared pointers so that they can be fired outside the lock while
  // another thread adds a key.
  std::shared_ptr<KeySignals> find(std::string_view key) {
    std::lock_guard lock(mutex);
    auto found = keys.find(key);
    return found == keys.end() ? nullptr : found->second;
  }

  std::shared_ptr<KeySignals> findOrCreate(std::string_view key) {
    std::lock_guard lock(mutex);
    auto found = keys.find(key);
    if (found != keys.end()) return found->second;
    return keys.emplace(std::string(key), std::make_shared<KeySignals>()).first->second;
  }

  std::mutex mutex;
  std::map<std::string, std::shared_ptr<KeySignals>, std::less<>> keys;
  ObservationSignal objectWillChange;
};

ObservationRegistrar::~ObservationRegistrar() {
  detail::AccessRecorder::forgetRegistrar(*this);
  delete storage_.load(std::memory_order_acquire);
}

ObservationRegistrar::Storage& ObservationRegistrar::storage() const {
  Storage* existing = storage_.load(std::memory_order_acquire);
  if (existing) return *existing;
  auto created = std::make_unique<Storage>();
  // Sequentially consistent, as `mayBeObserved` is: a writer that changed its value and
  // then found no storage is seen by the reader that created it.
  if (storage_.compare_exchange_strong(existing, created.get())) {
    return *created.release();
  }
  return *existing;  // another thread won the race
}

void ObservationRegistrar::access(std::string_view key) const {
  // A tracking scope listens from its first read, not only once it finishes: a writer
  // asking `mayBeObserved` in between must announce.
  if (detail::AccessRecorder::recordAccess(*this, key)) storage();
}

void ObservationRegistrar::willSet(std::string_view key) {
  Storage* storage = storage_.load(std::memory_order_acquire);
  if (!storage) return;
  storage->objectWillChange();
  auto signals = storage->find(key);
  if (!signals) return;
  // Every scope waiting for the key fires, also when one of their handlers throws.
  std::exception_ptr failure;
  for (const auto& change : signals->willSet->takeAll()) {
    try {
      change->fire(signals->willSet.get());
    } catch (...) {
      if (!failure) failure = std::current_exception();
    }
  }
  if (failure) std::rethrow_exception(failure);
}

void ObservationRegistrar::didSet(std::string_view key) {
  Storage* storage = storage_.load(std::memory_order_acquire);
  if (!storage) return;
  if (auto signals = storage->find(key)) signals->didSet();
}

ObservationConnection ObservationRegistrar::observe(std::string_view key, std::function<void()> callback) {
  return storage().findOrCreate(key)->didSet.connect(std::move(callback));
}

std::shared_ptr<detail::WaitList> ObservationRegistrar::waitList(std::string_view key) {
  return storage().findOrCreate(key)->willSet;
}

ObservationSignal& ObservationRegistrar::objectWillChange() {
  return storage().objectWillChange;
}

}  // namespace corvane
