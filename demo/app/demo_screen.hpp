#pragma once

#include "ui/qt/symbol_glyphs.hpp"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtGui/QImage>
#include <QtQuick/QQuickView>

#include <memory>

namespace corvane::demo {

/// One demonstration screen in its own window: its view model (the QML context property
/// `demo`), the symbol glyphs (`symbols`) and the QML scene. The application shows it;
/// tests and the screenshot option drive it headless.
class DemoScreen final {
 public:
  /// "NewChangeTrackingDemo" and "TrackedValidationDSLDemoView".
  static QStringList names();

  /// Loads the named screen; throws `std::invalid_argument` for an unknown name and
  /// `std::runtime_error` when the scene does not load.
  explicit DemoScreen(const QString& name, int width = 460);

  DemoScreen(const DemoScreen&) = delete;
  DemoScreen& operator=(const DemoScreen&) = delete;

  /// The screen's view model.
  QObject& model() { return *model_; }
  /// The window that shows the screen.
  QQuickView& view() { return view_; }
  /// The item with this object name inside the screen, or null.
  QQuickItem* find(const QString& objectName) const;
  /// The whole screen, grown to its content's height, rendered into an image.
  QImage render();

 private:
  std::unique_ptr<QObject> model_;
  ui::SymbolGlyphs symbols_;
  QQuickView view_;  // last, so the scene goes before what it refers to
};

}  // namespace corvane::demo
