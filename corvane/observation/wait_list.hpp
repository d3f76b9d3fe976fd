#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

namespace corvane::detail {

class PendingChange;

/// The tracking scopes waiting for one key of one registrar. Thread-safe. Internal to the
/// observation facility; not installed.
class WaitList {
 public:
  /// Adds a scope that waits for this key.
  void add(std::shared_ptr<PendingChange> change);
  /// Removes and returns every waiting scope: an announcement fires them all.
  std::vector<std::shared_ptr<PendingChange>> takeAll();
  /// Told by a scope that fired through another key: once at least half of the list has,
  /// the fired scopes are dropped, so that the clean-up costs O(1) per scope.
  void noteFiredElsewhere();
  /// The number of scopes held, fired or not.
  std::size_t size();

 private:
  std::mutex mutex_;
  std::vector<std::shared_ptr<PendingChange>> waiting_;
  std::size_t firedElsewhere_ = 0;
};

}  // namespace corvane::detail
