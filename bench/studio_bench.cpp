// The editor's two costs people feel: the time from a keystroke in a 4,000-character
// description to the counter and verdict on screen, against the same keystroke in a bare
// Qt Quick text area whose counter is its length; and opening a 40-locale folder, against
// reading and counting its files alone, with the resident memory it leaves.
#include "studio_window.hpp"

#include "corvane/store/listing_field.hpp"
#include "corvane/store/store_facts.hpp"
#include "corvane/support/main_executor.hpp"
#include "corvane/text/characters.hpp"
#include "ui/qt/qt_execution_context.hpp"

#include <QtCore/QCoreApplication>
#include <QtGui/QGuiApplication>
#include <QtGui/QKeyEvent>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <benchmark/benchmark.h>

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <algorithm>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::string prose(std::size_t characters) {
  static const std::string sentence = "Write notes that check themselves before the store does. ";
  std::string text;
  while (text.size() + sentence.size() <= characters) text += sentence;
  text.append(characters - text.size(), 'x');
  return text;
}

void write(const fs::path& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text << '\n';
}

// Every App Store locale (39) plus de-CH from the configuration: forty locales with every
// localized file, and the shared files.
struct BenchFolder {
  fs::path path;
  BenchFolder() {
    path = fs::temp_directory_path() / ("corvane-studio-bench-" + std::to_string(::getpid()));
    const auto& locales = corvane::store::StoreFacts::appStore().locales();
    std::vector<std::string> codes(locales.begin(), locales.end());
    codes.push_back("de-CH");
    for (const auto& code : codes) {
      const fs::path locale = path / code;
      fs::create_directories(locale);
      write(locale / "name.txt", "Larkspur Notes");
      write(locale / "subtitle.txt", "Notes that check themselves");
      write(locale / "description.txt", prose(4000));
      write(locale / "keywords.txt", "notes,writing,checklist,drafts,editor,lists");
      write(locale / "promotional_text.txt", prose(150));
      write(locale / "release_notes.txt", prose(600));
      write(locale / "support_url.txt", "https://larkspur-notes.app/support");
      write(locale / "marketing_url.txt", "https://larkspur-notes.app/");
      write(locale / "privacy_url.txt", "https://larkspur-notes.app/privacy");
    }
    write(path / ".corvane.toml", "extra-locales = [\"de-CH\"]");
    write(path / "copyright.txt", "2026 Larkspur Software Ltd");
    write(path / "primary_category.txt", "PRODUCTIVITY");
    fs::create_directories(path / "review_information");
    write(path / "review_information/first_name.txt", "Ada");
    write(path / "review_information/last_name.txt", "Lovelace");
    write(path / "review_information/phone_number.txt", "+44 20 7946 0000");
    write(path / "review_information/email_address.txt", "review@larkspur-notes.app");
  }
  ~BenchFolder() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }
};

const fs::path& folder() {
  static const BenchFolder bench;
  return bench.path;
}

// One application and main executor for the program, as the editor has.
struct Application {
  int argc = 1;
  char name[16] = "studio_bench";
  char* argv[2] = {name, nullptr};
  std::unique_ptr<QGuiApplication> app;
  std::unique_ptr<corvane::ui::QtExecutionContext> context;
  Application() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    app = std::make_unique<QGuiApplication>(argc, argv);
    context = std::make_unique<corvane::ui::QtExecutionContext>();
    corvane::setMainExecutor(context->get_executor());
  }
};

void ensureApplication() {
  static Application application;
}

// Sends one typed character to the window's focused item.
void typeCharacter(QQuickWindow& window, QChar character) {
  QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(character));
  QKeyEvent release(QEvent::KeyRelease, 0, Qt::NoModifier, QString(character));
  QCoreApplication::sendEvent(&window, &press);
  QCoreApplication::sendEvent(&window, &release);
}

void backspace(QQuickWindow& window) {
  QKeyEvent press(QEvent::KeyPress, Qt::Key_Backspace, Qt::NoModifier);
  QKeyEvent release(QEvent::KeyRelease, Qt::Key_Backspace, Qt::NoModifier);
  QCoreApplication::sendEvent(&window, &press);
  QCoreApplication::sendEvent(&window, &release);
}

long residentKilobytes() {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.rfind("VmRSS:", 0) == 0) return std::stol(line.substr(6));
  }
  return 0;
}

// A keystroke at the end of en-US's 4,000-character description, until its counter shows
// the new count: the key event, the edit, the rules, the checklist and the bindings. Each
// iteration types a character and takes it back, so the text stays the same length.
void BM_KeystrokeInLongDescription(benchmark::State& state) {
  ensureApplication();
  corvane::studio::StudioOptions options;
  options.appearance = QStringLiteral("light");
  options.settingsFile = QString::fromStdString((folder() / ".bench-settings.ini").string());
  corvane::studio::StudioWindow studio(options);
  if (!studio.document().open(QString::fromStdString(folder().string()))) {
    state.SkipWithError(studio.document().errorText().toStdString().c_str());
    return;
  }
  studio.document().selectScope(QStringLiteral("en-US"));
  studio.window().show();
  QCoreApplication::processEvents();
  auto* description = studio.find(QStringLiteral("description.input"));
  auto* counter = studio.find(QStringLiteral("description.counter"));
  if (!description || !counter) {
    state.SkipWithError("the description's editor is not in the scene");
    return;
  }
  description->forceActiveFocus();
  description->setProperty("cursorPosition", description->property("length"));
  for (auto _ : state) {
    typeCharacter(studio.window(), QLatin1Char('y'));
    benchmark::DoNotOptimize(counter->property("text").toString());
    backspace(studio.window());
    benchmark::DoNotOptimize(counter->property("text").toString());
  }
  if (counter->property("text").toString() != QStringLiteral("4000 / 4000")) {
    state.SkipWithError("the counter did not follow the keystrokes");
  }
  // Two keystrokes per iteration.
  state.SetItemsProcessed(state.iterations() * 2);
}
BENCHMARK(BM_KeystrokeInLongDescription)->Unit(benchmark::kMillisecond);

