// corvane-studio: the desktop editor of store listings. `corvane-studio [FOLDER]` opens the
// metadata folder; --screenshot FILE shows the window, saves a picture of it and quits.
#include "studio_window.hpp"

#include "corvane/support/main_executor.hpp"
#include "corvane/version.hpp"
#include "ui/qt/qt_execution_context.hpp"

#include <QtCore/QCommandLineParser>
#include <QtGui/QGuiApplication>
#include <QtQuick/QQuickWindow>

#include <cstdio>
#include <exception>

int main(int argc, char** argv) {
  // Screenshots are taken with the software renderer, so they look the same on every machine.
  for (int i = 1; i < argc; ++i) {
    if (qstrcmp(argv[i], "--screenshot") == 0) QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
  }
  QGuiApplication app(argc, argv);
  QGuiApplication::setApplicationName(QStringLiteral("Corvane Studio"));
  QGuiApplication::setOrganizationName(QStringLiteral("Corvane"));
  QGuiApplication::setApplicationVersion(QString::fromLatin1(corvane::CorvaneVersionString));

  QCommandLineParser parser;
  parser.setApplicationDescription(QStringLiteral("Edit an app's store listing with every field checked as you type."));
  parser.addHelpOption();
  parser.addVersionOption();
  parser.addPositionalArgument(QStringLiteral("folder"), QStringLiteral("The metadata folder to open."),
                               QStringLiteral("[folder]"));
  const QCommandLineOption store(QStringLiteral("store"),
                                 QStringLiteral("Whose layout and rules: appstore, play or auto (the default)."),
                                 QStringLiteral("store"), QStringLiteral("auto"));
  const QCommandLineOption appearance(QStringLiteral("appearance"),
                                      QStringLiteral("light or dark instead of following the system."),
                                      QStringLiteral("appearance"));
  const QCommandLineOption locale(QStringLiteral("locale"), QStringLiteral("The locale to show first."),
                                  QStringLiteral("code"));
  const QCommandLineOption screenshot(QStringLiteral("screenshot"),
                                      QStringLiteral("Save a picture of the window as a PNG file and quit."),
                                      QStringLiteral("file"));
  const QCommandLineOption size(QStringLiteral("size"), QStringLiteral("The window's size, such as 1280x800."),
                                QStringLiteral("size"));
  parser.addOptions({store, appearance, locale, screenshot, size});
  parser.process(app);

  corvane::studio::StudioOptions options;
  options.appearance = parser.value(appearance);
  if (!options.appearance.isEmpty() && options.appearance != QStringLiteral("light") &&
      options.appearance != QStringLiteral("dark")) {
    std::fprintf(stderr, "corvane-studio: --appearance takes light or dark, not '%s'\n",
                 qPrintable(options.appearance));
    return 2;
  }
  if (parser.isSet(size)) {
    const auto parts = parser.value(size).split(QLatin1Char('x'));
    bool wide = false;
    bool high = false;
    if (parts.size() == 2) {
      options.width = parts[0].toInt(&wide);
      options.height = parts[1].toInt(&high);
    }
    if (!wide || !high || options.width < 1 || options.height < 1) {
      std::fprintf(stderr, "corvane-studio: --size takes WIDTHxHEIGHT, such as 1280x800\n");
      return 2;
    }
  }
  const QStringList folders = parser.positionalArguments();
  if (folders.size() > 1) {
    std::fprintf(stderr, "corvane-studio: give one metadata folder\n");
    return 2;
  }

  int status = 0;
  corvane::ui::QtExecutionContext context;
  corvane::setMainExecutor(context.get_executor());
  try {
    corvane::studio::StudioWindow studio(options);
    if (!folders.isEmpty() && !studio.document().open(folders.front(), parser.value(store)) &&
        parser.isSet(screenshot)) {
      std::fprintf(stderr, "corvane-studio: %s\n", qPrintable(studio.document().errorText()));
      status = 1;
    }
    if (parser.isSet(locale)) studio.document().selectScope(parser.value(locale));
    if (status == 0 && parser.isSet(screenshot)) {
      if (!studio.screenshot().save(parser.value(screenshot), "PNG")) {
        std::fprintf(stderr, "corvane-studio: cannot write %s\n", qPrintable(parser.value(screenshot)));
        status = 1;
      }
    } else if (status == 0) {
      studio.window().show();
      status = QGuiApplication::exec();
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "corvane-studio: %s\n", error.what());
    status = 1;
  }
  corvane::setMainExecutor({});
  return status;
}
