// The editor's two costs people feel: the time from a keystroke in a 4,000-character
// description to the frame that shows its new counter and verdict, against the same
// keystroke in a bare Qt Quick text area whose counter is its length; and opening a
// 40-locale folder, against reading and counting its files alone, in this process (with the
// resident memory the open window adds) and as the program started in a process of its own
// (with the peak resident memory of that process).
#include "studio_window.hpp"

#include "corvane/store/store_facts.hpp"
#include "corvane/support/main_executor.hpp"
#include "corvane/text/characters.hpp"
#include "ui/qt/qt_execution_context.hpp"

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <QtGui/QGuiApplication>
#include <QtGui/QKeyEvent>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <benchmark/benchmark.h>

#include <malloc.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
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
// localized file, and the shared files. What the benchmarks write themselves (settings,
// screenshots, the started program's home) goes to home/ beside the folder, so that the
// folder read and counted stays the same from the first benchmark to the last.
struct BenchFolder {
  fs::path root;
  fs::path metadata;
  fs::path home;
  BenchFolder() {
    std::string pattern = (fs::temp_directory_path() / "corvane-studio-bench-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot make a temporary folder");
    root = pattern;
    metadata = root / "metadata";
    home = root / "home";
    fs::create_directories(home);
    const auto& locales = corvane::store::StoreFacts::appStore().locales();
    std::vector<std::string> codes(locales.begin(), locales.end());
    codes.push_back("de-CH");
    for (const auto& code : codes) {
      const fs::path locale = metadata / code;
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
    write(metadata / ".corvane.toml", "extra-locales = [\"de-CH\"]");
    write(metadata / "copyright.txt", "2026 Larkspur Software Ltd");
    write(metadata / "primary_category.txt", "PRODUCTIVITY");
    fs::create_directories(metadata / "review_information");
    write(metadata / "review_information/first_name.txt", "Ada");
    write(metadata / "review_information/last_name.txt", "Lovelace");
    write(metadata / "review_information/phone_number.txt", "+44 20 7946 0000");
    write(metadata / "review_information/email_address.txt", "review@larkspur-notes.app");
  }
  ~BenchFolder() {
    std::error_code ignored;
    fs::remove_all(root, ignored);
  }
};

const BenchFolder& bench() {
  static const BenchFolder folder;
  return folder;
}

QString metadataFolder() {
  return QString::fromStdString(bench().metadata.string());
}

corvane::studio::StudioOptions studioOptions() {
  corvane::studio::StudioOptions options;
  options.appearance = QStringLiteral("light");
  options.settingsFile = QString::fromStdString((bench().home / "settings.ini").string());
  return options;
}

// Whether the window drew and handed over a new frame within two seconds: the polish
// (layout), the scene graph's update and the software renderer's drawing. It waits in an
// event loop of its own, as the program does in its main loop, so that objects deleted
// later (the form's old rows, say) are deleted here and not left to pile up.
bool drawFrame(QQuickWindow& window) {
  QEventLoop loop;
  bool swapped = false;
  QObject::connect(&window, &QQuickWindow::frameSwapped, &loop, [&] {
    swapped = true;
    loop.quit();
  });
  QTimer timeout;
  timeout.setSingleShot(true);
  QObject::connect(&timeout, &QTimer::timeout, &loop, &QEventLoop::quit);
  timeout.start(2000);
  window.update();
  loop.exec();
  return swapped;
}

// One application and main executor for the program, as the editor has. A window is
// opened, drawn and closed once before any benchmark, so that the first one to run does
// not pay alone for what stays loaded (fonts, the controls' style, glyph caches), whichever
// order the repetitions are interleaved in.
struct Application {
  int argc = 1;
  char name[16] = "studio_bench";
  char* argv[2] = {name, nullptr};
  std::unique_ptr<QGuiApplication> app;
  std::unique_ptr<corvane::ui::QtExecutionContext> context;
  Application() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // A requested frame is drawn at the next turn of the event loop instead of after the
    // platform's 5 ms of idle time, which would be counted as work in every keystroke.
    qputenv("QT_QPA_UPDATE_IDLE_TIME", "0");
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    app = std::make_unique<QGuiApplication>(argc, argv);
    context = std::make_unique<corvane::ui::QtExecutionContext>();
    corvane::setMainExecutor(context->get_executor());
    corvane::studio::StudioWindow warmUp(studioOptions());
    warmUp.document().open(metadataFolder());
    warmUp.window().show();
    drawFrame(warmUp.window());
  }
};

void ensureApplication() {
  static Application application;
}

void sendKey(QQuickWindow& window, int key, const QString& text) {
  QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
  QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
  QCoreApplication::sendEvent(&window, &press);
  QCoreApplication::sendEvent(&window, &release);
}

