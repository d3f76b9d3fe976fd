#include "ui/qt/observation_bridge.hpp"

#include "corvane/observation/observation_tracking.hpp"

#include <QtCore/QMetaObject>

#include <mutex>

namespace corvane::ui {

// What a pending change handler holds: the bridge may be gone by the time a write fires
// it, and writes may come from another thread (the cache's counters).
struct ObservationBridge::Link {
  std::mutex mutex;
  ObservationBridge* bridge;
  bool refreshQueued = false;
};

ObservationBridge::ObservationBridge(std::function<void()> read, QObject* parent)
    : QObject(parent), read_(std::move(read)), link_(std::make_shared<Link>()) {
  link_->bridge = this;
  arm();
}

ObservationBridge::~ObservationBridge() {
  std::lock_guard lock(link_->mutex);
  link_->bridge = nullptr;
}

void ObservationBridge::arm() {
  withObservationTracking(read_, [link = link_] {
    // The handler runs before the write lands: re-read only once the loop comes round.
    std::lock_guard lock(link->mutex);
    if (link->bridge == nullptr || link->refreshQueued) return;
    link->refreshQueued = true;
    QMetaObject::invokeMethod(link->bridge, &ObservationBridge::refresh, Qt::QueuedConnection);
  });
}

void ObservationBridge::refresh() {
  {
    std::lock_guard lock(link_->mutex);
    link_->refreshQueued = false;
  }
  arm();
  Q_EMIT changed();
}

}  // namespace corvane::ui
