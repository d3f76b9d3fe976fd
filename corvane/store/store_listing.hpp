#pragma once

#include "corvane/completion/completion_item.hpp"
#include "corvane/store/listing_configuration.hpp"
#include "corvane/store/listing_conflict.hpp"
#include "corvane/store/listing_entity.hpp"
#include "corvane/store/listing_folder.hpp"
#include "corvane/store/listing_rules.hpp"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {
class UnifiedChangeTracker;
}

namespace corvane::store {

class StoreFacts;

/// One change to one field's text, as an auto-fix offers it or an editor makes it.
struct ListingEdit {
  /// The entity's scope: a locale code, or "shared".
  std::string scope;
  /// The field that changes.
  ListingField field;
  /// The file written back, relative to the metadata folder ("default/description.txt" for
  /// a locale's text that comes from `default/`).
  std::string file;
  /// The file on disk.
  std::filesystem::path path;
  /// What the edit does, for people ("Trim to 30 characters").
  std::string action;
  /// The text before and after, without the file's frame.
  std::string before;
  std::string after;
  /// Their lengths in user-perceived characters without surrounding white space.
  std::int64_t charactersBefore = 0;
  std::int64_t charactersAfter = 0;
};

/// A metadata folder loaded for checking and editing, in the layout and by the rules of one
/// store (the `StoreFacts` given): one `ListingEntity` per locale and one for the shared
/// files (none in Google Play's layout, whose entity is then empty), registered with one `UnifiedChangeTracker`. The
/// files are the saved state, so edits are exactly the tracker's unsaved changes.
///
/// The listing remembers each file as it last read or wrote it, so that a write never
/// overwrites a change someone made on disk meanwhile (`ConflictError`), and
/// `refreshFromDisk` tells such changes apart from the fields' own edits.
///
/// Not synchronised: use it from one thread at a time, like its entities.
class StoreListing {
 public:
  /// Reads `root` (see `readListingFolder`) and loads it. `facts` must outlive the object.
  /// Throws `InputError` on bad input, before anything could be written.
  StoreListing(const std::filesystem::path& root, const StoreFacts& facts, ListingConfiguration configuration,
               RuleContext context);
  ~StoreListing();
  StoreListing(const StoreListing&) = delete;
  StoreListing& operator=(const StoreListing&) = delete;

  /// The folder as last read or written: each field's file, its text and frame as the
  /// listing last saw them on disk. A locale added with `addLocale` is listed as it would be
  /// read before its first file is written.
  const ListingFolder& folder() const { return folder_; }
  /// The store whose layout and rules the listing follows.
  const StoreFacts& facts() const { return facts_; }
  /// The configuration the rules follow.
  const ListingConfiguration& configuration() const { return configuration_; }
  /// The locales' entities, in name order.
  const std::vector<std::shared_ptr<ListingEntity>>& locales() const { return locales_; }
  /// The shared files' entity.
  ListingEntity& shared() const { return *shared_; }
  /// The entity of `scope` (a locale code, or "shared"); nullptr when the listing has none.
  ListingEntity* entity(std::string_view scope) const;
  /// The tracker every entity is registered with.
  const std::shared_ptr<UnifiedChangeTracker>& tracker() const { return tracker_; }

  /// The findings on the folder itself: folders named like locales the store does not know.
  const std::vector<ListingFinding>& folderFindings() const { return folderFindings_; }

  /// The auto-fixes the current texts offer, locales in order, then the shared files.
  std::vector<ListingEdit> plannedFixes() const;

  /// The auto-fix `entity`'s current text of `field` offers; nothing when it needs none.
  /// `entity` is one of this listing's.
  std::optional<ListingEdit> plannedFix(const ListingEntity& entity, ListingField field) const;

  /// Makes `edit` (an unsaved change of its entity). A locale's text that comes from
  /// `default/` changes for every locale that reads that file, since the file is written
  /// once. Throws `std::invalid_argument` when its scope is neither "shared" nor a locale
  /// of this listing.
  void apply(const ListingEdit& edit);

  /// Where `scope`'s `field` text comes from now: the locale's own file (also a field
  /// detached from `default/` by `edit`, whose file is yet to be written), `default/`'s, or
  /// no file yet. Throws `std::invalid_argument` for an unknown scope or a field the entity
  /// does not hold.
  TextSource source(std::string_view scope, ListingField field) const;

