#include "demo/app/demo_screen.hpp"

#include "demo/app/new_change_tracking_demo_model.hpp"
#include "demo/app/tracked_validation_dsl_demo_model.hpp"
#include "ui/qt/flow_layout_item.hpp"

#include <QtCore/QCoreApplication>
#include <QtQml/QQmlContext>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickItem>

#include <mutex>
#include <stdexcept>

namespace corvane::demo {
namespace {

std::unique_ptr<QObject> makeModel(const QString& name) {
  if (name == QStringLiteral("NewChangeTrackingDemo")) return std::make_unique<NewChangeTrackingDemoModel>();
  if (name == QStringLiteral("TrackedValidationDSLDemoView")) return std::make_unique<TrackedValidationDSLDemoModel>();
  throw std::invalid_argument("unknown screen: " + name.toStdString());
}

void registerTypes() {
  static std::once_flag once;
  std::call_once(once, [] { qmlRegisterType<ui::FlowLayoutItem>("Corvane.Demo", 1, 0, "FlowLayout"); });
}

}  // namespace

QStringList DemoScreen::names() {
  return {QStringLiteral("NewChangeTrackingDemo"), QStringLiteral("TrackedValidationDSLDemoView")};
}

DemoScreen::DemoScreen(const QString& name, int width) : model_(makeModel(name)) {
  registerTypes();
  view_.rootContext()->setContextProperty(QStringLiteral("demo"), model_.get());
  view_.rootContext()->setContextProperty(QStringLiteral("symbols"), &symbols_);
  view_.setResizeMode(QQuickView::SizeRootObjectToView);
  view_.setSource(QUrl(QStringLiteral("qrc:/qml/") + name + QStringLiteral(".qml")));
  if (view_.status() != QQuickView::Ready) {
    QString message;
    for (const QQmlError& error : view_.errors()) message += error.toString() + QLatin1Char('\n');
    throw std::runtime_error("cannot load " + name.toStdString() + ":\n" + message.toStdString());
  }
  view_.resize(width, 800);
}

QQuickItem* DemoScreen::find(const QString& objectName) const {
  QQuickItem* root = view_.rootObject();
  return root != nullptr ? root->findChild<QQuickItem*>(objectName) : nullptr;
}

QImage DemoScreen::render() {
  // Let queued observation refreshes and layout settle before measuring.
  QCoreApplication::processEvents();
  view_.resize(view_.width(), static_cast<int>(view_.rootObject()->implicitHeight()));
  QCoreApplication::processEvents();
  view_.resize(view_.width(), static_cast<int>(view_.rootObject()->implicitHeight()));
  return view_.grabWindow();
}

}  // namespace corvane::demo
