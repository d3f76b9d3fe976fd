#include "studio_window.hpp"

#include "ui/qt/flow_layout_item.hpp"

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <QtQml/QQmlContext>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <mutex>
#include <stdexcept>
#include <vector>

namespace corvane::studio {

StudioWindow::StudioWindow(const StudioOptions& options)
    : appearance_(options.appearance), recentFolders_(options.settingsFile) {
  static std::once_flag once;
  std::call_once(once, [] { qmlRegisterType<ui::FlowLayoutItem>("Corvane.Studio", 1, 0, "FlowLayout"); });
  QObject::connect(&document_, &ListingDocument::opened, &recentFolders_,
                   [this] { recentFolders_.add(document_.folder()); });
  engine_.rootContext()->setContextProperty(QStringLiteral("studio"), &document_);
  engine_.rootContext()->setContextProperty(QStringLiteral("appearance"), &appearance_);
  engine_.rootContext()->setContextProperty(QStringLiteral("recentFolders"), &recentFolders_);
  engine_.rootContext()->setContextProperty(QStringLiteral("symbols"), &symbols_);
  engine_.setInitialProperties({{QStringLiteral("width"), options.width}, {QStringLiteral("height"), options.height}});
  engine_.load(QUrl(QStringLiteral("qrc:/studio/Main.qml")));
  if (engine_.rootObjects().isEmpty()) throw std::runtime_error("the editor's window did not load");
  window_ = qobject_cast<QQuickWindow*>(engine_.rootObjects().front());
  if (!window_) throw std::runtime_error("the editor's scene is not a window");
}

StudioWindow::~StudioWindow() = default;

QQuickItem* StudioWindow::find(const QString& objectName) const {
  return qobject_cast<QQuickItem*>(findObject(objectName));
}

QObject* StudioWindow::findObject(const QString& objectName) const {
  // Delegates of repeaters and lists, and the contents of dialogs, have no object parent:
  // only the tree of visual items reaches them. The root item holds the overlay, where
  // open dialogs live, beside the content item.
  QQuickItem* root = window_->contentItem();
  while (root->parentItem() != nullptr) root = root->parentItem();
  std::vector<QQuickItem*> pending = {root};
  while (!pending.empty()) {
    QQuickItem* item = pending.back();
    pending.pop_back();
    if (item->objectName() == objectName) return item;
    // Dialogs are objects beside the items they are declared in.
    for (QObject* child : item->children()) {
      if (!qobject_cast<QQuickItem*>(child) && child->objectName() == objectName) return child;
    }
    const auto children = item->childItems();
    pending.insert(pending.end(), children.rbegin(), children.rend());
  }
  return nullptr;
}

QImage StudioWindow::screenshot() {
  window_->show();
  // Two frames: the first lays out and loads fonts, the second is the settled picture.
  for (int frame = 0; frame < 2; ++frame) {
    QEventLoop loop;
    QObject::connect(window_, &QQuickWindow::frameSwapped, &loop, &QEventLoop::quit);
    QTimer::singleShot(5000, &loop, &QEventLoop::quit);
    window_->update();
    loop.exec();
  }
  return window_->grabWindow();
}

}  // namespace corvane::studio
