#include "corvane/store/store_listing.hpp"

#include "corvane/store/conflict_error.hpp"
#include "corvane/store/input_error.hpp"
#include "corvane/store/staged_file.hpp"
#include "corvane/store/store_facts.hpp"
#include "corvane/text/characters.hpp"
#include "corvane/tracking/unified_change_tracker.hpp"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane::store {
namespace fs = std::filesystem;
namespace {

using Priority = CompletionItem::Priority;
using ItemStatus = CompletionItem::CompletionStatus;

std::int64_t charactersOf(std::string_view text) {
  return static_cast<std::int64_t>(characterCount(trimmed(text)));
}

using Identity = std::pair<dev_t, ino_t>;

// The whole file at `path` (through links), or nothing when there is none.
std::optional<std::string> readContents(const fs::path& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) {
    if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    throw InputError(path.string() + ": cannot read: " + std::strerror(errno));
  }
  struct stat info {};
  if (::fstat(fd, &info) != 0) {
    const int cause = errno;
    ::close(fd);
    throw InputError(path.string() + ": cannot read: " + std::strerror(cause));
  }
  if (!S_ISREG(info.st_mode)) {
    ::close(fd);
    throw InputError(path.string() + ": not a regular file");
  }
  std::string contents;
  char buffer[65536];
  for (;;) {
    const auto got = ::read(fd, buffer, sizeof buffer);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) {
      const int cause = errno;
      ::close(fd);
      throw InputError(path.string() + ": cannot read: " + std::strerror(cause));
    }
    if (got == 0) break;
    contents.append(buffer, static_cast<std::size_t>(got));
  }
  ::close(fd);
  return contents;
}

std::optional<Identity> identityOf(const fs::path& path) {
  struct stat info {};
  if (path.empty() || ::stat(path.c_str(), &info) != 0) return std::nullopt;
  return Identity(info.st_dev, info.st_ino);
}

// Makes `saved` the property's saved value while its current value stays as it is.
void rebase(Tracked<std::string>& property, const std::string& saved) {
  if (property.originalValue() == saved) return;
  std::string current = property.wrappedValue();
  property.setWrappedValue(saved);
  property.markSaved();
  property.setWrappedValue(std::move(current));
}

// The file an entity names for a field read as `text`: a missing locale file is named
// where it would be written.
std::string entityFileOf(const std::string& scope, ListingField field, const ListingText& text) {
  return text.source == TextSource::none && !isShared(field) ? scope + "/" + std::string(fieldFile(field)) : text.file;
}

// A locale's field without a file, as the reader leaves it (a changelog without any
// version code has no path at all).
ListingText missingText(const fs::path& root, const std::string& locale, ListingField field) {
  if (field == ListingField::changelog) return {};
  const std::string file = locale + "/" + std::string(fieldFile(field));
  return ListingText{.text = std::nullopt, .frame = {}, .path = root / file, .file = file, .source = TextSource::none};
}

bool sameState(const ListingText& a, const ListingText& b) {
  return a.source == b.source && a.path == b.path && a.text == b.text && a.frame == b.frame;
}

// The version code of "…/changelogs/<versionCode>.txt"; nothing for any other name.
std::optional<std::uint64_t> versionCodeOf(std::string_view file) {
  const auto slash = file.rfind('/');
  std::string_view name = slash == std::string_view::npos ? file : file.substr(slash + 1);
  if (!name.ends_with(".txt") || file.find("changelogs/") == std::string_view::npos) return std::nullopt;
  name.remove_suffix(4);
  std::uint64_t code = 0;
  const auto [end, problem] = std::from_chars(name.data(), name.data() + name.size(), code);
  if (name.empty() || problem != std::errc() || end != name.data() + name.size()) return std::nullopt;
  return code;
}

}  // namespace

struct StoreListing::FieldRef {
  ListingEntity* entity;
  ListingField field;
};

struct StoreListing::Write {
  fs::path target;  // where the file really is: a link inside the folder is followed
  std::string contents;
  std::string writer;                // the path the field was read from, for messages
  std::optional<Identity> identity;  // nothing for a file yet to be created
};

