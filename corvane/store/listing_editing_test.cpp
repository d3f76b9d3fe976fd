// A listing edited as a desktop editor edits it: per field, with default/ as a fallback,
// saved in parts, aware of changes made on disk meanwhile, and growing new locales.
#include "corvane/store/conflict_error.hpp"
#include "corvane/store/input_error.hpp"
#include "corvane/store/store_facts.hpp"
#include "corvane/store/store_listing.hpp"
#include "corvane/testing/file_permissions_enforced.hpp"
#include "corvane/testing/temporary_folder.hpp"
#include "corvane/testing/thrown.hpp"
#include "corvane/tracking/unified_change_tracker.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane::store {
namespace {

namespace fs = std::filesystem;
using corvane::testing::FilePermissionsEnforced;
using corvane::testing::readFile;
using corvane::testing::TemporaryFolder;
using corvane::testing::thrown;
using corvane::testing::thrownMessage;
using corvane::testing::writeFile;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

const StoreFacts& appStore() {
  static const StoreFacts loaded = StoreFacts::load(CORVANE_STORE_RESOURCES, StoreId::appStore);
  return loaded;
}

const StoreFacts& play() {
  static const StoreFacts loaded = StoreFacts::load(CORVANE_STORE_RESOURCES, StoreId::googlePlay);
  return loaded;
}

constexpr RuleContext kContext{.firstVersion = false, .currentYear = 2026};
constexpr std::string_view kBom = "\xEF\xBB\xBF";

// Every file and folder below `root`, with each file's bytes: what "nothing was written"
// is checked against.
std::map<std::string, std::string> snapshot(const fs::path& root) {
  std::map<std::string, std::string> entries;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    const std::string name = fs::relative(entry.path(), root).string();
    entries[name] = entry.is_directory() ? std::string("<folder>") : readFile(entry.path());
  }
  return entries;
}

std::vector<std::string> scopesOf(const StoreListing& listing) {
  std::vector<std::string> scopes;
  for (const auto& locale : listing.locales()) scopes.push_back(locale->scope());
  return scopes;
}

std::vector<std::string> changedScopes(const StoreListing& listing) {
  std::vector<std::string> scopes;
  for (const auto& entity : listing.tracker()->entitiesWithChanges()) scopes.push_back(entity->entityId());
  std::ranges::sort(scopes);
  return scopes;
}

// An App Store folder: de-DE and fr-FR read default/'s description (BOM, CRLF) and name;
// en-US has its own name and keywords.
fs::path writeAppStoreFolder(const fs::path& root) {
  writeFile(root / "default" / "description.txt", std::string(kBom) + "Shared words.\r\n");
  writeFile(root / "default" / "name.txt", "Notes\n");
  writeFile(root / "de-DE" / "keywords.txt", "notizen\n");
  writeFile(root / "fr-FR" / "keywords.txt", "notes\n");
  writeFile(root / "en-US" / "name.txt", std::string(kBom) + "Notes Plus\r\n");
  writeFile(root / "en-US" / "keywords.txt", "notes,lists\n");
  writeFile(root / "copyright.txt", "2026 Corvane\n");
  return root;
}

// An auto-fix of default/name.txt, which de-DE and fr-FR read.
ListingEdit defaultNameFix() {
  ListingEdit fix;
  fix.scope = "de-DE";
  fix.field = ListingField::name;
  fix.file = "default/name.txt";
  fix.after = "Note";
  return fix;
}

// ---------------------------------------------------------------------------------------
// Editing per field, default/ as a fallback

TEST(ListingEditTest, EditingADefaultTextDetachesOnlyThatLocale) {
  TemporaryFolder temporary;
  const auto root = writeAppStoreFolder(temporary.path());
  StoreListing listing(root, appStore(), {}, kContext);
  ASSERT_EQ(listing.source("de-DE", ListingField::description), TextSource::defaults);
  EXPECT_EQ(listing.defaultText(ListingField::description), "Shared words.");

  listing.edit("de-DE", ListingField::description, "Deutsche Worte.");
  EXPECT_EQ(listing.source("de-DE", ListingField::description), TextSource::own);
  EXPECT_EQ(listing.entity("de-DE")->file(ListingField::description), "de-DE/description.txt")
      << "findings point at the file the edit goes to";
  EXPECT_EQ(listing.source("fr-FR", ListingField::description), TextSource::defaults);
  EXPECT_EQ(listing.entity("fr-FR")->text(ListingField::description), "Shared words.");
  EXPECT_EQ(listing.entity("fr-FR")->file(ListingField::description), "default/description.txt");
  EXPECT_EQ(changedScopes(listing), std::vector<std::string>{"listing:de-DE"});

  const auto before = snapshot(root);
  listing.writeChanges();
  auto expected = before;
  expected["de-DE/description.txt"] = std::string(kBom) + "Deutsche Worte.\r\n";  // default/'s frame
  EXPECT_EQ(snapshot(root), expected) << "default/ and every other file stay as they were";
  EXPECT_FALSE(listing.tracker()->hasUnsavedChanges());
  EXPECT_EQ(listing.source("de-DE", ListingField::description), TextSource::own);
  EXPECT_EQ(listing.folder().locales[0].text(ListingField::description).file, "de-DE/description.txt");

  // Now its own file: "" is an empty text of its own, no longer a way back to default/.
  listing.edit("de-DE", ListingField::description, "");
  EXPECT_EQ(listing.source("de-DE", ListingField::description), TextSource::own);
  EXPECT_TRUE(listing.entity("de-DE")->hasUnsavedChanges());
}

