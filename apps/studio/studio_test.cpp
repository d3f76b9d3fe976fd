#include "studio_window.hpp"

#include "corvane/store/store_listing.hpp"
#include "corvane/testing/file_permissions_enforced.hpp"
#include "corvane/testing/temporary_folder.hpp"
#include "ui/qt/headless_test_support.hpp"

#include <QtCore/QCoreApplication>
#include <QtGui/QKeyEvent>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

namespace corvane::studio {
namespace {

namespace fs = std::filesystem;
using corvane::testing::readFile;
using corvane::testing::TemporaryFolder;
using corvane::testing::writeFile;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

[[maybe_unused]] const auto* const environment = ::testing::AddGlobalTestEnvironment(new ui::HeadlessApplication);

constexpr std::string_view kBom = "\xEF\xBB\xBF";

// A small App Store folder: en-US with its own texts, de-DE taking its description from
// default/, and the shared files a complete listing needs.
void writeListing(const fs::path& root) {
  const std::pair<const char*, const char*> files[] = {
      {"en-US/name.txt", "Trail Notes\n"}, {"en-US/subtitle.txt", "Plan hikes offline\n"},
      {"en-US/description.txt", "Plan every hike with maps that work without a signal.\n"},
      {"en-US/keywords.txt", "hiking,trails,maps\n"}, {"en-US/release_notes.txt", "Faster maps.\n"},
      {"en-US/support_url.txt", "https://trailnotes.app/support\n"},
      {"en-US/privacy_url.txt", "https://trailnotes.app/privacy\n"},
      {"de-DE/name.txt", "Wandernotizen\n"}, {"de-DE/keywords.txt", "wandern,karten\n"},
      {"de-DE/release_notes.txt", "Schnellere Karten.\n"},
      {"de-DE/support_url.txt", "https://trailnotes.app/de/support\n"},
      {"de-DE/privacy_url.txt", "https://trailnotes.app/de/privacy\n"},
      {"default/description.txt", "Wanderungen planen, auch ohne Netz.\n"},
      {"copyright.txt", "2026 Trail Notes Ltd\n"}, {"primary_category.txt", "NAVIGATION\n"},
      {"review_information/first_name.txt", "Ada\n"}, {"review_information/last_name.txt", "Lovelace\n"},
      {"review_information/phone_number.txt", "+44 20 7946 0000\n"},
      {"review_information/email_address.txt", "review@trailnotes.app\n"}};
  for (const auto& [file, text] : files) writeFile(root / file, text);
}

class StudioTest : public ::testing::Test {
 protected:
  void SetUp() override {
    writeListing(folder());
    StudioOptions options;
    options.appearance = QStringLiteral("light");
    options.settingsFile = QString::fromStdString((settings_.path() / "settings.ini").string());
    // Tall enough that every field of a locale is on screen without scrolling.
    options.width = 1280;
    options.height = 2600;
    studio_ = std::make_unique<StudioWindow>(options);
    studio_->window().show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&studio_->window()));
  }

  fs::path folder() const { return files_.path() / "metadata"; }
  ListingDocument& document() { return studio_->document(); }
  QQuickWindow& window() { return studio_->window(); }

  // Opens the listing, showing `scope` when one is named.
  void open(const char* scope = nullptr) {
    ASSERT_TRUE(document().open(QString::fromStdString(folder().string()))) << document().errorText().toStdString();
    if (scope) document().selectScope(QString::fromUtf8(scope));
    settle();
  }

  std::string onDisk(const char* file) const { return readFile(folder() / file); }
  std::string keywords() { return document().listing()->entity("en-US")->text(store::ListingField::keywords); }

  // Lets bindings, polish and layout run.
  void settle() {
    QCoreApplication::processEvents();
    QTest::qWait(20);
  }

  QQuickItem* item(const QString& name) {
    settle();
    QQuickItem* found = studio_->find(name);
    EXPECT_NE(found, nullptr) << "no item named " << name.toStdString();
    return found;
  }