StoreListing::StoreListing(const fs::path& root, const StoreFacts& facts, ListingConfiguration configuration,
                           RuleContext context)
    : facts_(facts),
      configuration_(std::move(configuration)),
      context_(context),
      cache_(std::make_unique<RuleCache>()),
      folder_(readListingFolder(root, facts, configuration_.extraLocales)),
      tracker_(std::make_shared<UnifiedChangeTracker>()) {
  // Each entity starts with the folder's texts as its saved values, naming the file each
  // came from; a missing locale file is named where it would be written.
  auto initial = [&](const std::string& scope, std::span<const ListingField> fields, auto textOf) {
    std::vector<ListingEntity::InitialText> texts;
    texts.reserve(fields.size());
    for (const auto field : fields) {
      const ListingText& text = textOf(field);
      texts.push_back({std::string(text.value()), entityFileOf(scope, field, text)});
    }
    return texts;
  };
  RuleCache& cache = *cache_;
  for (const auto& locale : folder_.locales) {
    auto rules = std::make_shared<const ListingRules>(facts_, configuration_, locale.locale, context, &cache);
    auto entity = std::make_shared<ListingEntity>(
        locale.locale, facts_.localeFields(), std::move(rules),
        initial(locale.locale, facts_.localeFields(),
                [&](ListingField field) -> const ListingText& { return locale.text(field); }));
    tracker_->register_(entity);
    locales_.push_back(std::move(entity));
  }
  auto sharedRules = std::make_shared<const ListingRules>(facts_, configuration_, std::string(), context, &cache);
  for (const auto& unknown : folder_.unknownLocales) {
    auto found = sharedRules->judgeUnknownLocale(unknown);
    folderFindings_.insert(folderFindings_.end(), found.begin(), found.end());
  }
  shared_ = std::make_shared<ListingEntity>(
      "shared", facts_.sharedFields(), std::move(sharedRules),
      initial("shared", facts_.sharedFields(),
              [&](ListingField field) -> const ListingText& { return folder_.sharedText(field); }));
  tracker_->register_(shared_);
}

StoreListing::~StoreListing() = default;

ListingEntity* StoreListing::entity(std::string_view scope) const {
  if (scope == "shared") return shared_.get();
  // The locales are kept in name order (see addLocale): a report asks for each field.
  const auto found = std::ranges::lower_bound(locales_, scope, {}, &ListingEntity::scope);
  return found == locales_.end() || (*found)->scope() != scope ? nullptr : found->get();
}

ListingEntity& StoreListing::require(std::string_view scope, ListingField field) const {
  ListingEntity* found = entity(scope);
  if (found == nullptr) throw std::invalid_argument("no locale '" + std::string(scope) + "' in this listing");
  if (!found->holds(field)) {
    throw std::invalid_argument("the " + std::string(scope) + " listing has no field '" + std::string(fieldKey(field)) +
                                "'");
  }
  return *found;
}

ListingText& StoreListing::record(const ListingEntity& entity, ListingField field) {
  if (&entity == shared_.get()) return folder_.sharedText(field);
  // The folder's locales stand in the same (name) order as the entities, so the entity's
  // place finds its record without comparing names.
  const auto at = static_cast<std::size_t>(
      std::ranges::find(locales_, &entity, &std::shared_ptr<ListingEntity>::get) - locales_.begin());
  if (at < folder_.locales.size() && folder_.locales[at].locale == entity.scope()) return folder_.locales[at].text(field);
  const auto locale = std::ranges::find(folder_.locales, entity.scope(), &LocaleFolder::locale);
  return locale->text(field);
}

const ListingText& StoreListing::record(const ListingEntity& entity, ListingField field) const {
  return const_cast<StoreListing*>(this)->record(entity, field);
}

bool StoreListing::detached(const ListingEntity& entity, ListingField field) const {
  const auto& text = record(entity, field);
  return &entity != shared_.get() && text.source == TextSource::defaults && entity.file(field) != text.file;
}

