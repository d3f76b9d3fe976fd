#include "corvane/observation/observation_tracking.hpp"

#include "corvane/observation/observation_registrar.hpp"

#include <algorithm>
#include <memory>
#include <mutex>

namespace corvane::detail {
namespace {

thread_local AccessRecorder* innermostRecorder = nullptr;

// Shared by every handler one tracking scope installs: the first announcement wins, calls
// the change handler and disconnects the rest.
struct PendingChange {
  std::mutex mutex;
  bool fired = false;
  std::function<void()> onChange;
  std::vector<boost::signals2::connection> connections;

  void fire() {
    std::function<void()> handler;
    {
      std::lock_guard lock(mutex);
      if (fired) return;
      fired = true;
      handler = std::move(onChange);
      for (auto& connection : connections) connection.disconnect();
      connections.clear();
    }
    if (handler) handler();
  }
};

}  // namespace

AccessRecorder::AccessRecorder() : enclosing_(innermostRecorder) {
  innermostRecorder = this;
}

AccessRecorder::~AccessRecorder() {
  stop();
}

void AccessRecorder::stop() noexcept {
  if (!recording_) return;
  recording_ = false;
  innermostRecorder = enclosing_;
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

  auto pending = std::make_shared<PendingChange>();
  pending->onChange = std::move(onChange);
  std::lock_guard lock(pending->mutex);
  for (auto& [registrar, key] : accesses_) {
    pending->connections.push_back(registrar->onWillSet(key, [pending] { pending->fire(); }));
  }
}

void AccessRecorder::recordAccess(const ObservationRegistrar& registrar, std::string_view key) {
  if (!innermostRecorder) return;
  innermostRecorder->accesses_.emplace_back(const_cast<ObservationRegistrar*>(&registrar), std::string(key));
}

void AccessRecorder::forgetRegistrar(const ObservationRegistrar& registrar) noexcept {
  for (AccessRecorder* recorder = innermostRecorder; recorder; recorder = recorder->enclosing_) {
    std::erase_if(recorder->accesses_, [&](const auto& access) { return access.first == &registrar; });
  }
}

}  // namespace corvane::detail