// The baseline: the same keystrokes into a bare text area holding the same text, with a
// label bound to its length.
void BM_KeystrokeInPlainTextAreaBaseline(benchmark::State& state) {
  ensureApplication();
  QQmlEngine engine;
  QQmlComponent component(&engine);
  component.setData(R"(
    import QtQuick
    import QtQuick.Controls.Basic
    Window {
      width: 1280; height: 800
      Column {
        anchors.fill: parent
        TextArea { objectName: "area"; width: parent.width; wrapMode: TextEdit.Wrap }
        Label { objectName: "counter"; text: parent.children[0].length + " / 4000" }
      }
    })",
                    QUrl());
  std::unique_ptr<QObject> root(component.create());
  auto* window = qobject_cast<QQuickWindow*>(root.get());
  if (!window) {
    state.SkipWithError(component.errorString().toStdString().c_str());
    return;
  }
  auto* area = window->contentItem()->findChild<QQuickItem*>(QStringLiteral("area"));
  auto* counter = window->contentItem()->findChild<QQuickItem*>(QStringLiteral("counter"));
  area->setProperty("text", QString::fromStdString(prose(4000)));
  window->show();
  QCoreApplication::processEvents();
  area->forceActiveFocus();
  area->setProperty("cursorPosition", area->property("length"));
  for (auto _ : state) {
    typeCharacter(*window, QLatin1Char('y'));
    benchmark::DoNotOptimize(counter->property("text").toString());
    backspace(*window);
    benchmark::DoNotOptimize(counter->property("text").toString());
  }
  state.SetItemsProcessed(state.iterations() * 2);
}
BENCHMARK(BM_KeystrokeInPlainTextAreaBaseline)->Unit(benchmark::kMillisecond);

// Opening the 40-locale folder in a window that is already up, until the scene shows its
// first locale; the resident memory once it has is reported beside it.
void BM_OpenFortyLocaleFolder(benchmark::State& state) {
  ensureApplication();
  corvane::studio::StudioOptions options;
  options.appearance = QStringLiteral("light");
  options.settingsFile = QString::fromStdString((folder() / ".bench-settings.ini").string());
  corvane::studio::StudioWindow studio(options);
  studio.window().show();
  QCoreApplication::processEvents();
  for (auto _ : state) {
    if (!studio.document().open(QString::fromStdString(folder().string()))) {
      state.SkipWithError(studio.document().errorText().toStdString().c_str());
      return;
    }
    QCoreApplication::processEvents();
  }
  if (studio.document().scopes()->rowCount() != 41) state.SkipWithError("the folder did not open with 40 locales");
  state.counters["resident_MB"] = static_cast<double>(residentKilobytes()) / 1024.0;
}
BENCHMARK(BM_OpenFortyLocaleFolder)->Unit(benchmark::kMillisecond);

// The baseline: read every file of the folder and count its characters, nothing else.
void BM_ReadAndCountFortyLocalesBaseline(benchmark::State& state) {
  for (auto _ : state) {
    std::size_t characters = 0;
    for (const auto& entry : fs::recursive_directory_iterator(folder())) {
      if (!entry.is_regular_file()) continue;
      std::ifstream stream(entry.path(), std::ios::binary);
      std::ostringstream contents;
      contents << stream.rdbuf();
      characters += corvane::characterCount(contents.str());
    }
    benchmark::DoNotOptimize(characters);
  }
}
BENCHMARK(BM_ReadAndCountFortyLocalesBaseline)->Unit(benchmark::kMillisecond);

// The program as people start it, in a process of its own: start, load the scene, open
// the folder and draw the first frame of its window (the screenshot option quits after
// that frame). The peak resident memory of the process is reported beside the time.
void runStudio(benchmark::State& state, bool withFolder) {
  const std::string picture = (folder() / ".bench-shot.png").string();
  std::vector<std::string> arguments = {CORVANE_STUDIO_PROGRAM, "--appearance", "light", "--screenshot", picture};
  if (withFolder) arguments.push_back(folder().string());
  std::vector<char*> argv;
  for (auto& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  std::vector<std::string> environment = {"QT_QPA_PLATFORM=offscreen", "HOME=" + folder().string()};
  std::vector<char*> envp;
  for (auto& variable : environment) envp.push_back(variable.data());
  envp.push_back(nullptr);
  long peakKilobytes = 0;
  for (auto _ : state) {
    pid_t child = 0;
    if (::posix_spawn(&child, argv[0], nullptr, nullptr, argv.data(), envp.data()) != 0) {
      state.SkipWithError("cannot start corvane-studio");
      return;
    }
    int status = 0;
    rusage usage{};
    ::wait4(child, &status, 0, &usage);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
      state.SkipWithError("corvane-studio failed");
      return;
    }
    peakKilobytes = std::max(peakKilobytes, usage.ru_maxrss);
  }
  state.counters["peak_resident_MB"] = static_cast<double>(peakKilobytes) / 1024.0;
}

void BM_StudioOpensFortyLocaleFolder(benchmark::State& state) {
  runStudio(state, true);
}
BENCHMARK(BM_StudioOpensFortyLocaleFolder)->Unit(benchmark::kMillisecond)->UseRealTime();

// The baseline: the same program showing its welcome page, with no folder.
void BM_StudioStartsWithoutFolderBaseline(benchmark::State& state) {
  runStudio(state, false);
}
BENCHMARK(BM_StudioStartsWithoutFolderBaseline)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