std::string StoreListing::writtenFile(const ListingEntity& entity, ListingField field, bool strict) const {
  const auto& text = record(entity, field);
  if (text.source != TextSource::none && !detached(entity, field)) return text.file;
  std::string file = entity.file(field);
  if (field != ListingField::changelog || !file.ends_with(fieldFile(ListingField::changelog))) return file;
  // A changelog is named after the version it is for, which only the other locales'
  // changelogs tell: the newest is the version being prepared.
  std::optional<std::uint64_t> newest;
  for (const auto& locale : folder_.locales) {
    const auto code = versionCodeOf(locale.text(ListingField::changelog).file);
    if (code && (!newest || *code > *newest)) newest = code;
  }
  if (newest) return entity.scope() + "/changelogs/" + std::to_string(*newest) + ".txt";
  if (strict) {
    throw InputError((folder_.root / entity.scope() / "changelogs").string() +
                     ": no version code to name the changelog after, as no locale has a "
                     "changelogs/<versionCode>.txt yet; create one, or write the notes in changelogs/default.txt");
  }
  return file;
}

fs::path StoreListing::targetOf(const ListingEntity& entity, ListingField field, bool strict) const {
  const auto& text = record(entity, field);
  if (text.source != TextSource::none && !detached(entity, field)) return text.path;
  return folder_.root / writtenFile(entity, field, strict);
}

std::optional<std::string> StoreListing::expectedContents(const ListingEntity& entity, ListingField field) const {
  const auto& text = record(entity, field);
  if (text.source == TextSource::none || detached(entity, field) || !text.text) return std::nullopt;
  return text.frame.around(*text.text);
}

ListingText StoreListing::diskRecord(const ListingFolder& now, const ListingEntity& entity, ListingField field) const {
  if (&entity == shared_.get()) return now.sharedText(field);
  const auto locale = std::ranges::find(now.locales, entity.scope(), &LocaleFolder::locale);
  if (locale != now.locales.end()) return locale->text(field);
  // The locale's folder is gone, or not written yet: the folder would give it default/'s text.
  if (now.defaults && now.defaults->text(field).text) {
    ListingText text = now.defaults->text(field);
    text.source = TextSource::defaults;
    return text;
  }
  return missingText(folder_.root, entity.scope(), field);
}

void StoreListing::take(ListingEntity& entity, ListingField field, const ListingText& fresh) {
  record(entity, field) = fresh;
  entity.setFile(field, entityFileOf(entity.scope(), field, fresh));
  auto& property = entity.property(field);
  property.setWrappedValue(std::string(fresh.value()));
  property.markSaved();
}

void StoreListing::reattach(ListingEntity& entity, ListingField field) {
  entity.setFile(field, record(entity, field).file);
  entity.property(field).discardChanges();
}

ListingConflict StoreListing::conflictOf(const ListingEntity& entity, ListingField field,
                                         const std::optional<std::string>& disk) const {
  std::optional<std::string> diskText = disk;
  if (diskText) (void)unframe(*diskText);
  const auto& property = entity.property(field);
  return ListingConflict{.scope = entity.scope(),
                         .field = field,
                         .file = writtenFile(entity, field, false),
                         .savedText = property.originalValue(),
                         .diskText = std::move(diskText),
                         .editedText = property.wrappedValue()};
}

std::vector<StoreListing::FieldRef> StoreListing::allFields() const {
  std::vector<FieldRef> fields;
  auto add = [&](ListingEntity& entity) {
    for (const auto field : entity.fields()) fields.push_back({&entity, field});
  };
  for (const auto& locale : locales_) add(*locale);
  add(*shared_);
  return fields;
}

TextSource StoreListing::source(std::string_view scope, ListingField field) const {
  return sourceOf(require(scope, field), field);
}

TextSource StoreListing::sourceOf(const ListingEntity& entity, ListingField field) const {
  // detached() inlined, so that the record is looked up once: a report asks for every field.
  const auto& text = record(entity, field);
  const bool isDetached =
      &entity != shared_.get() && text.source == TextSource::defaults && entity.file(field) != text.file;
  return isDetached ? TextSource::own : text.source;
}

std::optional<std::string> StoreListing::defaultText(ListingField field) const {
  if (!facts_.hasDefaultFolder() || !folder_.defaults || isShared(field)) return std::nullopt;
  return folder_.defaults->text(field).text;
}

void StoreListing::edit(std::string_view scope, ListingField field, std::string text) {
  ListingEntity& target = require(scope, field);
  if (&target != shared_.get() && record(target, field).source == TextSource::defaults) {
    auto& property = target.property(field);
    if (text.empty() || text == property.originalValue()) {
      reattach(target, field);
      return;
    }
    if (!detached(target, field) && text == property.wrappedValue()) return;
    target.setFile(field, target.scope() + "/" + std::string(fieldFile(field)));
  }
  target.setText(field, std::move(text));
}

