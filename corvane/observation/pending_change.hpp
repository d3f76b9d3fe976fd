#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

namespace corvane::detail {

class WaitList;

/// A finished tracking scope waiting for the first announced write of any key it read.
/// Each key of a registrar keeps the scopes waiting for it in a `WaitList`; the first
/// announcement of any of them fires the scope, and the lists of its other keys drop it
/// soon after, so that a scope that can no longer fire costs nothing for long: a scope
/// lives while it can still fire, that is until it fires or every object it waits on is
/// destroyed. Internal to the observation facility; not installed.
class PendingChange {
 public:
  /// A scope that calls `onChange` when it fires, waiting on `lists` (one per key read).
  /// It is not yet in any list: `WaitList::add` it to each.
  PendingChange(std::function<void()> onChange, std::vector<std::weak_ptr<WaitList>> lists);
  ~PendingChange();
  PendingChange(const PendingChange&) = delete;
  PendingChange& operator=(const PendingChange&) = delete;

  /// Fires the scope unless it already fired: tells its lists other than `from` and then
  /// calls (and releases) its handler, on this thread.
  void fire(const WaitList* from);
  /// Whether the scope has fired.
  bool fired() const noexcept { return fired_.load(std::memory_order_acquire); }

  /// How many scopes exist in the process: a test hook for reclamation.
  static std::size_t liveCount() noexcept;

 private:
  std::atomic<bool> fired_{false};
  std::function<void()> onChange_;
  const std::vector<std::weak_ptr<WaitList>> lists_;
};

}  // namespace corvane::detail
