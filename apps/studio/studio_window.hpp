#pragma once

#include "appearance.hpp"
#include "listing_document.hpp"
#include "recent_folders.hpp"

#include "ui/qt/symbol_glyphs.hpp"

#include <QtCore/QString>
#include <QtGui/QImage>
#include <QtQml/QQmlApplicationEngine>

class QQuickItem;
class QQuickWindow;

namespace corvane::studio {

/// How a studio window starts.
struct StudioOptions {
  /// "light", "dark", or empty to follow the system.
  QString appearance;
  /// Where the recent folders are kept; empty for the user's settings.
  QString settingsFile;
  /// The window's first size.
  int width = 1280;
  int height = 800;
};

/// The editor's main window: the QML scene with its document, appearance, recent folders
/// and symbol glyphs as context properties (`studio`, `appearance`, `recentFolders`,
/// `symbols`). Every folder the document opens joins the recent folders. The program shows one; tests and benchmarks
/// drive one the same way.
class StudioWindow final {
 public:
  /// Loads the scene; throws `std::runtime_error` when it does not load.
  explicit StudioWindow(const StudioOptions& options = {});
  StudioWindow(const StudioWindow&) = delete;
  StudioWindow& operator=(const StudioWindow&) = delete;
  ~StudioWindow();

  ListingDocument& document() { return document_; }
  RecentFolders& recentFolders() { return recentFolders_; }
  QQuickWindow& window() { return *window_; }

  /// The item with this object name in the scene, or null.
  QQuickItem* find(const QString& objectName) const;
  /// The item or other object (a dialog, say) with this object name in the scene, or null.
  QObject* findObject(const QString& objectName) const;

  /// Shows the window and waits until it has drawn a settled frame, then returns it.
  QImage screenshot();

 private:
  ListingDocument document_;
  Appearance appearance_;
  RecentFolders recentFolders_;
  ui::SymbolGlyphs symbols_;
  QQmlApplicationEngine engine_;  // after what the scene refers to, so it goes first
  QQuickWindow* window_ = nullptr;
};

}  // namespace corvane::studio
