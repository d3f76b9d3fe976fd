#pragma once

#include <pthread.h>

namespace corvane::detail {

/// A mutex for critical sections of a few dozen nanoseconds that threads often want at
/// once: a thread that finds it held spins a little before it sleeps, which hands it over
/// faster than a mutex that sleeps at once. Meets the standard's `Lockable` requirements
/// (for `std::lock_guard`, `std::unique_lock` and the like); like `std::mutex`, it is neither
/// recursive nor movable, and `lock` throws `std::system_error` when the system refuses.
class AdaptiveMutex {
 public:
  AdaptiveMutex();
  ~AdaptiveMutex();
  AdaptiveMutex(const AdaptiveMutex&) = delete;
  AdaptiveMutex& operator=(const AdaptiveMutex&) = delete;

  // Inline: a call costs a good part of a short critical section.
  void lock() {
    if (const int error = pthread_mutex_lock(&mutex_); error != 0) [[unlikely]] throwLockError(error);
  }
  /// Takes the mutex if it is free; returns whether it did.
  bool try_lock() noexcept { return pthread_mutex_trylock(&mutex_) == 0; }
  void unlock() noexcept { pthread_mutex_unlock(&mutex_); }

 private:
  [[noreturn]] static void throwLockError(int error);

  pthread_mutex_t mutex_;
};

}  // namespace corvane::detail