  // The `property` of the item named `name`, or nothing (and a test failure) without one.
  QVariant read(const QString& name, const char* property) {
    QQuickItem* found = item(name);
    return found ? found->property(property) : QVariant();
  }

  std::string text(const QString& name) { return read(name, "text").toString().toStdString(); }

  bool shown(const QString& name) {
    settle();
    QObject* found = studio_->findObject(name);
    return found && found->property("visible").toBool();
  }

  void click(const QString& name) {
    QQuickItem* target = item(name);
    ASSERT_NE(target, nullptr);
    ASSERT_TRUE(target->isVisible()) << name.toStdString() << " is hidden";
    const QPointF centre = target->mapToScene(QPointF(target->width() / 2, target->height() / 2));
    QTest::mouseClick(&window(), Qt::LeftButton, Qt::NoModifier, centre.toPoint());
    settle();
  }

  // Types `typed` into the control named `name` as key presses, one character at a time.
  void type(const QString& name, const QString& typed, bool clearFirst = false) {
    QQuickItem* target = item(name);
    ASSERT_NE(target, nullptr);
    target->forceActiveFocus();
    settle();
    ASSERT_TRUE(target->hasActiveFocus()) << name.toStdString();
    if (clearFirst) {
      QTest::keyClick(&window(), Qt::Key_A, Qt::ControlModifier);
      QTest::keyClick(&window(), Qt::Key_Delete);
    }
    for (const QChar character : typed) {
      QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(character));
      QKeyEvent release(QEvent::KeyRelease, 0, Qt::NoModifier, QString(character));
      QCoreApplication::sendEvent(&window(), &press);
      QCoreApplication::sendEvent(&window(), &release);
    }
    settle();
  }

  void key(Qt::Key pressed, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(&window(), pressed, modifiers);
    settle();
  }

  TemporaryFolder files_;
  TemporaryFolder settings_;
  std::unique_ptr<StudioWindow> studio_;
};

TEST_F(StudioTest, TypingUpdatesTheCounterVerdictAndUnsavedMarks) {
  open();
  EXPECT_EQ(document().currentScope(), "de-DE");
  document().selectScope(QStringLiteral("en-US"));
  EXPECT_EQ(text("name.counter"), "11 / 30");
  EXPECT_FALSE(shown("name.unsaved"));

  type("name.input", QStringLiteral(": Plan, Hike and Share Every Trail"));
  EXPECT_EQ(text("name.input"), "Trail Notes: Plan, Hike and Share Every Trail");
  EXPECT_EQ(text("name.counter"), "45 / 30");
  EXPECT_THAT(text("name.message"), HasSubstr("too long"));
  EXPECT_TRUE(shown("name.unsaved"));
  EXPECT_TRUE(shown("name.fix"));
  EXPECT_TRUE(document().currentHasUnsavedChanges());
  // The sidebar marks the locale, and its badge counts the new blocker.
  EXPECT_TRUE(shown("scope.en-US.unsaved"));
  EXPECT_EQ(read(QStringLiteral("scope.en-US.blockers"), "count").toInt(), 1);

  // Back to the saved text: nothing is unsaved any more.
  type("name.input", QStringLiteral("Trail Notes"), true);
  EXPECT_EQ(text("name.counter"), "11 / 30");
  EXPECT_FALSE(shown("name.unsaved"));
  EXPECT_FALSE(document().hasUnsavedChanges());
}

TEST_F(StudioTest, CountsUserPerceivedCharacters) {
  open("en-US");
  // A family emoji is one character of seven code points; an accent on e is one of two.
  type("subtitle.input", QStringLiteral("👨‍👩‍👧‍👦 Cafe\u0301"), true);
  EXPECT_EQ(text("subtitle.counter"), "6 / 30");
}