void StoreListing::discard(std::string_view scope, ListingField field) {
  ListingEntity& target = require(scope, field);
  if (detached(target, field)) target.setFile(field, record(target, field).file);
  target.property(field).discardChanges();
  tracker_->notifyChange();
}

void StoreListing::discard(std::string_view scope) {
  ListingEntity* target = entity(scope);
  if (target == nullptr) throw std::invalid_argument("no locale '" + std::string(scope) + "' in this listing");
  for (const auto field : target->fields()) {
    if (detached(*target, field)) target->setFile(field, record(*target, field).file);
  }
  target->discardChanges();
  tracker_->notifyChange();
}

std::optional<ListingEdit> StoreListing::plannedFix(const ListingEntity& entity, ListingField field) const {
  const std::string& before = entity.text(field);
  auto after = entity.rules().autoFixed(field, before);
  if (!after) return std::nullopt;
  std::string action;
  for (const auto& finding : entity.fieldFindings(field)) {
    if (!finding.fixedText || !finding.verdict.actionGuidance) continue;
    const auto& title = finding.verdict.actionGuidance->primaryAction.title;
    if (action.find(title) != std::string::npos) continue;
    action += action.empty() ? title : ", " + lowercased(title.substr(0, 1)) + title.substr(1);
  }
  return ListingEdit{.scope = entity.scope(),
                     .field = field,
                     .file = entity.file(field),
                     .path = targetOf(entity, field, false),
                     .action = action.empty() ? "Tidy" : action,
                     .before = before,
                     .after = *after,
                     .charactersBefore = charactersOf(before),
                     .charactersAfter = charactersOf(*after)};
}

std::vector<ListingEdit> StoreListing::plannedFixes() const {
  std::vector<ListingEdit> edits;
  auto plan = [&](const ListingEntity& entity) {
    for (const auto field : entity.fields()) {
      if (auto edit = plannedFix(entity, field)) edits.push_back(std::move(*edit));
    }
  };
  for (const auto& locale : locales_) plan(*locale);
  plan(*shared_);
  return edits;
}

void StoreListing::apply(const ListingEdit& edit) {
  if (edit.scope == "shared") {
    shared_->setText(edit.field, edit.after);
    return;
  }
  const auto target = std::ranges::find(locales_, edit.scope, &ListingEntity::scope);
  if (target == locales_.end()) throw std::invalid_argument("no locale '" + edit.scope + "' in this listing");
  (*target)->setText(edit.field, edit.after);
  // A text from default/ stands in for every locale that lacks the file: they all change.
  if (record(**target, edit.field).source == TextSource::defaults && !detached(**target, edit.field)) {
    for (const auto& locale : locales_) {
      if (locale->file(edit.field) == edit.file) locale->setText(edit.field, edit.after);
    }
  }
}

std::vector<StoreListing::Write> StoreListing::collectWrites(const std::vector<FieldRef>& fields) const {
  std::vector<Write> writes;
  for (const auto& [entity, field] : fields) {
    const auto& property = entity->property(field);
    const fs::path path = targetOf(*entity, field, true);
    // Fields share a file through a symbolic link, or a hard link, which no path shows:
    // the device and inode tell.
    Write write{.target = path,
                .contents = record(*entity, field).frame.around(property.wrappedValue()),
                .writer = path.string(),
                .identity = std::nullopt};
    struct stat info {};
    if (::stat(path.c_str(), &info) == 0) {
      std::error_code error;
      write.target = fs::canonical(path, error);
      if (error) throw InputError(path.string() + ": cannot resolve: " + error.message());
      write.identity = Identity(info.st_dev, info.st_ino);
    } else if (errno != ENOENT) {
      throw InputError(path.string() + ": cannot read: " + std::strerror(errno));
    }
    const auto same = std::ranges::find_if(writes, [&](const Write& other) {
      return write.identity ? other.identity == write.identity : other.target == write.target;
    });
    if (same != writes.end() && same->contents != write.contents) {
      const std::string shared = same->target == write.target ? same->target.string() : "hard links";
      throw InputError(write.writer + " and " + same->writer + " are the same file (" + shared +
                       ") and need different changes; edit it by hand or stop sharing it");
    }
    // A hard link's other names get the same contents: a rename replaces one name only.
    if (same == writes.end() || same->target != write.target) writes.push_back(std::move(write));
  }
  return writes;
}