  /// The text `default/` holds for localized `field`, as last read or written; nothing when
  /// it has no such file, `field` is shared, or the store's layout has no `default/` folder.
  std::optional<std::string> defaultText(ListingField field) const;

  /// An editor's edit of `scope`'s `field`. A locale field whose text comes from `default/`
  /// is detached: it gets the locale's own file (`<locale>/<file>`, created on write)
  /// holding `text`, while the other locales keep `default/`'s. Setting a detached field
  /// back to "" (or to `default/`'s text itself) returns it to `default/`'s text, with no
  /// unsaved change then. Other fields simply take `text`, like `ListingEntity::setText`.
  /// Throws `std::invalid_argument` for an unknown scope or a field the entity does not hold.
  void edit(std::string_view scope, ListingField field, std::string text);

  /// Throws away the unsaved edit of one field: its text, and its file when it was
  /// detached, back as last read or written. Throws `std::invalid_argument` like `edit`.
  void discard(std::string_view scope, ListingField field);
  /// Throws away every unsaved edit of `scope`. Throws `std::invalid_argument` for an
  /// unknown scope.
  void discard(std::string_view scope);

  /// Adds locale `code` (one of the store's codes, or of the configuration's
  /// `extra-locales`) that the listing does not hold yet, in name order among the others,
  /// registered with the tracker and judged by the same configuration. Its fields start as
  /// the folder would give them: `default/`'s texts where the layout has one, else empty.
  /// With `copyFrom` (a locale of the listing), every field `copyFrom` has its own text for
  /// (its own file, or an unsaved edit bound for one) becomes an unsaved edit holding that
  /// text, to be written to the new locale's own file with `copyFrom`'s byte-order mark and
  /// line breaks (`default/`'s where the new locale reads `default/`; a text equal to
  /// `default/`'s stays with `default/`). Nothing is written until
  /// `writeChanges`, which creates the locale's folder. Google Play's `changelog` is
  /// written as `changelogs/<versionCode>.txt` with the newest version code the listing's
  /// other locales use (see `writeChanges`). Throws `std::invalid_argument` with a plain
  /// sentence for an unknown code, one already present, or an unknown `copyFrom`.
  ListingEntity& addLocale(const std::string& code, std::optional<std::string_view> copyFrom = std::nullopt);

  /// Writes every changed field's file and marks the changes saved. Every new file is
  /// written beside its old one before any replaces it, with the old file's byte-order mark
  /// and final line breaks; a link inside the folder has its target rewritten. Fields that
  /// share one file (through `default/`, symbolic or hard links, told apart by device and
  /// inode) must agree on its new contents.
  ///
  /// Before anything is staged, each file about to be replaced is compared with its
  /// contents as the listing last read or wrote them: when any was edited, created where
  /// there was none, or deleted since, it throws `ConflictError` listing every such field.
  /// A file the process may not write (a read-only file, which a rename would silently
  /// replace) is refused with `InputError`. Folders a new file needs (a locale added with
  /// `addLocale`, a Play locale's `changelogs/`) are created, and removed again when the
  /// write fails. A Play `changelog` that has no file yet is written under the newest
  /// version code of the listing's locales; with none known it is refused with
  /// `InputError`. Throws `InputError` naming the file, with every file, folder and edit
  /// as they were, whenever it does not write.
  ///
  /// Afterwards the listing's record of each written file is what was written, and every
  /// field that reads a written file (the other locales that read the same `default/` file)
  /// has it as its saved text.
  void writeChanges();
  /// `writeChanges()` for the changed fields of the given scopes only (locale codes and/or
  /// "shared"); a file that other scopes' fields read too (`default/`) marks their fields
  /// saved as well. Throws `std::invalid_argument` for an unknown scope, before anything.
  void writeChanges(std::span<const std::string> scopes);

  /// The files `writeChanges()` would write (target path, new contents), each hard-linked
  /// name of a changed file included; throws `InputError` when fields sharing a file disagree.
  std::vector<std::pair<std::filesystem::path, std::string>> pendingWrites() const;

  /// Removes the temporary files and kept originals that a write killed part-way left in
  /// the listing's folders (see `removeLeftoverFiles`): the top folder, the locale folders,
  /// `default/`, `review_information/` and the folders that links inside the listing lead
  /// to. Returns the files removed, relative to the metadata folder.
  std::vector<std::string> removeLeftoverFiles() const;