TEST_F(StudioTest, TheAutoFixTrimsOnACharacterBoundary) {
  open("en-US");
  type("name.input", QStringLiteral("Trail Notes for Hikers Who Love Mountains"), true);
  ASSERT_EQ(text("name.counter"), "41 / 30");
  click("name.fix");
  const std::string fixed = text("name.input");
  EXPECT_THAT(std::string("Trail Notes for Hikers Who Love Mountains"), StartsWith(fixed));
  EXPECT_LE(fixed.size(), 30U);
  EXPECT_THAT(text("name.counter"), Not(HasSubstr("41")));
  EXPECT_THAT(text("name.message"), Not(HasSubstr("too long")));
  EXPECT_FALSE(shown("name.fix"));
  EXPECT_TRUE(shown("name.unsaved"));
}

TEST_F(StudioTest, SavingWritesTheFileWithItsByteOrderMarkAndLineBreaks) {
  writeFile(folder() / "en-US/name.txt", std::string(kBom) + "Trail Notes\r\n\r\n");
  open("en-US");
  type("name.input", QStringLiteral("Trail Notes Pro"), true);
  key(Qt::Key_S, Qt::ControlModifier);

  EXPECT_EQ(onDisk("en-US/name.txt"), std::string(kBom) + "Trail Notes Pro\r\n\r\n");
  EXPECT_FALSE(shown("name.unsaved"));
  EXPECT_FALSE(document().hasUnsavedChanges());
  EXPECT_EQ(text("status"), "Saved 1 file");
  // Other files are untouched.
  EXPECT_EQ(onDisk("en-US/subtitle.txt"), "Plan hikes offline\n");
}

