// corvane-demo: the demonstration screens. Without options it shows the showcase screen;
// --screen NAME picks a screen, --screenshot FILE renders it off-screen into a PNG, and
// --sample fills in example input first.

#include "corvane/support/main_executor.hpp"
#include "demo/app/demo_screen.hpp"
#include "demo/app/new_change_tracking_demo_model.hpp"
#include "ui/qt/qt_execution_context.hpp"
#include "demo/app/tracked_validation_dsl_demo_model.hpp"

#include <QtCore/QCoreApplication>
#include <QtGui/QGuiApplication>
#include <QtQuick/QQuickWindow>

#include <cstdio>
#include <exception>
#include <string_view>

namespace {

struct Options {
  QString screen = QStringLiteral("NewChangeTrackingDemo");
  QString screenshot;
  bool sample = false;
};

bool parse(int argc, char** argv, Options& options) {
  for (int i = 1; i < argc; ++i) {
    const std::string_view arg = argv[i];
    if (arg == "--sample") {
      options.sample = true;
    } else if ((arg == "--screen" || arg == "--screenshot") && i + 1 < argc) {
      (arg == "--screen" ? options.screen : options.screenshot) = QString::fromLocal8Bit(argv[++i]);
    } else {
      return false;
    }
  }
  return true;
}

// Example input typed through the view models, so that a screenshot shows verdicts and chips.
void fillSample(corvane::demo::DemoScreen& screen) {
  if (auto* model = qobject_cast<corvane::demo::NewChangeTrackingDemoModel*>(&screen.model())) {
    model->setAppName(QStringLiteral("Corvane Notes"));
    model->setSubtitle(QStringLiteral("Write, tag and find every idea in seconds"));
    for (const char* keyword : {"notes", "productivity", "markdown", "journal", "sync", "writing", "ideas", "tags"}) {
      model->setKeywordInput(QString::fromUtf8(keyword));
      model->addKeyword();
    }
  } else if (auto* dsl = qobject_cast<corvane::demo::TrackedValidationDSLDemoModel*>(&screen.model())) {
    dsl->setAppName(QStringLiteral("Corvane Notes"));
    dsl->setKeywords(QStringLiteral("notes"));
    dsl->setSupportEmail(QStringLiteral("helpdesk"));
  }
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (!parse(argc, argv, options)) {
    std::fprintf(stderr, "usage: corvane-demo [--screen NAME] [--screenshot FILE.png] [--sample]\n");
    return 2;
  }
  if (!options.screenshot.isEmpty()) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  }
  QGuiApplication app(argc, argv);
  int status = 0;
  {
    corvane::ui::QtExecutionContext context;
    corvane::setMainExecutor(context.get_executor());
    try {
      corvane::demo::DemoScreen screen(options.screen);
      if (options.sample) fillSample(screen);
      if (!options.screenshot.isEmpty()) {
        screen.view().show();
        if (!screen.render().save(options.screenshot, "PNG")) {
          std::fprintf(stderr, "cannot write %s\n", qPrintable(options.screenshot));
          status = 1;
        }
      } else {
        screen.view().setTitle(options.screen);
        screen.view().show();
        status = QGuiApplication::exec();
      }
    } catch (const std::exception& error) {
      std::fprintf(stderr, "%s\n", error.what());
      status = 1;
    }
    corvane::setMainExecutor({});
  }
  return status;
}
