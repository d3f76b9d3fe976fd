#pragma once

#include "corvane/observation/observation_connection.hpp"

#include <atomic>
#include <functional>
#include <memory>
#include <string_view>
#include <type_traits>

namespace corvane {

class ObservationSignal;
namespace detail {
class WaitList;
}

/// The observer registry of one observable object. Each observed property is a key (its
/// name); the object reports reads with `access` and writes with `withMutation` (or the
/// `willSet`/`didSet` pair). Announcements are synchronous on the writing thread.
///
/// Storage for observers is created on first use, so an object nobody observes pays one
/// pointer. The registrar is thread-safe: objects that are written from several threads
/// (the validation cache) may announce concurrently.
class ObservationRegistrar {
 public:
  ObservationRegistrar() noexcept = default;
  ~ObservationRegistrar();
  ObservationRegistrar(const ObservationRegistrar&) = delete;
  ObservationRegistrar& operator=(const ObservationRegistrar&) = delete;

  /// Records a read of `key` for every `withObservationTracking` running on this thread.
  void access(std::string_view key) const;

  /// Whether anything may hear this registrar's announcements: false until the first
  /// `observe`, `objectWillChange()` or read recorded by a `withObservationTracking` scope,
  /// true from then on. One atomic load, so that a writer may skip announcements nobody
  /// can hear; such a writer changes its value before asking, so that a reader arriving
  /// meanwhile either reads the new value or is announced to.
  bool mayBeObserved() const noexcept { return storage_.load() != nullptr; }

  /// Announces that `key` is about to change: fires `objectWillChange`, then the pending
  /// change handlers of tracking scopes that read `key`.
  void willSet(std::string_view key);

  /// Announces that `key` has changed: calls the callbacks given to `observe(key, ...)`.
  void didSet(std::string_view key);

  /// Announces a write of `key` around `mutation` (will-set, mutation, did-set) and returns
  /// what `mutation` returns. The did-set announcement is made even when `mutation` throws.
  /// An exception from an observer reaches the writer, after the write.
  template <class Mutation>
  decltype(auto) withMutation(std::string_view key, Mutation&& mutation) {
    willSet(key);
    // Did-set is announced outside any destructor: an observer that throws from a
    // destructor would end the process.
    auto mutate = [&]() -> decltype(auto) {
      try {
        return std::forward<Mutation>(mutation)();
      } catch (...) {
        didSet(key);
        throw;
      }
    };
    if constexpr (std::is_void_v<decltype(mutate())>) {
      mutate();
      didSet(key);
    } else {
      decltype(auto) result = mutate();
      didSet(key);
      return result;
    }
  }

  /// Calls `callback` after every announced write of `key` (on the writing thread) until
  /// the returned connection is destroyed or disconnected; disconnecting waits for a call
  /// running on another thread.
  [[nodiscard]] ObservationConnection observe(std::string_view key, std::function<void()> callback);

  /// Fired before every announced write, whatever the key. Include
  /// "corvane/observation/observation_signal.hpp" to connect to it.
  ObservationSignal& objectWillChange();

  /// The tracking scopes waiting for the next will-set announcement of `key`; used by
  /// `withObservationTracking`.
  std::shared_ptr<detail::WaitList> waitList(std::string_view key);

 private:
  struct Storage;
  // Created on first use, also by a const read that a tracking scope records.
  Storage& storage() const;
  mutable std::atomic<Storage*> storage_{nullptr};
};

/// Base of observable classes: owns the registrar and offers the observer-facing half of
/// its interface. Reads through a const object still record accesses.
class Observable {
 public:
  /// The object's registrar.
  ObservationRegistrar& observationRegistrar() const noexcept { return registrar_; }

  /// See `ObservationRegistrar::observe`.
  [[nodiscard]] ObservationConnection observe(std::string_view key, std::function<void()> callback) const {
    return registrar_.observe(key, std::move(callback));
  }

  /// See `ObservationRegistrar::objectWillChange`.
  ObservationSignal& objectWillChange() const { return registrar_.objectWillChange(); }

 protected:
  Observable() = default;
  ~Observable() = default;
  Observable(const Observable&) = delete;
  Observable& operator=(const Observable&) = delete;

 private:
  mutable ObservationRegistrar registrar_;
};

}  // namespace corvane