TEST_F(StudioTest, SaveWritesTheLocaleOnScreenAndSaveAllEveryLocale) {
  open("en-US");
  type("name.input", QStringLiteral("Trail Notes Pro"), true);
  document().selectScope(QStringLiteral("de-DE"));
  type("name.input", QStringLiteral("Wandernotizen Pro"), true);

  key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(onDisk("de-DE/name.txt"), "Wandernotizen Pro\n");
  EXPECT_EQ(onDisk("en-US/name.txt"), "Trail Notes\n");
  EXPECT_TRUE(document().hasUnsavedChanges());

  key(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(onDisk("en-US/name.txt"), "Trail Notes Pro\n");
  EXPECT_FALSE(document().hasUnsavedChanges());
}

TEST_F(StudioTest, DefaultTextShowsAsAPlaceholderUntilTheLocaleHasItsOwn) {
  open();
  ASSERT_EQ(document().currentScope(), "de-DE");
  EXPECT_EQ(text("description.input"), "");
  EXPECT_EQ(read(QStringLiteral("description.input"), "placeholderText").toString(),
            "Wanderungen planen, auch ohne Netz.");
  // The counter counts what the store gets: default/'s text.
  EXPECT_EQ(text("description.counter"), "35 / 4000");

  type("description.input", QStringLiteral("Eigene Beschreibung."));
  key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(onDisk("de-DE/description.txt"), "Eigene Beschreibung.\n");
  EXPECT_EQ(onDisk("default/description.txt"), "Wanderungen planen, auch ohne Netz.\n");
}

TEST_F(StudioTest, DiscardingRestoresOneFieldOneLocaleOrEverything) {
  open("en-US");
  type("name.input", QStringLiteral("One"), true);
  type("subtitle.input", QStringLiteral("Two"), true);
  click("name.discard");
  EXPECT_EQ(text("name.input"), "Trail Notes");
  EXPECT_EQ(text("subtitle.input"), "Two");

  document().discardCurrent();
  settle();
  EXPECT_EQ(text("subtitle.input"), "Plan hikes offline");

  type("name.input", QStringLiteral("Three"), true);
  document().selectScope(QStringLiteral("de-DE"));
  type("name.input", QStringLiteral("Vier"), true);
  document().discardAll();
  settle();
  EXPECT_EQ(text("name.input"), "Wandernotizen");
  EXPECT_FALSE(document().hasUnsavedChanges());
}

// Which side of a conflict the user keeps, and the text the field and the file end with.
struct Resolution {
  const char* name;
  const char* button;
  const char* kept;
};

class StudioConflictTest : public StudioTest, public ::testing::WithParamInterface<Resolution> {};

// Keeping the edit finishes the save it interrupted; keeping the file's text drops the edit.
TEST_P(StudioConflictTest, AFileChangedBehindTheEditorsBackIsAConflictNotOverwritten) {
  open("en-US");
  type("name.input", QStringLiteral("Mine"), true);
  writeFile(folder() / "en-US/name.txt", "Theirs\n");

  key(Qt::Key_S, Qt::ControlModifier);
  ASSERT_TRUE(shown("conflictDialog"));
  EXPECT_EQ(text("conflict.0.fileText"), "Theirs");
  EXPECT_EQ(text("conflict.0.editedText"), "Mine");
  EXPECT_EQ(onDisk("en-US/name.txt"), "Theirs\n");
  EXPECT_TRUE(shown("name.unsaved"));

  click(QString::fromUtf8(GetParam().button));
  EXPECT_FALSE(shown("conflictDialog"));
  EXPECT_EQ(text("name.input"), GetParam().kept);
  EXPECT_EQ(onDisk("en-US/name.txt"), std::string(GetParam().kept) + "\n");
  EXPECT_FALSE(shown("name.unsaved"));
  EXPECT_FALSE(document().hasUnsavedChanges());
}

INSTANTIATE_TEST_SUITE_P(Keeping, StudioConflictTest,
                         ::testing::Values(Resolution{"TheEdit", "conflict.0.keepEdit", "Mine"},
                                           Resolution{"TheFilesText", "conflict.0.keepFile", "Theirs"}),
                         [](const auto& param) { return std::string(param.param.name); });

TEST_F(StudioTest, ChangesOnDiskReachUneditedFieldsWhenTheWindowIsChecked) {
  open("en-US");
  writeFile(folder() / "en-US/subtitle.txt", "Maps for every trail\n");
  document().checkDisk();
  settle();
  EXPECT_EQ(text("subtitle.input"), "Maps for every trail");
  EXPECT_FALSE(shown("subtitle.unsaved"));
  EXPECT_FALSE(shown("conflictDialog"));
}

TEST_F(StudioTest, AFailedWriteKeepsTheEditAndSaysWhy) {
  open("en-US");
  type("name.input", QStringLiteral("Trail Notes Pro"), true);
  fs::permissions(folder() / "en-US/name.txt", fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  {
    const corvane::testing::FilePermissionsEnforced enforced;
    key(Qt::Key_S, Qt::ControlModifier);
  }
  EXPECT_TRUE(shown("errorBanner"));
  EXPECT_THAT(text("errorText"), HasSubstr("name.txt"));
  EXPECT_TRUE(shown("name.unsaved"));
  EXPECT_EQ(text("name.input"), "Trail Notes Pro");
  EXPECT_EQ(onDisk("en-US/name.txt"), "Trail Notes\n");

  // Once the file may be written, the same edit saves.
  fs::permissions(folder() / "en-US/name.txt", fs::perms::owner_write, fs::perm_options::add);
  key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(onDisk("en-US/name.txt"), "Trail Notes Pro\n");
}

TEST_F(StudioTest, KeywordsEditAsChips) {
  open("en-US");
  EXPECT_EQ(text("keywords.chip.0"), "");  // a chip is a container; its label says the keyword
  EXPECT_EQ(text("keywords.remaining"), "82 characters left");

  type("keywords.input", QStringLiteral("camping"));
  key(Qt::Key_Return);
  EXPECT_EQ(keywords(), "hiking,trails,maps,camping");
  EXPECT_EQ(text("keywords.remaining"), "74 characters left");
  EXPECT_NE(studio_->find(QStringLiteral("keywords.chip.3")), nullptr);

  // A repeat in another letter case is not added twice; a comma adds what came before it.
  type("keywords.input", QStringLiteral("Maps,gps,"));
  EXPECT_EQ(keywords(), "hiking,trails,maps,camping,gps");

  // Keyboard: Ctrl+Right moves the focused chip, Delete removes it.
  item(QStringLiteral("keywords.chip.0"))->forceActiveFocus();
  key(Qt::Key_Right, Qt::ControlModifier);
  EXPECT_EQ(keywords(), "trails,hiking,maps,camping,gps");
  item(QStringLiteral("keywords.chip.4"))->forceActiveFocus();
  key(Qt::Key_Delete);
  EXPECT_EQ(keywords(), "trails,hiking,maps,camping");

  click("keywords.chip.0.remove");
  EXPECT_EQ(keywords(), "hiking,maps,camping");
  EXPECT_TRUE(shown("keywords.unsaved"));
}

TEST_F(StudioTest, TheDecisionAndNextActionFollowEveryEdit) {
  open();
  ASSERT_EQ(text("decision"), "Ready to submit");
  document().selectScope(QStringLiteral("en-US"));
  type("name.input", QStringLiteral(""), true);
  EXPECT_THAT(text("decision"), HasSubstr("blocker"));
  EXPECT_THAT(document().nextAction().toStdString(), HasSubstr("en-US"));

  // The next action shows its field with the keyboard focus in it.
  document().selectScope(QStringLiteral("de-DE"));
  click("nextAction");
  EXPECT_EQ(document().currentScope(), "en-US");
  EXPECT_TRUE(read(QStringLiteral("name.input"), "activeFocus").toBool());

  type("name.input", QStringLiteral("Trail Notes"));
  EXPECT_EQ(text("decision"), "Ready to submit");
}

TEST_F(StudioTest, AnAddedLocaleIsWrittenWithItsFolderOnSave) {
  open();
  ASSERT_TRUE(document().addableLocales().contains(QStringLiteral("fr-FR")));
  ASSERT_TRUE(document().addLocale(QStringLiteral("fr-FR"), QStringLiteral("en-US")));
  settle();
  EXPECT_EQ(document().currentScope(), "fr-FR");
  EXPECT_NE(studio_->find(QStringLiteral("scope.fr-FR")), nullptr);
  EXPECT_EQ(text("name.input"), "Trail Notes");
  EXPECT_FALSE(document().addableLocales().contains(QStringLiteral("fr-FR")));

  type("name.input", QStringLiteral("Notes de randonnée"), true);
  key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(onDisk("fr-FR/name.txt"), "Notes de randonnée\n");
  EXPECT_EQ(onDisk("fr-FR/subtitle.txt"), "Plan hikes offline\n");
}

TEST_F(StudioTest, ClosingWithUnsavedChangesAsksFirst) {
  open("en-US");
  type("name.input", QStringLiteral("Unsaved"), true);
  window().close();
  settle();
  EXPECT_TRUE(window().isVisible());
  EXPECT_TRUE(shown("unsavedDialog"));
  click("unsavedCancel");
  EXPECT_TRUE(window().isVisible());
  EXPECT_EQ(onDisk("en-US/name.txt"), "Trail Notes\n");
}

TEST_F(StudioTest, RightToLeftLocalesAreShownRightToLeft) {
  writeFile(folder() / "ar-SA/name.txt", "ملاحظات المسار\n");
  open();
  document().selectScope(QStringLiteral("ar-SA"));
  EXPECT_TRUE(document().currentRightToLeft());
  EXPECT_EQ(read(QStringLiteral("name.input"), "effectiveHorizontalAlignment").toInt(), Qt::AlignRight);
  document().selectScope(QStringLiteral("en-US"));
  EXPECT_FALSE(document().currentRightToLeft());
}

TEST_F(StudioTest, TheKeyboardMovesBetweenLocales) {
  open();
  ASSERT_EQ(document().currentScope(), "de-DE");
  key(Qt::Key_PageDown, Qt::ControlModifier);
  EXPECT_EQ(document().currentScope(), "en-US");
  key(Qt::Key_PageDown, Qt::ControlModifier);
  EXPECT_EQ(document().currentScope(), "shared");
  key(Qt::Key_PageDown, Qt::ControlModifier);
  EXPECT_EQ(document().currentScope(), "shared");

  item(QStringLiteral("scopeList"))->forceActiveFocus();
  key(Qt::Key_Up);
  EXPECT_EQ(document().currentScope(), "en-US");
  key(Qt::Key_Up);
  EXPECT_EQ(document().currentScope(), "de-DE");
}

TEST_F(StudioTest, GooglePlayFoldersShowPlaysFieldsAndNoSharedData) {
  const fs::path play = files_.path() / "play";
  writeFile(play / "en-US/title.txt", "Trail Notes\n");
  writeFile(play / "en-US/short_description.txt", "Plan hikes offline\n");
  writeFile(play / "en-US/full_description.txt", "Plan every hike with maps that work without a signal.\n");
  ASSERT_TRUE(document().open(QString::fromStdString(play.string())));
  settle();
  EXPECT_EQ(document().storeName(), "Google Play");
  EXPECT_EQ(document().scopes()->rowCount(), 1);
  EXPECT_EQ(text("title.counter"), "11 / 30");
  EXPECT_EQ(text("short-description.counter"), "18 / 80");
  type("title.input", QStringLiteral("FREE Trail Notes"), true);
  EXPECT_THAT(text("title.message"), HasSubstr("Rejection risk"));
}

TEST_F(StudioTest, TheFoldersConfigurationSetsTheLevels) {
  writeFile(folder() / ".corvane.toml", "[rules]\n\"name.length\" = \"optimization\"\n");
  open("en-US");
  type("name.input", QStringLiteral("Trail Notes for Hikers Who Love Mountains"), true);
  EXPECT_THAT(text("name.message"), StartsWith("Optimization: "));
  EXPECT_EQ(text("decision"), "Ready to submit");
}

TEST_F(StudioTest, OpenedFoldersAreRememberedAndBadOnesRefusedWithAMessage) {
  open();
  EXPECT_EQ(studio_->recentFolders().folders(), QStringList{QString::fromStdString(folder().string())});
  EXPECT_FALSE(document().open(QString::fromStdString((files_.path() / "missing").string())));
  EXPECT_THAT(document().errorText().toStdString(), HasSubstr("missing"));
  EXPECT_EQ(document().folder().toStdString(), folder().string());
  EXPECT_TRUE(document().isOpen());
  EXPECT_EQ(studio_->recentFolders().folders(), QStringList{QString::fromStdString(folder().string())});
}

TEST(StudioAppearance, FollowsAForcedChoice) {
  for (const auto& [forced, dark] : {std::pair("dark", true), std::pair("light", false)}) {
    StudioOptions options;
    options.appearance = QString::fromLatin1(forced);
    StudioWindow studio(options);
    const QColor background = studio.window().color();
    EXPECT_EQ(background.lightness() < 128, dark) << forced;
  }
}

TEST(FieldRows, AnUpdateAnnouncesOnlyTheRolesThatChanged) {
  FieldListModel model;
  FieldRow row;
  row.key = QStringLiteral("name");
  row.text = QStringLiteral("A");
  row.counter = QStringLiteral("1 / 30");
  model.reset({row});
  QSignalSpy changes(&model, &FieldListModel::dataChanged);

  model.update(0, row);
  EXPECT_EQ(changes.count(), 0);

  row.text = QStringLiteral("AB");
  row.counter = QStringLiteral("2 / 30");
  model.update(0, row);
  ASSERT_EQ(changes.count(), 1);
  const auto roles = changes.front().at(2).value<QList<int>>();
  EXPECT_EQ(roles, (QList<int>{FieldListModel::TextRole, FieldListModel::CounterRole}));
}

}  // namespace
}  // namespace corvane::studio
