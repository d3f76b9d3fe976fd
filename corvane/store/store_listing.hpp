#pragma once

#include "corvane/completion/completion_item.hpp"
#include "corvane/store/listing_configuration.hpp"
#include "corvane/store/listing_entity.hpp"
#include "corvane/store/listing_folder.hpp"
#include "corvane/store/listing_rules.hpp"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
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
class StoreListing {
 public:
  /// Reads `root` (see `readListingFolder`) and loads it. `facts` must outlive the object.
  /// Throws `InputError` on bad input, before anything could be written.
  StoreListing(const std::filesystem::path& root, const StoreFacts& facts, ListingConfiguration configuration,
               RuleContext context);
  ~StoreListing();
  StoreListing(const StoreListing&) = delete;
  StoreListing& operator=(const StoreListing&) = delete;

  /// The folder as read.
  const ListingFolder& folder() const { return folder_; }
  /// The store whose layout and rules the listing follows.
  const StoreFacts& facts() const { return facts_; }
  /// The configuration the rules follow.
  const ListingConfiguration& configuration() const { return configuration_; }
  /// The locales' entities, in name order.
  const std::vector<std::shared_ptr<ListingEntity>>& locales() const { return locales_; }
  /// The shared files' entity.
  ListingEntity& shared() const { return *shared_; }
  /// The tracker every entity is registered with.
  const std::shared_ptr<UnifiedChangeTracker>& tracker() const { return tracker_; }

  /// The findings on the folder itself: folders named like locales the store does not know.
  const std::vector<ListingFinding>& folderFindings() const { return folderFindings_; }

  /// The auto-fixes the current texts offer, locales in order, then the shared files.
  std::vector<ListingEdit> plannedFixes() const;

  /// The auto-fix `entity`'s current text of `field` offers; nothing when it needs none.
  /// `entity` is one of this listing's.
  std::optional<ListingEdit> plannedFix(const ListingEntity& entity, ListingField field) const;

  /// Makes `edit` (an unsaved change of its entity). Throws `std::invalid_argument` when its
  /// scope is neither "shared" nor a locale of this listing.
  void apply(const ListingEdit& edit);

  /// Writes every changed field's file and marks the changes saved. Every new file is
  /// written beside its old one before any replaces it, with the old file's byte-order mark
  /// and final line breaks; a link inside the folder has its target rewritten. Fields that
  /// share one file (through `default/`, symbolic or hard links, told apart by device and
  /// inode) must agree on its new contents. Throws
  /// `InputError` naming the file, with every file and every edit as they were, when
  /// they do not or a file cannot be written.
  void writeChanges();

  /// The files `writeChanges()` would write (target path, new contents), each hard-linked
  /// name of a changed file included; throws `InputError` when fields sharing a file disagree.
  std::vector<std::pair<std::filesystem::path, std::string>> pendingWrites() const;

  /// Removes the temporary files and kept originals that a write killed part-way left in
  /// the listing's folders (see `removeLeftoverFiles`): the top folder, the locale folders,
  /// `default/`, `review_information/` and the folders that links inside the listing lead
  /// to. Returns the files removed, relative to the metadata folder.
  std::vector<std::string> removeLeftoverFiles() const;

  /// Throws every edit away.
  void discardChanges();

  /// One checklist item per field of `entity` that the store requires, that is filled in or
  /// that has a finding: blocked by a blocker, in progress with a rejection risk, missing or
  /// optional when empty, completed otherwise. Ids are "<locale>/<file>" or the shared
  /// file's path; the category is the locale or "Shared".
  std::vector<CompletionItem> checklist(const ListingEntity& entity, const std::vector<ListingFinding>& findings) const;

  /// The id `checklist` gives the item of `entity`'s `field`.
  std::string checklistId(const ListingEntity& entity, ListingField field) const;

 private:
  const ListingText& source(const ListingEntity& entity, ListingField field) const;

  const StoreFacts& facts_;
  ListingConfiguration configuration_;
  ListingFolder folder_;
  std::vector<std::shared_ptr<ListingEntity>> locales_;
  std::shared_ptr<ListingEntity> shared_;
  std::shared_ptr<UnifiedChangeTracker> tracker_;
  std::vector<ListingFinding> folderFindings_;
};

}  // namespace corvane::store