TEST(ListingEditTest, ADetachedFieldGoesBackToDefaultWithoutAnUnsavedChange) {
  struct Case {
    const char* how;
    std::function<void(StoreListing&)> undo;
  };
  const Case cases[] = {
      {"set to empty", [](StoreListing& l) { l.edit("de-DE", ListingField::description, ""); }},
      {"set to default/'s text", [](StoreListing& l) { l.edit("de-DE", ListingField::description, "Shared words."); }},
      {"discard the field", [](StoreListing& l) { l.discard("de-DE", ListingField::description); }},
      {"discard the locale", [](StoreListing& l) { l.discard("de-DE"); }},
      {"discard everything", [](StoreListing& l) { l.discardChanges(); }},
  };
  for (const auto& [how, undo] : cases) {
    SCOPED_TRACE(how);
    TemporaryFolder temporary;
    const auto root = writeAppStoreFolder(temporary.path());
    StoreListing listing(root, appStore(), {}, kContext);
    const auto before = snapshot(root);
    listing.edit("de-DE", ListingField::description, "Deutsche Worte.");
    ASSERT_EQ(listing.source("de-DE", ListingField::description), TextSource::own);
    undo(listing);
    const auto& german = *listing.entity("de-DE");
    EXPECT_EQ(listing.source("de-DE", ListingField::description), TextSource::defaults);
    EXPECT_EQ(german.file(ListingField::description), "default/description.txt");
    EXPECT_EQ(german.text(ListingField::description), "Shared words.");
    EXPECT_FALSE(listing.tracker()->hasUnsavedChanges());
    listing.writeChanges();
    EXPECT_EQ(snapshot(root), before);
  }
}

TEST(ListingEditTest, DiscardingOneFieldOrOneLocaleLeavesTheOthersEdited) {
  TemporaryFolder temporary;
  const auto root = writeAppStoreFolder(temporary.path());
  StoreListing listing(root, appStore(), {}, kContext);
  listing.edit("en-US", ListingField::name, "Notes Pro");
  listing.edit("en-US", ListingField::keywords, "notes");
  listing.edit("de-DE", ListingField::keywords, "liste");
  listing.edit("shared", ListingField::copyright, "2026 Someone");

  listing.discard("en-US", ListingField::name);
  EXPECT_EQ(listing.entity("en-US")->text(ListingField::name), "Notes Plus");
  EXPECT_EQ(listing.entity("en-US")->text(ListingField::keywords), "notes");
  listing.discard("de-DE");
  EXPECT_EQ(listing.entity("de-DE")->text(ListingField::keywords), "notizen");
  EXPECT_EQ(changedScopes(listing), (std::vector<std::string>{"listing:en-US", "listing:shared"}));
}

TEST(ListingEditTest, EditRefusesUnknownScopesAndFields) {
  TemporaryFolder temporary;
  const auto root = writeAppStoreFolder(temporary.path());
  StoreListing listing(root, appStore(), {}, kContext);
  EXPECT_EQ(listing.entity("shared"), &listing.shared());
  EXPECT_EQ(listing.entity("en-US"), listing.locales()[1].get());
  EXPECT_EQ(listing.entity("ja"), nullptr);

  struct Case {
    const char* scope;
    ListingField field;
    const char* message;
  };
  const Case cases[] = {
      {"ja", ListingField::name, "no locale 'ja' in this listing"},
      {"en-US", ListingField::copyright, "the en-US listing has no field 'copyright'"},
      {"shared", ListingField::name, "the shared listing has no field 'name'"},
      {"en-US", ListingField::title, "the en-US listing has no field 'title'"},
  };
  for (const auto& [scope, field, message] : cases) {
    SCOPED_TRACE(std::string(scope) + " " + std::string(fieldKey(field)));
    for (const auto& call : std::vector<std::function<void()>>{
             [&] { listing.edit(scope, field, "x"); }, [&] { listing.discard(scope, field); },
             [&] { (void)listing.source(scope, field); }, [&] { listing.keepDiskText(scope, field); },
             [&] { listing.keepEditedText(scope, field); }}) {
      EXPECT_EQ(thrownMessage<std::invalid_argument>(call), message);
    }
  }
  EXPECT_THROW(listing.discard("ja"), std::invalid_argument);
  EXPECT_FALSE(listing.tracker()->hasUnsavedChanges());
}

