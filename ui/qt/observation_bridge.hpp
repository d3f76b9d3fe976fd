#pragma once

#include <QtCore/QObject>

#include <functional>
#include <memory>

namespace corvane::ui {

/// Turns the library's observation into a Qt signal: it runs `read` (everything a view
/// shows) under `withObservationTracking` and emits `changed()` on the event loop after
/// the first write to anything read, re-arming for the next one. No polling: it sleeps
/// until a write is announced.
class ObservationBridge final : public QObject {
  Q_OBJECT

 public:
  /// Starts observing what `read` reads; `read` runs now and after every change.
  explicit ObservationBridge(std::function<void()> read, QObject* parent = nullptr);
  ~ObservationBridge() override;

 Q_SIGNALS:
  /// Something read has been written; emitted once per burst of writes, after them.
  void changed();

 private:
  struct Link;

  void arm();
  void refresh();

  std::function<void()> read_;
  std::shared_ptr<Link> link_;
};

}  // namespace corvane::ui