std::vector<StoreListing::FieldRef> StoreListing::changedFields(const std::vector<const ListingEntity*>* scopes) const {
  std::vector<FieldRef> changed;
  for (const auto& ref : allFields()) {
    if (scopes && std::ranges::find(*scopes, ref.entity) == scopes->end()) continue;
    if (ref.entity->property(ref.field).hasChanged()) changed.push_back(ref);
  }
  return changed;
}

std::vector<std::pair<fs::path, std::string>> StoreListing::pendingWrites() const {
  auto writes = collectWrites(changedFields(nullptr));
  std::vector<std::pair<fs::path, std::string>> result;
  result.reserve(writes.size());
  for (auto& write : writes) result.emplace_back(std::move(write.target), std::move(write.contents));
  return result;
}

void StoreListing::writeChanges() {
  write(changedFields(nullptr));
}

void StoreListing::writeChanges(std::span<const std::string> scopes) {
  std::vector<const ListingEntity*> chosen;
  for (const auto& scope : scopes) {
    const ListingEntity* found = entity(scope);
    if (found == nullptr) throw std::invalid_argument("no locale '" + scope + "' in this listing");
    chosen.push_back(found);
  }
  write(changedFields(&chosen));
}

void StoreListing::write(const std::vector<FieldRef>& fields) {
  // Someone else's change on disk is never overwritten unseen: every file about to be
  // replaced must still be as this listing last read or wrote it.
  std::vector<ListingConflict> conflicts;
  for (const auto& [entity, field] : fields) {
    auto disk = readContents(targetOf(*entity, field, false));
    if (disk != expectedContents(*entity, field)) conflicts.push_back(conflictOf(*entity, field, disk));
  }
  if (!conflicts.empty()) throw ConflictError(std::move(conflicts));

  const auto writes = collectWrites(fields);
  // A rename replaces a read-only file as readily as any other, since only the folder's
  // permissions count; the file's own say the user wants it left alone. Asked with the
  // effective ids and capabilities, which are the ones the write would meet.
  for (const auto& write : writes) {
    if (!write.identity || ::faccessat(AT_FDCWD, write.target.c_str(), W_OK, AT_EACCESS) == 0) continue;
    if (errno == EACCES || errno == EPERM)
      throw InputError(write.writer + ": the file is read-only; nothing was written");
    throw InputError(write.writer + ": cannot be written (" + std::strerror(errno) + "); nothing was written");
  }

  // A new locale's folder (or a Play locale's changelogs/) is made for its first file and
  // goes again when the write fails, so a failed write leaves the folder as it was.
  std::vector<fs::path> created;
  auto removeCreated = [&] {
    for (auto folder = created.rbegin(); folder != created.rend(); ++folder) ::rmdir(folder->c_str());
  };
  for (const auto& write : writes) {
    std::vector<fs::path> missing;
    for (fs::path folder = write.target.parent_path(); !folder.empty() && folder != folder_.root;
         folder = folder.parent_path()) {
      struct stat info {};
      if (::stat(folder.c_str(), &info) == 0) break;
      missing.push_back(folder);
      if (folder == folder.parent_path()) break;
    }
    for (auto folder = missing.rbegin(); folder != missing.rend(); ++folder) {
      if (::mkdir(folder->c_str(), 0777) == 0) {
        created.push_back(*folder);
        continue;
      }
      const std::string message =
          folder->string() + ": cannot create the folder: " + std::strerror(errno) + "; nothing was written";
      removeCreated();
      throw InputError(message);
    }
  }
  std::vector<std::pair<fs::path, std::string>> replacements;
  replacements.reserve(writes.size());
  for (const auto& write : writes) replacements.emplace_back(write.target, write.contents);
  try {
    replaceFiles(replacements);
  } catch (...) {
    removeCreated();
    throw;
  }

  // A field that had no file of its own now has one: its record names it.
  for (const auto& [entity, field] : fields) {
    auto& text = record(*entity, field);
    if (text.source != TextSource::none && !detached(*entity, field)) continue;
    const std::string file = writtenFile(*entity, field, true);
    text = ListingText{.text = std::nullopt,
                       .frame = text.frame,
                       .path = folder_.root / file,
                       .file = file,
                       .source = TextSource::own};
    entity->setFile(field, file);
  }
  // Then every record of a file written, under whatever name or link it was read, holds
  // what was written, and the fields that read it have it as their saved text: the other
  // locales reading a default/ file too.
  std::map<Identity, const std::string*> written;
  for (const auto& write : writes) {
    if (const auto identity = identityOf(write.target)) written.emplace(*identity, &write.contents);
  }
  auto refreshRecord = [&](ListingText& text) {
    if (text.source == TextSource::none) return false;
    const auto identity = identityOf(text.path);
    const auto found = identity ? written.find(*identity) : written.end();
    if (found == written.end()) return false;
    std::string contents = *found->second;
    text.frame = unframe(contents);
    text.text = std::move(contents);
    return true;
  };
  for (const auto& [entity, field] : allFields()) {
    if (!refreshRecord(record(*entity, field))) continue;
    auto& property = entity->property(field);
    std::string saved(record(*entity, field).value());
    if (record(*entity, field).source == TextSource::defaults && !detached(*entity, field)) {
      // A locale reading default/ shows what the file holds.
      property.setWrappedValue(std::move(saved));
      property.markSaved();
    } else if (property.wrappedValue() == saved) {
      property.markSaved();
    } else {
      rebase(property, saved);  // a detached edit stays; it only returns to the new text
    }
  }
  if (folder_.defaults) {
    for (auto& text : folder_.defaults->texts) (void)refreshRecord(text);
  }
  tracker_->notifyChange();
}

