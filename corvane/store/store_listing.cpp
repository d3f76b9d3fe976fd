#include "corvane/store/store_listing.hpp"

#include "corvane/store/input_error.hpp"
#include "corvane/store/staged_file.hpp"
#include "corvane/store/store_facts.hpp"
#include "corvane/text/characters.hpp"
#include "corvane/tracking/unified_change_tracker.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <set>
#include <stdexcept>

#include <sys/stat.h>

namespace corvane::store {
namespace fs = std::filesystem;
namespace {

using Priority = CompletionItem::Priority;
using ItemStatus = CompletionItem::CompletionStatus;

std::int64_t charactersOf(std::string_view text) {
  return static_cast<std::int64_t>(characterCount(trimmed(text)));
}

}  // namespace

StoreListing::StoreListing(const fs::path& root, const StoreFacts& facts, ListingConfiguration configuration,
                           RuleContext context)
    : facts_(facts),
      configuration_(std::move(configuration)),
      folder_(readListingFolder(root, facts, configuration_.extraLocales)),
      tracker_(std::make_shared<UnifiedChangeTracker>()) {
  // Each entity starts with the folder's texts as its saved values, naming the file each
  // came from; a missing locale file is named where it would be written.
  auto initial = [&](const std::string& scope, std::span<const ListingField> fields, auto textOf) {
    std::vector<ListingEntity::InitialText> texts;
    texts.reserve(fields.size());
    for (const auto field : fields) {
      const ListingText& text = textOf(field);
      texts.push_back({std::string(text.value()), text.source == TextSource::none && !isShared(field)
                                                      ? scope + "/" + std::string(fieldFile(field))
                                                      : text.file});
    }
    return texts;
  };
  RuleCache cache;
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

const ListingText& StoreListing::source(const ListingEntity& entity, ListingField field) const {
  if (isShared(field)) return folder_.sharedText(field);
  const auto locale = std::ranges::find(folder_.locales, entity.scope(), &LocaleFolder::locale);
  return locale->text(field);
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
  const auto& text = source(entity, field);
  return ListingEdit{.scope = entity.scope(),
                     .field = field,
                     .file = entity.file(field),
                     .path = text.source == TextSource::none ? folder_.root / entity.file(field) : text.path,
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
  if (source(**target, edit.field).source == TextSource::defaults) {
    for (const auto& locale : locales_) {
      if (locale->file(edit.field) == edit.file) locale->setText(edit.field, edit.after);
    }
  }
}

std::vector<std::pair<fs::path, std::string>> StoreListing::pendingWrites() const {
  struct Write {
    fs::path target;  // where the file really is: a link inside the folder is followed
    std::string contents;
    std::string writer;                               // the path the field was read from, for messages
    std::optional<std::pair<dev_t, ino_t>> identity;  // nothing for a file yet to be created
  };
  std::vector<Write> writes;
  auto collect = [&](const ListingEntity& entity) {
    for (const auto field : entity.fields()) {
      const auto& property = entity.property(field);
      if (!property.hasChanged()) continue;
      const auto& text = source(entity, field);
      const fs::path path = text.source == TextSource::none ? folder_.root / entity.file(field) : text.path;
      // Fields share a file through a symbolic link, or a hard link, which no path shows:
      // the device and inode tell.
      Write write{.target = path,
                  .contents = text.frame.around(property.wrappedValue()),
                  .writer = path.string(),
                  .identity = std::nullopt};
      struct stat info {};
      if (::stat(path.c_str(), &info) == 0) {
        std::error_code error;
        write.target = fs::canonical(path, error);
        if (error) throw InputError(path.string() + ": cannot resolve: " + error.message());
        write.identity = std::pair(info.st_dev, info.st_ino);
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
  };
  for (const auto& locale : locales_) collect(*locale);
  collect(*shared_);
  std::vector<std::pair<fs::path, std::string>> result;
  result.reserve(writes.size());
  for (auto& write : writes) result.emplace_back(std::move(write.target), std::move(write.contents));
  return result;
}

void StoreListing::writeChanges() {
  replaceFiles(pendingWrites());
  for (const auto& entity : tracker_->registeredEntities()) {
    for (const auto& stored : entity->storedProperties()) {
      if (stored.property) stored.property->markSaved();
    }
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
  tracker_->discardAll();
}

std::string StoreListing::checklistId(const ListingEntity& entity, ListingField field) const {
  // A changelog is named after its version code, which only the file read knows.
  if (&entity == shared_.get()) return std::string(fieldFile(field));
  if (field == ListingField::changelog) return entity.file(field);
  return entity.scope() + "/" + std::string(fieldFile(field));
}

std::vector<CompletionItem> StoreListing::checklist(const ListingEntity& entity,
                                                    const std::vector<ListingFinding>& findings) const {
  std::vector<CompletionItem> items;
  const bool isSharedEntity = &entity == shared_.get();
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
    if (!isSharedEntity && source(entity, field).source == TextSource::defaults && !empty) {
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