TEST(ListingEditTest, DefaultTextIsDefaultsFileOrNothing) {
  TemporaryFolder temporary;
  const auto root = writeAppStoreFolder(temporary.path());
  const StoreListing listing(root, appStore(), {}, kContext);
  EXPECT_EQ(listing.defaultText(ListingField::name), "Notes");
  EXPECT_EQ(listing.defaultText(ListingField::subtitle), std::nullopt) << "no default/subtitle.txt";
  EXPECT_EQ(listing.defaultText(ListingField::copyright), std::nullopt) << "a shared field";
  EXPECT_EQ(listing.source("en-US", ListingField::subtitle), TextSource::none);
  EXPECT_EQ(listing.source("en-US", ListingField::name), TextSource::own);

  TemporaryFolder withoutDefaults;
  writeFile(withoutDefaults.path() / "en-US" / "name.txt", "Notes");
  EXPECT_EQ(StoreListing(withoutDefaults.path(), appStore(), {}, kContext).defaultText(ListingField::name),
            std::nullopt);

  // Play's layout has no default/ folder: one named so is only a folder.
  TemporaryFolder playFolder;
  writeFile(playFolder.path() / "en-US" / "title.txt", "Notes");
  writeFile(playFolder.path() / "default" / "title.txt", "Notes");
  EXPECT_EQ(StoreListing(playFolder.path(), play(), {}, kContext).defaultText(ListingField::title), std::nullopt);
}

// ---------------------------------------------------------------------------------------
// Saving part of a listing

TEST(ListingWriteTest, WritesOnlyTheChosenScopesAndMarksDefaultsReadersSaved) {
  TemporaryFolder temporary;
  const auto root = writeAppStoreFolder(temporary.path());
  writeFile(root / "default" / "name.txt", std::string(31, 'd') + "\r\n");
  StoreListing listing(root, appStore(), {}, kContext);
  // The auto-fix writes default/ once, for both locales that read it.
  const auto fixes = listing.plannedFixes();
  const auto fix = std::ranges::find(fixes, "default/name.txt", &ListingEdit::file);
  ASSERT_NE(fix, fixes.end());
  ASSERT_EQ(fix->scope, "de-DE");
  listing.apply(*fix);
  listing.edit("en-US", ListingField::keywords, "notes");
  listing.edit("shared", ListingField::copyright, "2026 Corvane Ltd");
  ASSERT_EQ(changedScopes(listing),
            (std::vector<std::string>{"listing:de-DE", "listing:en-US", "listing:fr-FR", "listing:shared"}));

  auto expected = snapshot(root);
  EXPECT_THROW(listing.writeChanges(std::vector<std::string>{"de-DE", "it-IT"}), std::invalid_argument);
  EXPECT_EQ(snapshot(root), expected);

  listing.writeChanges(std::vector<std::string>{"de-DE"});
  expected["default/name.txt"] = std::string(30, 'd') + "\r\n";
  EXPECT_EQ(snapshot(root), expected);
  EXPECT_EQ(changedScopes(listing), (std::vector<std::string>{"listing:en-US", "listing:shared"}))
      << "fr-FR reads the same default/ file, so it is saved too";

  listing.writeChanges(std::vector<std::string>{"shared", "fr-FR"});
  expected["copyright.txt"] = "2026 Corvane Ltd\n";
  EXPECT_EQ(snapshot(root), expected);
  EXPECT_EQ(changedScopes(listing), std::vector<std::string>{"listing:en-US"});

  // What was written is the new record: writing again finds no conflict with it.
  listing.edit("de-DE", ListingField::name, "Notizen");
  listing.edit("shared", ListingField::copyright, "2027 Corvane Ltd");
  listing.writeChanges();
  expected["de-DE/name.txt"] = "Notizen\r\n";
  expected["copyright.txt"] = "2027 Corvane Ltd\n";
  expected["en-US/keywords.txt"] = "notes\n";
  EXPECT_EQ(snapshot(root), expected);
  EXPECT_FALSE(listing.tracker()->hasUnsavedChanges());
}

