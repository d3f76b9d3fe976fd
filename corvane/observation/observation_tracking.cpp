#include "corvane/observation/observation_tracking.hpp"

#include "corvane/observation/observation_registrar.hpp"
#include "corvane/observation/pending_change.hpp"
#include "corvane/observation/wait_list.hpp"

#include <algorithm>
#include <atomic>
#include <memory>

namespace corvane::detail {
namespace {

thread_local AccessRecorder* innermostRecorder = nullptr;

// Recorders on every thread. While there are none, which is most of the time, a read need
// not look up its thread's recorder: thread-local storage costs dozens of instructions in a
// shared library. A thread that made a recorder sees its own count.
std::atomic<int> recordersRecording{0};

}  // namespace

AccessRecorder::AccessRecorder() : enclosing_(innermostRecorder) {
  innermostRecorder = this;
  recordersRecording.fetch_add(1, std::memory_order_relaxed);
}

AccessRecorder::~AccessRecorder() {
  stop();
}

void AccessRecorder::stop() noexcept {
  if (!recording_) return;
  recording_ = false;
  innermostRecorder = enclosing_;
  recordersRecording.fetch_sub(1, std::memory_order_relaxed);
  // What an inner scope read, the enclosing scope read too.
  if (enclosing_) {
    enclosing_->accesses_.insert(enclosing_->accesses_.end(), accesses_.begin(), accesses_.end());
  }
}

void AccessRecorder::finish(std::function<void()> onChange) {
  stop();
  std::sort(accesses_.begin(), accesses_.end());
  accesses_.erase(std::unique(accesses_.begin(), accesses_.end()), accesses_.end());
  if (accesses_.empty()) return;

  // The scope knows all its lists before it joins the first, where a write on another
  // thread may fire it at once.
  std::vector<std::shared_ptr<WaitList>> lists;
  lists.reserve(accesses_.size());
  for (auto& [registrar, key] : accesses_) lists.push_back(registrar->waitList(key));
  auto pending = std::make_shared<PendingChange>(std::move(onChange),
                                                 std::vector<std::weak_ptr<WaitList>>(lists.begin(), lists.end()));
  for (auto& list : lists) {
    if (pending->fired()) break;  // a write on another thread was quicker
    list->add(pending);
  }
}

bool AccessRecorder::recordAccess(const ObservationRegistrar& registrar, std::string_view key) {
  if (recordersRecording.load(std::memory_order_relaxed) == 0) return false;
  if (!innermostRecorder) return false;
  innermostRecorder->accesses_.emplace_back(const_cast<ObservationRegistrar*>(&registrar), std::string(key));
  return true;
}

void AccessRecorder::forgetRegistrar(const ObservationRegistrar& registrar) noexcept {
  if (recordersRecording.load(std::memory_order_relaxed) == 0) return;
  for (AccessRecorder* recorder = innermostRecorder; recorder; recorder = recorder->enclosing_) {
    std::erase_if(recorder->accesses_, [&](const auto& access) { return access.first == &registrar; });
  }
}

}  // namespace corvane::detail
