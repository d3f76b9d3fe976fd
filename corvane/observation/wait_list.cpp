#include "corvane/observation/wait_list.hpp"

#include "corvane/observation/pending_change.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

namespace corvane::detail {

void WaitList::add(std::shared_ptr<PendingChange> change) {
  std::lock_guard lock(mutex_);
  waiting_.push_back(std::move(change));
}

std::vector<std::shared_ptr<PendingChange>> WaitList::takeAll() {
  std::lock_guard lock(mutex_);
  firedElsewhere_ = 0;
  return std::exchange(waiting_, {});
}

void WaitList::noteFiredElsewhere() {
  std::vector<std::shared_ptr<PendingChange>> dropped;  // released outside the lock
  std::lock_guard lock(mutex_);
  ++firedElsewhere_;
  if (firedElsewhere_ * 2 < waiting_.size()) return;
  firedElsewhere_ = 0;
  auto spent =
      std::stable_partition(waiting_.begin(), waiting_.end(), [](const auto& change) { return !change->fired(); });
  dropped.assign(std::make_move_iterator(spent), std::make_move_iterator(waiting_.end()));
  waiting_.erase(spent, waiting_.end());
  if (waiting_.capacity() > 2 * waiting_.size() + 16) waiting_.shrink_to_fit();
}

std::size_t WaitList::size() {
  std::lock_guard lock(mutex_);
  return waiting_.size();
}

}  // namespace corvane::detail