TEST(ListingWriteTest, LocalesReadingAWrittenDefaultFileShowItAndDetachedOnesKeepTheirEdit) {
  TemporaryFolder temporary;
  const auto root = writeAppStoreFolder(temporary.path());
  writeFile(root / "it" / "keywords.txt", "note\n");
  StoreListing listing(root, appStore(), {}, kContext);
  listing.apply(defaultNameFix());  // de-DE, fr-FR and it read default/name.txt
  ASSERT_EQ(listing.entity("it")->text(ListingField::name), "Note");
  listing.edit("fr-FR", ListingField::name, "");  // back to default/'s saved text, for fr-FR only
  listing.edit("it", ListingField::name, "Note italiane");
  ASSERT_EQ(listing.entity("fr-FR")->text(ListingField::name), "Notes");

  listing.writeChanges(std::vector<std::string>{"de-DE"});
  EXPECT_EQ(readFile(root / "default" / "name.txt"), "Note\n");
  const auto& french = listing.entity("fr-FR")->property(ListingField::name);
  EXPECT_EQ(french.wrappedValue(), "Note") << "fr-FR reads the file written";
  EXPECT_FALSE(french.hasChanged());
  const auto& italian = listing.entity("it")->property(ListingField::name);
  EXPECT_EQ(italian.wrappedValue(), "Note italiane");
  EXPECT_EQ(italian.originalValue(), "Note") << "what it returns to";
  listing.edit("it", ListingField::name, "");
  EXPECT_EQ(listing.entity("it")->text(ListingField::name), "Note");
  EXPECT_FALSE(listing.tracker()->hasUnsavedChanges());
}

// ---------------------------------------------------------------------------------------
// Files changed on disk

struct DiskChange {
  const char* what;
  std::function<void(StoreListing&)> edit;
  std::function<void(const fs::path&)> change;
  std::vector<ListingConflict> conflicts;
};

std::vector<DiskChange> diskChanges() {
  return {
      {"a file edited",
       [](StoreListing& l) { l.edit("en-US", ListingField::name, "Notes Pro"); },
       [](const fs::path& root) { writeFile(root / "en-US" / "name.txt", "Notes Max\n"); },
       {{"en-US", ListingField::name, "en-US/name.txt", "Notes Plus", "Notes Max", "Notes Pro"}}},
      {"a file created where there was none",
       [](StoreListing& l) { l.edit("en-US", ListingField::subtitle, "Lists that check"); },
       [](const fs::path& root) { writeFile(root / "en-US" / "subtitle.txt", "Lists\r\n"); },
       {{"en-US", ListingField::subtitle, "en-US/subtitle.txt", "", "Lists", "Lists that check"}}},
      {"a file created for a field detached from default/",
       [](StoreListing& l) { l.edit("de-DE", ListingField::description, "Deutsche Worte."); },
       [](const fs::path& root) { writeFile(root / "de-DE" / "description.txt", "Andere Worte."); },
       {{"de-DE", ListingField::description, "de-DE/description.txt", "Shared words.", "Andere Worte.",
         "Deutsche Worte."}}},
      {"a file deleted",
       [](StoreListing& l) { l.edit("en-US", ListingField::keywords, "notes"); },
       [](const fs::path& root) { fs::remove(root / "en-US" / "keywords.txt"); },
       {{"en-US", ListingField::keywords, "en-US/keywords.txt", "notes,lists", std::nullopt, "notes"}}},
      {"a default/ file that two locales' fix would rewrite",
       [](StoreListing& l) { l.apply(defaultNameFix()); },
       [](const fs::path& root) { writeFile(root / "default" / "name.txt", "Notebook\n"); },
       {{"de-DE", ListingField::name, "default/name.txt", "Notes", "Notebook", "Note"},
        {"fr-FR", ListingField::name, "default/name.txt", "Notes", "Notebook", "Note"}}},
      {"only the frame changed",
       [](StoreListing& l) { l.edit("en-US", ListingField::name, "Notes Pro"); },
       [](const fs::path& root) { writeFile(root / "en-US" / "name.txt", "Notes Plus\n"); },
       {{"en-US", ListingField::name, "en-US/name.txt", "Notes Plus", "Notes Plus", "Notes Pro"}}},
  };
}

