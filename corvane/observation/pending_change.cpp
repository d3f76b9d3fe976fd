#include "corvane/observation/pending_change.hpp"

#include "corvane/observation/wait_list.hpp"

namespace corvane::detail {
namespace {

std::atomic<std::size_t> liveChanges{0};

}  // namespace

PendingChange::PendingChange(std::function<void()> onChange, std::vector<std::weak_ptr<WaitList>> lists)
    : onChange_(std::move(onChange)), lists_(std::move(lists)) {
  liveChanges.fetch_add(1, std::memory_order_relaxed);
}

PendingChange::~PendingChange() {
  liveChanges.fetch_sub(1, std::memory_order_relaxed);
}

void PendingChange::fire(const WaitList* from) {
  if (fired_.exchange(true, std::memory_order_acq_rel)) return;
  // Only the thread that fired touches the handler from here on.
  auto handler = std::move(onChange_);
  for (const auto& weak : lists_) {
    if (auto list = weak.lock(); list && list.get() != from) list->noteFiredElsewhere();
  }
  if (handler) handler();
}

std::size_t PendingChange::liveCount() noexcept {
  return liveChanges.load(std::memory_order_relaxed);
}

}  // namespace corvane::detail