std::vector<std::string> StoreListing::removeLeftoverFiles() const {
  // Writes go to where files really are, so a killed write left its files beside the
  // targets of links as well as in the listing's own folders.
  std::error_code error;
  const fs::path root = fs::weakly_canonical(folder_.root, error);
  std::set<fs::path> folders = {root};
  auto add = [&](const fs::path& path) {
    if (path.empty()) return;  // a field of another store: never read
    std::error_code pathError;
    const fs::path real = fs::weakly_canonical(path, pathError);
    if (!pathError && std::ranges::mismatch(root, real).in1 == root.end()) folders.insert(real.parent_path());
  };
  for (const auto& locale : folder_.locales) {
    for (const auto& text : locale.texts) add(text.path);
  }
  for (const auto& text : folder_.shared) add(text.path);
  if (facts_.hasDefaultFolder()) add(folder_.root / "default" / fieldFile(ListingField::name));
  std::vector<std::string> removed;
  for (const auto& folder : folders) {
    for (const auto& file : store::removeLeftoverFiles(folder)) removed.push_back(fs::relative(file, root).string());
  }
  return removed;
}

void StoreListing::discardChanges() {
  for (const auto& [entity, field] : allFields()) {
    if (detached(*entity, field)) entity->setFile(field, record(*entity, field).file);
  }
  tracker_->discardAll();
}

std::vector<ListingConflict> StoreListing::refreshFromDisk() {
  // Everything is read and compared before anything changes, so a folder that can no
  // longer be read leaves the listing as it was.
  const ListingFolder now = readListingFolder(folder_.root, facts_, configuration_.extraLocales);
  struct Change {
    FieldRef ref;
    ListingText fresh;
    bool edited;
  };
  std::vector<Change> changes;
  std::vector<ListingConflict> conflicts;
  std::set<fs::path> conflictedFiles;
  for (const auto& ref : allFields()) {
    const auto& [entity, field] = ref;
    ListingText fresh = diskRecord(now, *entity, field);
    if (!entity->property(field).hasChanged()) {
      if (!sameState(record(*entity, field), fresh)) changes.push_back({ref, std::move(fresh), false});
      continue;
    }
    const fs::path target = targetOf(*entity, field, false);
    auto disk = readContents(target);
    if (disk != expectedContents(*entity, field)) {
      conflicts.push_back(conflictOf(*entity, field, disk));
      conflictedFiles.insert(target);
    } else if (detached(*entity, field) && fresh.source == TextSource::defaults &&
               !sameState(record(*entity, field), fresh)) {
      // The edit goes to the locale's own file; default/'s new text is only what it
      // returns to.
      changes.push_back({ref, std::move(fresh), true});
    }
  }
  for (auto& [ref, fresh, edited] : changes) {
    if (edited) {
      record(*ref.entity, ref.field) = fresh;
      rebase(ref.entity->property(ref.field), std::string(fresh.value()));
    } else {
      take(*ref.entity, ref.field, fresh);
    }
  }
  if (!folder_.defaults) {
    folder_.defaults = now.defaults;
  } else if (now.defaults) {
    for (const auto field : facts_.localeFields()) {
      if (!conflictedFiles.contains(folder_.defaults->text(field).path)) {
        folder_.defaults->text(field) = now.defaults->text(field);
      }
    }
  }
  tracker_->notifyChange();
  return conflicts;
}