TEST(ListingConflictTest, AWriteOverAFileChangedOnDiskIsRefusedWithNothingWritten) {
  for (const auto& [what, edit, change, conflicts] : diskChanges()) {
    SCOPED_TRACE(what);
    TemporaryFolder temporary;
    const auto root = writeAppStoreFolder(temporary.path());
    StoreListing listing(root, appStore(), {}, kContext);
    edit(listing);
    listing.edit("shared", ListingField::copyright, "2026 Corvane Ltd");  // writable, and still not written
    change(root);
    const auto before = snapshot(root);
    const auto error = thrown<ConflictError>([&] { listing.writeChanges(); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->conflicts(), conflicts);
    EXPECT_THAT(error->what(), HasSubstr(conflicts[0].file + " was changed on disk since it was read or written "
                                                             "here; nothing was written"));
    EXPECT_EQ(snapshot(root), before);
    EXPECT_EQ(listing.entity(conflicts[0].scope)->text(conflicts[0].field), conflicts[0].editedText);
    EXPECT_TRUE(listing.shared().hasUnsavedChanges());
    // Writing the scopes without the conflict goes ahead.
    listing.writeChanges(std::vector<std::string>{"shared"});
    EXPECT_EQ(readFile(root / "copyright.txt"), "2026 Corvane Ltd\n");
  }
}

TEST(ListingConflictTest, RefreshTakesUneditedFieldsAndReportsEditedOnes) {
  for (const auto& [what, edit, change, conflicts] : diskChanges()) {
    SCOPED_TRACE(what);
    TemporaryFolder temporary;
    const auto root = writeAppStoreFolder(temporary.path());
    StoreListing listing(root, appStore(), {}, kContext);
    edit(listing);
    change(root);
    EXPECT_EQ(listing.refreshFromDisk(), conflicts);
    for (const auto& conflict : conflicts) {
      const auto& property = listing.entity(conflict.scope)->property(conflict.field);
      EXPECT_EQ(property.wrappedValue(), conflict.editedText);
      EXPECT_EQ(property.originalValue(), conflict.savedText);
    }
    EXPECT_THROW(listing.writeChanges(), ConflictError) << "a refresh does not settle a conflict";
  }

  // The same changes without edits are taken as they are.
  struct Taken {
    const char* scope;
    ListingField field;
    const char* text;
    TextSource source;
    const char* file;
  };
  const std::vector<Taken> taken = {
      {"en-US", ListingField::name, "Notes Max", TextSource::own, "en-US/name.txt"},
      {"en-US", ListingField::subtitle, "Lists", TextSource::own, "en-US/subtitle.txt"},
      {"de-DE", ListingField::description, "Andere Worte.", TextSource::own, "de-DE/description.txt"},
      {"en-US", ListingField::keywords, "", TextSource::none, "en-US/keywords.txt"},
      {"de-DE", ListingField::name, "Notebook", TextSource::defaults, "default/name.txt"},
      {"fr-FR", ListingField::name, "Notebook", TextSource::defaults, "default/name.txt"},
  };
  TemporaryFolder temporary;
  const auto root = writeAppStoreFolder(temporary.path());
  StoreListing listing(root, appStore(), {}, kContext);
  for (const auto& change : diskChanges()) change.change(root);
  fs::remove(root / "en-US" / "name.txt");
  writeFile(root / "en-US" / "name.txt", "Notes Max\n");
  EXPECT_EQ(listing.refreshFromDisk(), std::vector<ListingConflict>{});
  for (const auto& [scope, field, text, source, file] : taken) {
    SCOPED_TRACE(std::string(scope) + " " + std::string(fieldKey(field)));
    const auto& entity = *listing.entity(scope);
    EXPECT_EQ(entity.text(field), text);
    EXPECT_FALSE(entity.property(field).hasChanged());
    EXPECT_EQ(listing.source(scope, field), source);
    EXPECT_EQ(entity.file(field), file);
  }
  EXPECT_EQ(listing.defaultText(ListingField::name), "Notebook");
  // The refreshed record is what the next write expects.
  listing.edit("en-US", ListingField::name, "Notes Pro");
  listing.writeChanges();
  EXPECT_EQ(readFile(root / "en-US" / "name.txt"), "Notes Pro\n");
}

TEST(ListingConflictTest, AFolderThatCannotBeReadAnyMoreChangesNothing) {
  TemporaryFolder temporary;
  const auto root = writeAppStoreFolder(temporary.path() / "metadata");
  StoreListing listing(root, appStore(), {}, kContext);
  listing.edit("en-US", ListingField::name, "Notes Pro");
  writeFile(root / "de-DE" / "keywords.txt", "liste\n");
  writeFile(root / "fr-FR" / "name.txt", "Caf\xe9\n");  // not UTF-8
  EXPECT_THROW((void)listing.refreshFromDisk(), InputError);
  EXPECT_EQ(listing.entity("de-DE")->text(ListingField::keywords), "notizen");
  EXPECT_EQ(listing.entity("en-US")->text(ListingField::name), "Notes Pro");
  fs::rename(root, temporary.path() / "moved");
  EXPECT_THROW((void)listing.refreshFromDisk(), InputError);
  EXPECT_EQ(listing.entity("de-DE")->text(ListingField::keywords), "notizen");
}

TEST(ListingConflictTest, KeepDiskTextTakesTheFileAndKeepEditedTextOverwritesIt) {
  struct Case {
    const char* what;
    bool keepEdit;
    std::function<void(const fs::path&)> change;
    const char* scope;
    ListingField field;
    std::string text;                    // the field's text once settled
    std::string saved;                   // and its saved text
    bool unsaved;                        // whether the edit is still to be written
    std::string file;                    // the file that is written then ...
    std::optional<std::string> written;  // ... with these bytes; nothing: not written
  };
  const fs::path name = "en-US/name.txt";
  const Case cases[] = {
      {"disk text of an edited file", false, [](const fs::path& r) { writeFile(r / "en-US/name.txt", "Max\r\n"); },
       "en-US", ListingField::name, "Max", "Max", false, "en-US/name.txt", "Max\r\n"},
      {"edited text over an edited file", true, [](const fs::path& r) { writeFile(r / "en-US/name.txt", "Max\r\n"); },
       "en-US", ListingField::name, "Notes Pro", "Max", true, "en-US/name.txt", "Notes Pro\r\n"},
      {"disk text of a deleted file", false, [](const fs::path& r) { fs::remove(r / "en-US/name.txt"); }, "en-US",
       ListingField::name, "Notes", "Notes", false, "en-US/name.txt", std::nullopt},
      {"edited text over a deleted file", true, [](const fs::path& r) { fs::remove(r / "en-US/name.txt"); }, "en-US",
       ListingField::name, "Notes Pro", "", true, "en-US/name.txt", std::string(kBom) + "Notes Pro\r\n"},
      {"disk text of a file created for a detached field", false,
       [](const fs::path& r) { writeFile(r / "de-DE/description.txt", "Andere\n"); }, "de-DE",
       ListingField::description, "Andere", "Andere", false, "de-DE/description.txt", "Andere\n"},
      {"edited text over a file created for a detached field", true,
       [](const fs::path& r) { writeFile(r / "de-DE/description.txt", "Andere\n"); }, "de-DE",
       ListingField::description, "Deutsche Worte.", "Andere", true, "de-DE/description.txt", "Deutsche Worte.\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    TemporaryFolder temporary;
    const auto root = writeAppStoreFolder(temporary.path());
    StoreListing listing(root, appStore(), {}, kContext);
    listing.edit("en-US", ListingField::name, "Notes Pro");
    listing.edit("de-DE", ListingField::description, "Deutsche Worte.");
    c.change(root);
    ASSERT_EQ(listing.refreshFromDisk().size(), 1u);
    if (c.keepEdit) {
      listing.keepEditedText(c.scope, c.field);
    } else {
      listing.keepDiskText(c.scope, c.field);
    }
    const auto& property = listing.entity(c.scope)->property(c.field);
    EXPECT_EQ(property.wrappedValue(), c.text);
    EXPECT_EQ(property.originalValue(), c.saved);
    EXPECT_EQ(property.hasChanged(), c.unsaved);
    EXPECT_EQ(listing.refreshFromDisk(), std::vector<ListingConflict>{}) << "settled";
    listing.writeChanges();
    if (c.written) {
      EXPECT_EQ(readFile(root / c.file), *c.written);
    } else {
      EXPECT_FALSE(fs::exists(root / c.file));
    }
    EXPECT_FALSE(listing.tracker()->hasUnsavedChanges());
  }
}

TEST(ListingConflictTest, KeepDiskTextSettlesADefaultFileForEveryLocaleThatReadsIt) {
  TemporaryFolder temporary;
  const auto root = writeAppStoreFolder(temporary.path());
  StoreListing listing(root, appStore(), {}, kContext);
  listing.apply(defaultNameFix());
  writeFile(root / "default" / "name.txt", "Notebook\n");
  ASSERT_EQ(listing.refreshFromDisk().size(), 2u);
  listing.keepDiskText("fr-FR", ListingField::name);
  for (const char* scope : {"de-DE", "fr-FR"}) {
    EXPECT_EQ(listing.entity(scope)->text(ListingField::name), "Notebook") << scope;
  }
  EXPECT_EQ(listing.defaultText(ListingField::name), "Notebook");
  EXPECT_FALSE(listing.tracker()->hasUnsavedChanges());
}

TEST(ListingWriteTest, AReadOnlyFileIsRefusedWithNothingWritten) {
  TemporaryFolder temporary;
  const auto root = writeAppStoreFolder(temporary.path());
  StoreListing listing(root, appStore(), {}, kContext);
  listing.edit("de-DE", ListingField::keywords, "liste");
  listing.edit("en-US", ListingField::keywords, "notes");
  const fs::path readOnly = root / "en-US" / "keywords.txt";
  fs::permissions(readOnly, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  const auto before = snapshot(root);
  {
    const FilePermissionsEnforced enforced;
    // Without the guard a root test process could write anything, and this test would
    // prove nothing.
    const int fd = ::open(readOnly.c_str(), O_WRONLY | O_CLOEXEC);
    if (fd >= 0) ::close(fd);
    ASSERT_LT(fd, 0) << "the file is writable to this test after all";
    EXPECT_EQ(thrownMessage<InputError>([&] { listing.writeChanges(); }),
              readOnly.string() + ": the file is read-only; nothing was written");
  }
  EXPECT_EQ(snapshot(root), before);
  EXPECT_EQ(fs::status(readOnly).permissions() & fs::perms::all,
            fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  EXPECT_EQ(changedScopes(listing), (std::vector<std::string>{"listing:de-DE", "listing:en-US"}));
}

// ---------------------------------------------------------------------------------------
// Adding a locale

TEST(AddLocaleTest, ANewLocaleStartsFromDefaultAndIsWrittenIntoItsOwnFolder) {
  TemporaryFolder temporary;
  const auto root = writeAppStoreFolder(temporary.path());
  StoreListing listing(root, appStore(), {}, kContext);
  const auto before = snapshot(root);
  auto& italian = listing.addLocale("it");
  EXPECT_EQ(scopesOf(listing), (std::vector<std::string>{"de-DE", "en-US", "fr-FR", "it"}));
  EXPECT_EQ(listing.tracker()->getEntity<ListingEntity>("listing:it").get(), &italian);
  EXPECT_EQ(listing.entity("it"), &italian);
  EXPECT_EQ(italian.text(ListingField::description), "Shared words.");
  EXPECT_EQ(listing.source("it", ListingField::description), TextSource::defaults);
  EXPECT_EQ(listing.source("it", ListingField::keywords), TextSource::none);
  EXPECT_EQ(italian.file(ListingField::keywords), "it/keywords.txt");
  EXPECT_FALSE(listing.tracker()->hasUnsavedChanges());
  // Judged like the others: its keywords are required and missing.
  EXPECT_THAT(italian.findings(), ::testing::Contains(::testing::Field(&ListingFinding::rule, "keywords.required")));
  listing.writeChanges();
  EXPECT_EQ(snapshot(root), before) << "nothing to write: no folder either";

  listing.edit("it", ListingField::keywords, "note,liste");
  listing.edit("it", ListingField::name, "Note");
  listing.writeChanges();
  auto expected = before;
  expected["it"] = "<folder>";
  expected["it/keywords.txt"] = "note,liste";
  expected["it/name.txt"] = "Note\n";  // detached from default/name.txt, whose frame it keeps
  EXPECT_EQ(snapshot(root), expected);
  EXPECT_EQ(listing.source("it", ListingField::keywords), TextSource::own);
  EXPECT_FALSE(listing.tracker()->hasUnsavedChanges());
  // Read again, the folder holds the same listing.
  const StoreListing reread(root, appStore(), {}, kContext);
  EXPECT_EQ(scopesOf(reread), scopesOf(listing));
  EXPECT_EQ(reread.entity("it")->text(ListingField::keywords), "note,liste");
}

TEST(AddLocaleTest, CopyFromMakesUnsavedEditsOfTheLocalesOwnTexts) {
  TemporaryFolder temporary;
  const auto root = writeAppStoreFolder(temporary.path());
  StoreListing listing(root, appStore(), {}, kContext);
  listing.edit("en-US", ListingField::subtitle, "Lists that check");  // not written yet: copied all the same
  auto& british = listing.addLocale("en-GB", "en-US");
  EXPECT_EQ(british.text(ListingField::name), "Notes Plus");
  EXPECT_EQ(british.text(ListingField::keywords), "notes,lists");
  EXPECT_EQ(british.text(ListingField::subtitle), "Lists that check");
  EXPECT_EQ(british.text(ListingField::description), "Shared words.") << "en-US reads it from default/";
  EXPECT_EQ(listing.source("en-GB", ListingField::description), TextSource::defaults);
  EXPECT_EQ(listing.source("en-GB", ListingField::name), TextSource::own);
  EXPECT_TRUE(british.hasUnsavedChanges());

  listing.writeChanges(std::vector<std::string>{"en-GB"});
  // A file of its own keeps the frame of the one it replaces as the locale's text:
  // default/'s where it read default/, en-US's where it had none.
  EXPECT_EQ(readFile(root / "en-GB" / "name.txt"), "Notes Plus\n");
  EXPECT_EQ(readFile(root / "en-GB" / "keywords.txt"), "notes,lists\n");
  EXPECT_EQ(readFile(root / "en-GB" / "subtitle.txt"), "Lists that check");
  EXPECT_FALSE(fs::exists(root / "en-GB" / "description.txt"));
  EXPECT_FALSE(fs::exists(root / "en-US" / "subtitle.txt")) << "only the chosen scope";
}

TEST(AddLocaleTest, RefusesCodesWithAPlainSentence) {
  TemporaryFolder temporary;
  const auto root = writeAppStoreFolder(temporary.path());
  ListingConfiguration configuration;
  configuration.extraLocales = {"en-XA"};
  StoreListing listing(root, appStore(), configuration, kContext);
  struct Case {
    std::string code;
    std::optional<std::string_view> copyFrom;
    const char* message;
  };
  const Case cases[] = {
      {"en_GB", std::nullopt, "'en_GB' is not a locale code the store knows (did you mean 'en-GB'?)"},
      {"ja-JP", std::nullopt, "'ja-JP' is not a locale code the store knows (did you mean 'ja'?)"},
      {"en-US", std::nullopt, "the listing already has the locale 'en-US'"},
      {"ja", "it", "no locale 'it' in this listing to copy from"},
      {"ja", "shared", "no locale 'shared' in this listing to copy from"},
  };
  for (const auto& [code, copyFrom, message] : cases) {
    SCOPED_TRACE(code);
    EXPECT_EQ(thrownMessage<std::invalid_argument>([&] { listing.addLocale(code, copyFrom); }), message);
  }
  EXPECT_EQ(scopesOf(listing), (std::vector<std::string>{"de-DE", "en-US", "fr-FR"}));
  EXPECT_EQ(listing.addLocale("en-XA").scope(), "en-XA") << "a code the configuration adds";
  EXPECT_EQ(scopesOf(listing), (std::vector<std::string>{"de-DE", "en-US", "en-XA", "fr-FR"}));
}

TEST(AddLocaleTest, ANewLocalesFolderGoesAgainWhenTheWriteFails) {
  TemporaryFolder temporary;
  const auto root = writeAppStoreFolder(temporary.path());
  StoreListing listing(root, appStore(), {}, kContext);
  listing.addLocale("cs", "en-US");
  listing.edit("fr-FR", ListingField::keywords, "listes");
  // fr-FR's folder takes no new file, so the write fails after cs/ was made and filled.
  fs::permissions(root / "fr-FR", fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                  fs::perm_options::remove);
  const auto before = snapshot(root);
  {
    const FilePermissionsEnforced enforced;
    EXPECT_THROW(listing.writeChanges(), InputError);
  }
  fs::permissions(root / "fr-FR", fs::perms::owner_write, fs::perm_options::add);
  EXPECT_EQ(snapshot(root), before);
  EXPECT_FALSE(fs::exists(root / "cs"));
  EXPECT_TRUE(listing.entity("cs")->hasUnsavedChanges());
  listing.writeChanges();
  EXPECT_EQ(readFile(root / "cs" / "keywords.txt"), "notes,lists\n");
}

TEST(AddLocaleTest, APlayChangelogIsWrittenUnderTheNewestVersionCode) {
  TemporaryFolder temporary;
  const auto root = temporary.path();
  writeFile(root / "en-US" / "title.txt", "Notes\n");
  writeFile(root / "en-US" / "changelogs" / "9.txt", "Old notes\n");
  writeFile(root / "en-US" / "changelogs" / "12.txt", "Faster lists\n");
  writeFile(root / "fr-FR" / "title.txt", "Notes\n");
  StoreListing listing(root, play(), {}, kContext);
  auto& german = listing.addLocale("de-DE", "en-US");
  EXPECT_EQ(german.text(ListingField::changelog), "Faster lists");
  listing.edit("fr-FR", ListingField::changelog, "Listes plus rapides");
  listing.writeChanges();
  EXPECT_EQ(readFile(root / "de-DE" / "changelogs" / "12.txt"), "Faster lists\n");
  EXPECT_EQ(readFile(root / "de-DE" / "title.txt"), "Notes\n");
  EXPECT_EQ(readFile(root / "fr-FR" / "changelogs" / "12.txt"), "Listes plus rapides");
  EXPECT_EQ(german.file(ListingField::changelog), "de-DE/changelogs/12.txt");
  EXPECT_EQ(listing.source("fr-FR", ListingField::changelog), TextSource::own);

  // With no version code anywhere there is no name to write one under.
  TemporaryFolder unversioned;
  writeFile(unversioned.path() / "en-US" / "title.txt", "Notes\n");
  StoreListing first(unversioned.path(), play(), {}, kContext);
  first.addLocale("de-DE");
  first.edit("de-DE", ListingField::changelog, "Neu");
  const auto before = snapshot(unversioned.path());
  EXPECT_THAT(thrownMessage<InputError>([&] { first.writeChanges(); }),
              HasSubstr("de-DE/changelogs: no version code to name the changelog after"));
  EXPECT_EQ(snapshot(unversioned.path()), before);
}

}  // namespace
}  // namespace corvane::store
