#pragma once

#include "corvane/support/main_executor.hpp"
#include "ui/qt/qt_execution_context.hpp"

#include <QtGui/QGuiApplication>
#include <QtQuick/QQuickWindow>

#include <gtest/gtest.h>

#include <memory>

namespace corvane::ui {

/// For the Qt test programs: one offscreen application with software rendering and a
/// Qt-loop main executor for the whole program, as the real programs have. Register it
/// with `::testing::AddGlobalTestEnvironment`.
class HeadlessApplication : public ::testing::Environment {
 public:
  void SetUp() override {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    application_ = std::make_unique<QGuiApplication>(argc_, argv_);
    context_ = std::make_unique<QtExecutionContext>();
    setMainExecutor(context_->get_executor());
  }

  void TearDown() override {
    setMainExecutor({});
    context_.reset();
    application_.reset();
  }

 private:
  int argc_ = 1;
  char name_[24] = "corvane_qt_tests";
  char* argv_[2] = {name_, nullptr};
  std::unique_ptr<QGuiApplication> application_;
  std::unique_ptr<QtExecutionContext> context_;
};

}  // namespace corvane::ui