void StoreListing::keepDiskText(std::string_view scope, ListingField field) {
  ListingEntity& chosen = require(scope, field);
  const ListingFolder now = readListingFolder(folder_.root, facts_, configuration_.extraLocales);
  const fs::path target = targetOf(chosen, field, false);
  // A default/ file is settled for every locale that reads it.
  for (const auto& [entity, other] : allFields()) {
    if (other != field) continue;
    ListingText fresh = diskRecord(now, *entity, field);
    if (targetOf(*entity, field, false) == target) {
      take(*entity, field, fresh);
    } else if (detached(*entity, field) && record(*entity, field).path == target &&
               fresh.source == TextSource::defaults) {
      record(*entity, field) = fresh;
      rebase(entity->property(field), std::string(fresh.value()));
    }
  }
  if (folder_.defaults && now.defaults && folder_.defaults->text(field).path == target) {
    folder_.defaults->text(field) = now.defaults->text(field);
  }
  tracker_->notifyChange();
}

void StoreListing::keepEditedText(std::string_view scope, ListingField field) {
  ListingEntity& chosen = require(scope, field);
  const fs::path target = targetOf(chosen, field, false);
  std::optional<std::string> text = readContents(target);
  TextFrame frame;
  if (text) frame = unframe(*text);
  for (const auto& [entity, other] : allFields()) {
    if (other != field || targetOf(*entity, field, false) != target) continue;
    auto& read = record(*entity, field);
    if (read.source == TextSource::none || detached(*entity, field)) {
      if (!text) continue;  // no file was expected, and there is none
      const std::string file = writtenFile(*entity, field, false);
      read = ListingText{.text = text, .frame = frame, .path = target, .file = file, .source = TextSource::own};
      entity->setFile(field, file);
    } else {
      read.text = text;
      if (text) read.frame = frame;  // a file written again keeps the frame it had
    }
    rebase(entity->property(field), text.value_or(std::string()));
  }
  if (folder_.defaults && folder_.defaults->text(field).path == target) {
    auto& read = folder_.defaults->text(field);
    read.text = text;
    if (text) read.frame = frame;
  }
  tracker_->notifyChange();
}

ListingEntity& StoreListing::addLocale(const std::string& code, std::optional<std::string_view> copyFrom) {
  if (!facts_.isLocale(code) &&
      std::ranges::find(configuration_.extraLocales, code) == configuration_.extraLocales.end()) {
    std::string message = "'" + code + "' is not a locale code the store knows";
    if (const auto suggestion = facts_.closestLocale(code)) message += " (did you mean '" + *suggestion + "'?)";
    throw std::invalid_argument(message);
  }
  if (entity(code) != nullptr) throw std::invalid_argument("the listing already has the locale '" + code + "'");
  const ListingEntity* original = nullptr;
  if (copyFrom) {
    original = *copyFrom == "shared" ? nullptr : entity(*copyFrom);
    if (original == nullptr) {
      throw std::invalid_argument("no locale '" + std::string(*copyFrom) + "' in this listing to copy from");
    }
  }

  // As the folder would read it: default/'s texts where there are any, else nothing.
  LocaleFolder locale{.locale = code, .folder = folder_.root / code, .texts = {}};
  std::vector<ListingEntity::InitialText> initial;
  for (const auto field : facts_.localeFields()) {
    auto& text = locale.text(field);
    if (folder_.defaults && folder_.defaults->text(field).text) {
      text = folder_.defaults->text(field);
      text.source = TextSource::defaults;
    } else {
      text = missingText(folder_.root, code, field);
    }
    initial.push_back({std::string(text.value()), entityFileOf(code, field, text)});
  }
  auto rules = std::make_shared<const ListingRules>(facts_, configuration_, code, context_, cache_.get());
  auto added = std::make_shared<ListingEntity>(code, facts_.localeFields(), std::move(rules), std::move(initial));
  folder_.locales.insert(std::ranges::lower_bound(folder_.locales, code, {}, &LocaleFolder::locale), std::move(locale));
  locales_.insert(std::ranges::lower_bound(locales_, code, {}, &ListingEntity::scope), added);
  tracker_->register_(added);

  // A default/ text that other locales edited (an auto-fix) is edited for this one too, or
  // writing it would leave this locale behind.
  for (const auto field : added->fields()) {
    if (record(*added, field).source != TextSource::defaults) continue;
    for (const auto& other : locales_) {
      if (other != added && !detached(*other, field) && other->file(field) == added->file(field) &&
          other->property(field).hasChanged()) {
        added->setText(field, other->text(field));
        break;
      }
    }
  }
  if (original != nullptr) {
    for (const auto field : original->fields()) {
      if (source(original->scope(), field) == TextSource::defaults) continue;
      // A copied file keeps its byte-order mark and line breaks where the new one has none.
      auto& text = record(*added, field);
      if (text.source == TextSource::none) text.frame = record(*original, field).frame;
      edit(code, field, original->text(field));
    }
  }
  return *added;
}