  /// Throws every edit away, detachments from `default/` included.
  void discardChanges();

  /// Re-reads the listing's files (locale folders that appeared since are not added). A
  /// field without an unsaved edit whose file changed takes the file's text as its saved
  /// and current text (a deleted file: empty, or `default/`'s). A field with an unsaved
  /// edit whose file (the one its edit would be written to) changed keeps its edit and its
  /// saved text and is returned as a conflict, which the next write reports again until it
  /// is settled with `keepDiskText` or `keepEditedText`. Throws `InputError` like the
  /// constructor when the folder can no longer be read, changing nothing.
  std::vector<ListingConflict> refreshFromDisk();

  /// Settles a conflict for the file: the field's saved and current text become the text
  /// on disk now (a deleted file: empty, or `default/`'s), and so do those of the other
  /// locales that read the same `default/` file. Throws `InputError` when the folder cannot
  /// be read and `std::invalid_argument` like `edit`.
  void keepDiskText(std::string_view scope, ListingField field);

  /// Settles a conflict for the edit: the file's contents now become those the next write
  /// expects to replace, so it overwrites them (or creates the file again when it was
  /// deleted). The edit stays; the saved text becomes the file's text now (empty when
  /// there is none). Throws `InputError` when the file cannot be read and
  /// `std::invalid_argument` like `edit`.
  void keepEditedText(std::string_view scope, ListingField field);

  /// One checklist item per field of `entity` that the store requires, that is filled in or
  /// that has a finding: blocked by a blocker, in progress with a rejection risk, missing or
  /// optional when empty, completed otherwise. Ids are "<locale>/<file>" or the shared
  /// file's path; the category is the locale or "Shared".
  std::vector<CompletionItem> checklist(const ListingEntity& entity, const std::vector<ListingFinding>& findings) const;

  /// The id `checklist` gives the item of `entity`'s `field`.
  std::string checklistId(const ListingEntity& entity, ListingField field) const;

 private:
  struct FieldRef;
  struct Write;

  // The entity of `scope` holding `field`; throws std::invalid_argument otherwise.
  ListingEntity& require(std::string_view scope, ListingField field) const;
  // The field's file as last read or written (`default/`'s for a locale reading it).
  ListingText& record(const ListingEntity& entity, ListingField field);
  const ListingText& record(const ListingEntity& entity, ListingField field) const;
  // `source` for a field `entity` holds.
  TextSource sourceOf(const ListingEntity& entity, ListingField field) const;
  // Whether the locale's field reads default/ on disk but is edited for its own file.
  bool detached(const ListingEntity& entity, ListingField field) const;
  // The file (relative) and path a write of the field goes to; `strict` throws
  // InputError for a changelog that no known version code can name.
  std::string writtenFile(const ListingEntity& entity, ListingField field, bool strict) const;
  std::filesystem::path targetOf(const ListingEntity& entity, ListingField field, bool strict) const;
  // The bytes the field's target should hold on disk; nothing when no file is expected.
  std::optional<std::string> expectedContents(const ListingEntity& entity, ListingField field) const;
  // The field as the folder `now` gives it.
  ListingText diskRecord(const ListingFolder& now, const ListingEntity& entity, ListingField field) const;
  // Makes `fresh` the field's record, saved and current text.
  void take(ListingEntity& entity, ListingField field, const ListingText& fresh);
  void reattach(ListingEntity& entity, ListingField field);
  ListingConflict conflictOf(const ListingEntity& entity, ListingField field,
                             const std::optional<std::string>& disk) const;
  std::vector<FieldRef> allFields() const;
  // The changed fields of the given entities, or of all when `scopes` is null.
  std::vector<FieldRef> changedFields(const std::vector<const ListingEntity*>* scopes) const;
  std::vector<Write> collectWrites(const std::vector<FieldRef>& fields) const;
  void write(const std::vector<FieldRef>& fields);

  const StoreFacts& facts_;
  ListingConfiguration configuration_;
  RuleContext context_;
  std::unique_ptr<RuleCache> cache_;
  ListingFolder folder_;
  std::vector<std::shared_ptr<ListingEntity>> locales_;
  std::shared_ptr<ListingEntity> shared_;
  std::shared_ptr<UnifiedChangeTracker> tracker_;
  std::vector<ListingFinding> folderFindings_;
};

}  // namespace corvane::store