// One keystroke into the focused editor and the frame that shows it: odd ones type a
// character at the end, even ones take it back, so the text keeps its length.
struct Keystrokes {
  QQuickWindow& window;
  bool typed = false;
  bool strike() {
    if (typed) {
      sendKey(window, Qt::Key_Backspace, QString());
    } else {
      sendKey(window, Qt::Key_Y, QStringLiteral("y"));
    }
    typed = !typed;
    return drawFrame(window);
  }
};

QString textOf(const QObject* item) {
  return item->property("text").toString();
}

// Whether the counter and the verdict show what the keystrokes left: the text one longer
// than the limit after a typed character, the saved verdict again after the backspace.
bool shows(const Keystrokes& keys, const QObject* counter, const QObject* verdict, const QString& savedVerdict) {
  if (keys.typed) return textOf(counter) == QStringLiteral("4001 / 4000") && textOf(verdict) != savedVerdict;
  return textOf(counter) == QStringLiteral("4000 / 4000") && textOf(verdict) == savedVerdict;
}

// A keystroke at the end of en-US's 4,000-character description, until the frame showing
// its new counter and verdict is drawn: the key event, the edit, the rules, the checklist,
// the bindings, the layout and the drawing. Every keystroke must have moved the counter
// across the limit and back and changed the verdict with it, or the benchmark fails.
void BM_KeystrokeInLongDescription(benchmark::State& state) {
  ensureApplication();
  corvane::studio::StudioWindow studio(studioOptions());
  if (!studio.document().open(metadataFolder())) {
    state.SkipWithError(studio.document().errorText().toStdString().c_str());
    return;
  }
  studio.document().selectScope(QStringLiteral("en-US"));
  studio.window().show();
  drawFrame(studio.window());
  auto* description = studio.find(QStringLiteral("description.input"));
  auto* counter = studio.find(QStringLiteral("description.counter"));
  auto* verdict = studio.find(QStringLiteral("description.message"));
  if (!description || !counter || !verdict) {
    state.SkipWithError("the description's editor is not in the scene");
    return;
  }
  description->forceActiveFocus();
  description->setProperty("cursorPosition", description->property("length"));
  if (!description->hasActiveFocus() || textOf(counter) != QStringLiteral("4000 / 4000")) {
    state.SkipWithError("the description is not focused with its 4,000 characters");
    return;
  }
  const QString savedVerdict = textOf(verdict);
  Keystrokes keys{studio.window()};
  for (auto _ : state) {
    if (!keys.strike()) {
      state.SkipWithError("the window drew no frame after a keystroke");
      return;
    }
    if (!shows(keys, counter, verdict, savedVerdict)) {
      state.SkipWithError(("the keystroke did not show: the counter reads " + textOf(counter).toStdString()).c_str());
      return;
    }
  }
}
BENCHMARK(BM_KeystrokeInLongDescription)->Unit(benchmark::kMillisecond);

// The baseline: the same keystrokes into a bare text area of the same size holding the
// same text, with a label bound to its length, each until its frame is drawn.
void BM_KeystrokeInPlainTextAreaBaseline(benchmark::State& state) {
  ensureApplication();
  QQmlEngine engine;
  QQmlComponent component(&engine);
  component.setData(R"(
    import QtQuick
    import QtQuick.Controls.Basic
    Window {
      width: 1280; height: 800
      property Item area: area
      property Item counter: counter
      Column {
        anchors.fill: parent
        TextArea { id: area; width: parent.width; wrapMode: TextEdit.Wrap }
        Label { id: counter; text: area.length + " / 4000" }
      }
    })",
                    QUrl());
  std::unique_ptr<QObject> root(component.create());
  auto* window = qobject_cast<QQuickWindow*>(root.get());
  if (!window) {
    state.SkipWithError(component.errorString().toStdString().c_str());
    return;
  }
  auto* area = root->property("area").value<QQuickItem*>();
  auto* counter = root->property("counter").value<QQuickItem*>();
  area->setProperty("text", QString::fromStdString(prose(4000)));
  window->show();
  drawFrame(*window);
  area->forceActiveFocus();
  area->setProperty("cursorPosition", area->property("length"));
  if (!area->hasActiveFocus() || textOf(counter) != QStringLiteral("4000 / 4000")) {
    state.SkipWithError("the text area is not focused with its 4,000 characters");
    return;
  }
  Keystrokes keys{*window};
  for (auto _ : state) {
    if (!keys.strike()) {
      state.SkipWithError("the window drew no frame after a keystroke");
      return;
    }
    if (textOf(counter) != (keys.typed ? QStringLiteral("4001 / 4000") : QStringLiteral("4000 / 4000"))) {
      state.SkipWithError(("the keystroke did not show: the counter reads " + textOf(counter).toStdString()).c_str());
      return;
    }
  }
}
BENCHMARK(BM_KeystrokeInPlainTextAreaBaseline)->Unit(benchmark::kMillisecond);

long residentKilobytes() {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.rfind("VmRSS:", 0) == 0) return std::stol(line.substr(6));
  }
  return 0;
}