std::string StoreListing::checklistId(const ListingEntity& entity, ListingField field) const {
  // A changelog is named after its version code, which only the file read knows.
  if (&entity == shared_.get()) return std::string(fieldFile(field));
  if (field == ListingField::changelog) return entity.file(field);
  const std::string_view file = fieldFile(field);
  std::string id;
  id.reserve(entity.scope().size() + 1 + file.size());
  id.append(entity.scope()).append(1, '/').append(file);
  return id;
}

std::vector<CompletionItem> StoreListing::checklist(const ListingEntity& entity,
                                                    const std::vector<ListingFinding>& findings) const {
  std::vector<CompletionItem> items;
  const bool isSharedEntity = &entity == shared_.get();
  items.reserve(entity.fields().size() + (isSharedEntity ? folderFindings_.size() : 0));
  for (const auto field : entity.fields()) {
    const auto& about = facts_.field(field);
    const bool empty = trimmed(entity.text(field)).empty();
    auto firstAt = [&](RuleLevel level) {
      return std::ranges::find_if(findings,
                                  [&](const ListingFinding& f) { return f.field == field && f.level == level; });
    };
    const auto blocker = firstAt(RuleLevel::blocker);
    const auto risk = firstAt(RuleLevel::rejectionRisk);
    const bool anyFinding = std::ranges::any_of(findings, [&](const ListingFinding& f) { return f.field == field; });
    if (!about.required && empty && !anyFinding) continue;
    const bool required =
        about.required && !(field == ListingField::releaseNotes && blocker == findings.end() && empty);
    const Priority priority = field == ListingField::name || field == ListingField::title ? Priority::critical
                              : required                                                  ? Priority::required
                                                                                          : Priority::optional;
    ItemStatus status = ItemStatus::completed();
    std::string description = "Ready";
    if (blocker != findings.end()) {
      status = ItemStatus::blocked(blocker->verdict.message);
      description = blocker->verdict.message;
    } else if (risk != findings.end()) {
      status = ItemStatus::inProgress();
      description = risk->verdict.message;
    } else if (empty) {
      status = isRequired(priority) ? ItemStatus::missing() : ItemStatus::optional();
      description = "Not filled in";
    }
    if (!isSharedEntity && sourceOf(entity, field) == TextSource::defaults && !empty) {
      description += " (from default/)";
    }
    items.emplace_back(checklistId(entity, field), about.label, std::move(description), std::move(status), priority,
                       isSharedEntity ? std::string("Shared") : entity.scope());
  }
  // A folder the store would refuse holds up the submission as a field does.
  if (isSharedEntity) {
    for (const auto& finding : folderFindings_) {
      auto status =
          finding.level == RuleLevel::blocker ? ItemStatus::blocked(finding.verdict.message) : ItemStatus::inProgress();
      items.emplace_back(finding.file + "/", "Locale folder", finding.verdict.message, std::move(status),
                         Priority::required, std::string("Shared"));
    }
  }
  return items;
}

}  // namespace corvane::store