// The resident memory of this process once the heap has handed back the pages it holds
// free, so that what earlier benchmarks freed is not counted as in use.
long trimmedResidentKilobytes() {
  ::malloc_trim(0);
  return residentKilobytes();
}

// Opening the 40-locale folder in a window that is already up, until the frame showing its
// first locale is drawn. Beside it, the resident memory the window with the open folder
// adds to the process.
void BM_OpenFortyLocaleFolder(benchmark::State& state) {
  ensureApplication();
  const long before = trimmedResidentKilobytes();
  corvane::studio::StudioWindow studio(studioOptions());
  studio.window().show();
  drawFrame(studio.window());
  for (auto _ : state) {
    if (!studio.document().open(metadataFolder())) {
      state.SkipWithError(studio.document().errorText().toStdString().c_str());
      return;
    }
    if (!drawFrame(studio.window())) {
      state.SkipWithError("the window drew no frame after opening the folder");
      return;
    }
  }
  if (studio.document().scopes()->rowCount() != 41 || studio.document().localeCodes().size() != 40) {
    state.SkipWithError("the folder did not open with 40 locales and the shared data");
    return;
  }
  state.counters["added_resident_MB"] = static_cast<double>(trimmedResidentKilobytes() - before) / 1024.0;
}
BENCHMARK(BM_OpenFortyLocaleFolder)->Unit(benchmark::kMillisecond);

// The baseline: read every file of the folder and count its characters, nothing else.
void BM_ReadAndCountFortyLocalesBaseline(benchmark::State& state) {
  for (auto _ : state) {
    std::size_t characters = 0;
    for (const auto& entry : fs::recursive_directory_iterator(bench().metadata)) {
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
// that frame). measured_run starts and times it and reports its peak resident memory:
// started from this process, the program would be charged this process's memory too. A
// program that opened the folder names it among its recent folders; one that did not fails
// the benchmark.
void runStudio(benchmark::State& state, bool withFolder) {
  const fs::path home = bench().home / (withFolder ? "with-folder" : "without-folder");
  const fs::path picture = home / "screenshot.png";
  const fs::path settings = home / ".config/Corvane/Corvane Studio.conf";
  const fs::path result = home / "measured.txt";
  const fs::path runtime = home / "runtime";
  fs::create_directories(runtime);
  fs::permissions(runtime, fs::perms::owner_all);
  fs::remove(settings);
  std::vector<std::string> arguments = {MEASURED_RUN_PROGRAM, result.string(), CORVANE_STUDIO_PROGRAM,
                                        "--appearance",       "light",         "--screenshot",
                                        picture.string()};
  if (withFolder) arguments.push_back(bench().metadata.string());
  std::vector<char*> argv;
  for (auto& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  std::vector<std::string> environment = {"QT_QPA_PLATFORM=offscreen", "HOME=" + home.string(),
                                          "XDG_RUNTIME_DIR=" + runtime.string()};
  std::vector<char*> envp;
  for (auto& variable : environment) envp.push_back(variable.data());
  envp.push_back(nullptr);
  long peakKilobytes = 0;
  for (auto _ : state) {
    pid_t launcher = 0;
    int status = 0;
    if (::posix_spawn(&launcher, argv[0], nullptr, nullptr, argv.data(), envp.data()) != 0 ||
        ::waitpid(launcher, &status, 0) != launcher || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
      state.SkipWithError("measured_run could not start corvane-studio");
      return;
    }
    int exitStatus = -1;
    long long nanoseconds = 0;
    long kilobytes = 0;
    if (!(std::ifstream(result) >> exitStatus >> nanoseconds >> kilobytes) || exitStatus != 0) {
      state.SkipWithError("corvane-studio failed");
      return;
    }
    state.SetIterationTime(static_cast<double>(nanoseconds) / 1e9);
    peakKilobytes = std::max(peakKilobytes, kilobytes);
  }
  std::ifstream stream(settings);
  std::ostringstream recent;
  recent << stream.rdbuf();
  if (withFolder != (recent.str().find(bench().metadata.string()) != std::string::npos)) {
    state.SkipWithError(withFolder ? "corvane-studio did not open the folder" : "corvane-studio opened a folder");
    return;
  }
  state.counters["peak_resident_MB"] = static_cast<double>(peakKilobytes) / 1024.0;
}

void BM_StudioOpensFortyLocaleFolder(benchmark::State& state) {
  runStudio(state, true);
}
BENCHMARK(BM_StudioOpensFortyLocaleFolder)->Unit(benchmark::kMillisecond)->UseManualTime();

// The baseline: the same program showing its welcome page, with no folder.
void BM_StudioStartsWithoutFolderBaseline(benchmark::State& state) {
  runStudio(state, false);
}
BENCHMARK(BM_StudioStartsWithoutFolderBaseline)->Unit(benchmark::kMillisecond)->UseManualTime();

}  // namespace
