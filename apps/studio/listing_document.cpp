#include "listing_document.hpp"

#include "corvane/coordination/aggregate_completion_guide.hpp"
#include "corvane/store/conflict_error.hpp"
#include "corvane/store/keyword_list.hpp"
#include "corvane/store/listing_configuration.hpp"
#include "corvane/store/listing_entity.hpp"
#include "corvane/store/listing_submission.hpp"
#include "corvane/store/rule_level.hpp"
#include "corvane/store/store_facts.hpp"
#include "corvane/store/store_listing.hpp"
#include "corvane/text/characters.hpp"
#include "corvane/tracking/unified_change_tracker.hpp"
#include "ui/qt/symbol_glyphs.hpp"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QLocale>

#include <algorithm>
#include <chrono>
#include <exception>

namespace corvane::studio {
namespace {

using store::ListingField;
using store::RuleLevel;

QString qs(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::string utf8(const QString& text) {
  return text.toStdString();
}

int thisYear() {
  const auto today =
      std::chrono::year_month_day(std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now()));
  return static_cast<int>(today.year());
}

QString editorFor(ListingField field) {
  switch (field) {
    case ListingField::keywords:
      return QStringLiteral("keywords");
    case ListingField::description:
    case ListingField::promotionalText:
    case ListingField::releaseNotes:
    case ListingField::reviewNotes:
    case ListingField::fullDescription:
    case ListingField::changelog:
    case ListingField::defaultChangelog:
      return QStringLiteral("paragraph");
    default:
      return QStringLiteral("line");
  }
}

QString hintFor(ListingField field) {
  switch (store::fieldKind(field)) {
    case store::FieldKind::url:
      return QStringLiteral("https://");
    case store::FieldKind::keywords:
      return QStringLiteral("Type a keyword and press Enter");
    case store::FieldKind::email:
      return QStringLiteral("name@company.com");
    default:
      return QStringLiteral("Not filled in");
  }
}

QString plural(qsizetype count, const char* one, const char* many) {
  return QStringLiteral("%1 %2").arg(count).arg(QString::fromUtf8(count == 1 ? one : many));
}

// The locale's name in its own language, as people pick it from a list.
QString nativeName(const QLocale& locale) {
  if (locale.language() == QLocale::C) return {};
  QString name = locale.nativeLanguageName();
  const QString territory = locale.nativeTerritoryName();
  if (!territory.isEmpty()) name += QStringLiteral(" (") + territory + QStringLiteral(")");
  return name;
}

QLocale localeOf(std::string_view code) {
  // Google Play still writes Hebrew with its withdrawn code.
  if (code.starts_with("iw")) return QLocale(QStringLiteral("he") + qs(code.substr(2)));
  return QLocale(qs(code));
}

// The store's own spelling of a keyword list: commas, no spaces.
std::string joinedKeywords(const std::vector<store::KeywordSpan>& keywords) {
  std::string list;
  for (const auto& keyword : keywords) list += (list.empty() ? "" : ",") + std::string(keyword.text);
  return list;
}

int priorityRank(CompletionItem::Priority priority) {
  switch (priority) {
    case CompletionItem::Priority::critical:
      return 0;
    case CompletionItem::Priority::required:
      return 1;
    case CompletionItem::Priority::recommended:
      return 2;
    default:
      return 3;
  }
}

}  // namespace

ListingDocument::ListingDocument(QObject* parent) : QObject(parent) {}

ListingDocument::~ListingDocument() = default;

bool ListingDocument::open(const QString& folder, const QString& store) {
  try {
    const std::filesystem::path root = QDir::cleanPath(QFileInfo(folder).absoluteFilePath()).toStdString();
    const auto& facts = store::chosenStoreFacts(utf8(store), root);
    auto configuration = store::loadListingConfiguration(root, std::nullopt, facts);
    auto listing = std::make_unique<store::StoreListing>(root, facts, std::move(configuration),
                                                         store::RuleContext{.currentYear = thisYear()});
    listing_ = std::move(listing);
  } catch (const std::exception& error) {
    setError(qs(error.what()));
    return false;
  }
  folder_ = qs(listing_->folder().root.string());
  current_ = listing_->locales().empty() ? std::string("shared") : listing_->locales().front()->scope();
  conflicts_.clear();
  conflictFields_.clear();
  rejudgeAll();
  refreshScopes();
  refreshChecklist();
  refreshFields(true);
  setError({});
  setStatus(QStringLiteral("Opened %1").arg(folderName()));
  Q_EMIT opened();
  Q_EMIT currentScopeChanged();
  Q_EMIT conflictsChanged();
  Q_EMIT stateChanged();
  return true;
}

bool ListingDocument::openUrl(const QUrl& folder) {
  return open(folder.isLocalFile() ? folder.toLocalFile() : folder.toString());
}

QString ListingDocument::folderName() const {
  return QFileInfo(folder_).fileName();
}

QString ListingDocument::storeName() const {
  if (!listing_) return {};
  return listing_->facts().store() == store::StoreId::googlePlay ? QStringLiteral("Google Play")
                                                                 : QStringLiteral("App Store");
}

void ListingDocument::selectScope(const QString& scope) {
  if (!listing_ || utf8(scope) == current_ || !listing_->entity(utf8(scope))) return;
  current_ = utf8(scope);
  refreshFields(true);
  Q_EMIT currentScopeChanged();
  Q_EMIT stateChanged();
}

void ListingDocument::selectAdjacentScope(int step) {
  const int count = scopes_.rowCount();
  if (count == 0) return;
  const int index = std::clamp(scopes_.indexOf(currentScope()) + step, 0, count - 1);
  selectScope(scopes_.rows()[static_cast<std::size_t>(index)].scope);
}

QString ListingDocument::currentTitle() const {
  if (current_ == "shared") return QStringLiteral("Shared data");
  const QString detail = nativeName(localeOf(current_));
  return detail.isEmpty() ? qs(current_) : qs(current_) + QStringLiteral(" · ") + detail;
}

bool ListingDocument::currentRightToLeft() const {
  return current_ != "shared" && localeOf(current_).textDirection() == Qt::RightToLeft;
}

bool ListingDocument::hasUnsavedChanges() const {
  return listing_ && listing_->tracker()->hasUnsavedChanges();
}

bool ListingDocument::currentHasUnsavedChanges() const {
  const auto* entity = currentEntity();
  return entity && entity->hasUnsavedChanges();
}

store::ListingEntity* ListingDocument::currentEntity() const {
  return listing_ ? listing_->entity(current_) : nullptr;
}

int ListingDocument::fieldIndex(const QString& key) const {
  const int index = fields_.indexOf(key);
  return index >= 0 && currentEntity() ? index : -1;
}

void ListingDocument::setText(const QString& key, const QString& text) {
  const int index = fieldIndex(key);
  if (index < 0) return;
  const auto field = fields_.rows()[static_cast<std::size_t>(index)].field;
  // Typing into a field that shows default/'s text gives the locale its own; the editor
  // shows such a field empty, so an unchanged empty text is no edit.
  if (fields_.rows()[static_cast<std::size_t>(index)].text == text) return;
  editField(field, utf8(text));
}

void ListingDocument::editField(ListingField field, std::string text) {
  try {
    listing_->edit(current_, field, std::move(text));
  } catch (const std::exception& error) {
    setError(qs(error.what()));
    return;
  }
  afterChange(false);
}

void ListingDocument::applyFix(const QString& key) {
  const int index = fieldIndex(key);
  if (index < 0) return;
  const auto fix = listing_->plannedFix(*currentEntity(), fields_.rows()[static_cast<std::size_t>(index)].field);
  if (!fix) return;
  // A text from default/ is fixed there, as the checker does: every locale using it changes.
  listing_->apply(*fix);
  afterChange(true);
  setStatus(qs(fix->action) + QStringLiteral(": ") + qs(fix->file));
}

void ListingDocument::addKeyword(const QString& key, const QString& keyword) {
  const int index = fieldIndex(key);
  const std::string added(trimmed(utf8(keyword)));
  if (index < 0 || added.empty() || added.find(',') != std::string::npos) return;
  const auto field = fields_.rows()[static_cast<std::size_t>(index)].field;
  const std::string& list = currentEntity()->text(field);
  const std::string lowered = lowercased(added);
  for (const auto& existing : store::splitKeywords(list)) {
    if (lowercased(existing.text) == lowered) return;
  }
  const std::string_view kept = trimmed(list);
  editField(field, kept.empty() ? added : std::string(kept) + "," + added);
}

void ListingDocument::removeKeyword(const QString& key, int position) {
  const int index = fieldIndex(key);
  if (index < 0) return;
  const auto field = fields_.rows()[static_cast<std::size_t>(index)].field;
  auto keywords = store::splitKeywords(currentEntity()->text(field));
  if (position < 0 || position >= static_cast<int>(keywords.size())) return;
  keywords.erase(keywords.begin() + position);
  editField(field, joinedKeywords(keywords));
}

void ListingDocument::moveKeyword(const QString& key, int from, int to) {
  const int index = fieldIndex(key);
  if (index < 0) return;
  const auto field = fields_.rows()[static_cast<std::size_t>(index)].field;
  auto keywords = store::splitKeywords(currentEntity()->text(field));
  const int count = static_cast<int>(keywords.size());
  if (from < 0 || from >= count || to < 0 || to >= count || from == to) return;
  const auto moved = keywords[static_cast<std::size_t>(from)];
  keywords.erase(keywords.begin() + from);
  keywords.insert(keywords.begin() + to, moved);
  editField(field, joinedKeywords(keywords));
}

void ListingDocument::discardField(const QString& key) {
  const int index = fieldIndex(key);
  if (index < 0) return;
  listing_->discard(current_, fields_.rows()[static_cast<std::size_t>(index)].field);
  afterChange(true);
}

void ListingDocument::discardCurrent() {
  if (!currentEntity()) return;
  listing_->discard(current_);
  afterChange(true);
}

void ListingDocument::discardAll() {
  if (!listing_) return;
  listing_->discardChanges();
  afterChange(true);
  setStatus(QStringLiteral("Every change discarded"));
}

bool ListingDocument::save() {
  return write(false);
}

bool ListingDocument::saveAll() {
  return write(true);
}

bool ListingDocument::write(bool everything) {
  if (!listing_) return false;
  lastSaveEverything_ = everything;
  std::size_t files = 0;
  try {
    const std::vector<std::string> scopes = {current_};
    if (everything) {
      files = listing_->pendingWrites().size();
      listing_->writeChanges();
    } else if (const auto* entity = currentEntity()) {
      files = static_cast<std::size_t>(std::ranges::count_if(
          entity->fields(), [&](ListingField field) { return entity->property(field).hasChanged(); }));
      listing_->writeChanges(scopes);
    }
  } catch (const store::ConflictError& error) {
    conflicts_.clear();
    conflictFields_.clear();
    for (const auto& conflict : error.conflicts()) {
      conflicts_.push_back(conflictMap(conflict));
      conflictFields_.emplace_back(conflict.scope, conflict.field);
    }
    pendingSave_ = true;
    Q_EMIT conflictsChanged();
    setStatus(QStringLiteral("Nothing was saved: %1 changed on disk").arg(plural(conflicts_.size(), "file", "files")));
    return false;
  } catch (const std::exception& error) {
    setError(qs(error.what()));
    return false;
  }
  setError({});
  afterChange(true);
  setStatus(files == 0 ? QStringLiteral("Nothing to save")
                       : QStringLiteral("Saved %1").arg(plural(files, "file", "files")));
  return true;
}

QVariantMap ListingDocument::conflictMap(const store::ListingConflict& conflict) const {
  return {{QStringLiteral("scope"), qs(conflict.scope)},
          {QStringLiteral("label"), qs(listing_->facts().field(conflict.field).label)},
          {QStringLiteral("file"), qs(conflict.file)},
          {QStringLiteral("fileGone"), !conflict.diskText.has_value()},
          {QStringLiteral("fileText"), qs(conflict.diskText.value_or(std::string()))},
          {QStringLiteral("editedText"), qs(conflict.editedText)}};
}

void ListingDocument::keepEdited(int index) {
  settle(index, true);
}

void ListingDocument::keepFile(int index) {
  settle(index, false);
}

void ListingDocument::settle(int index, bool keepEdit) {
  if (!listing_ || index < 0 || index >= static_cast<int>(conflictFields_.size())) return;
  const auto [scope, field] = conflictFields_[static_cast<std::size_t>(index)];
  try {
    if (keepEdit) {
      listing_->keepEditedText(scope, field);
      keptEdits_ = true;
    } else {
      listing_->keepDiskText(scope, field);
    }
  } catch (const std::exception& error) {
    setError(qs(error.what()));
    return;
  }
  conflicts_.removeAt(index);
  conflictFields_.erase(conflictFields_.begin() + index);
  Q_EMIT conflictsChanged();
  afterChange(true);
  // The save that met the conflicts goes on once every one is settled.
  if (conflicts_.isEmpty() && keptEdits_ && pendingSave_) {
    keptEdits_ = false;
    pendingSave_ = false;
    write(lastSaveEverything_);
  }
}

void ListingDocument::checkDisk() {
  if (!listing_) return;
  std::vector<store::ListingConflict> found;
  try {
    found = listing_->refreshFromDisk();
  } catch (const std::exception& error) {
    setError(qs(error.what()));
    return;
  }
  if (!found.empty()) {
    conflicts_.clear();
    conflictFields_.clear();
    for (const auto& conflict : found) {
      conflicts_.push_back(conflictMap(conflict));
      conflictFields_.emplace_back(conflict.scope, conflict.field);
    }
    pendingSave_ = false;
    Q_EMIT conflictsChanged();
  }
  afterChange(true);
}

bool ListingDocument::addLocale(const QString& code, const QString& copyFrom) {
  if (!listing_) return false;
  try {
    const std::string from = utf8(copyFrom);
    auto& entity = listing_->addLocale(utf8(code), from.empty() ? std::nullopt : std::optional<std::string_view>(from));
    current_ = entity.scope();
  } catch (const std::exception& error) {
    setError(qs(error.what()));
    return false;
  }
  rejudgeAll();
  refreshScopes();
  refreshChecklist();
  refreshFields(true);
  Q_EMIT currentScopeChanged();
  Q_EMIT stateChanged();
  setStatus(QStringLiteral("Added %1: it is written with its first saved text").arg(code));
  return true;
}

void ListingDocument::goToNextAction() {
  if (!nextScope_.empty()) goTo(qs(nextScope_), nextKey_);
}

void ListingDocument::goTo(const QString& scope, const QString& key) {
  selectScope(scope);
  if (!key.isEmpty()) Q_EMIT focusFieldRequested(key);
}

void ListingDocument::dismissError() {
  setError({});
}

QStringList ListingDocument::addableLocales() const {
  QStringList codes;
  if (!listing_) return codes;
  std::vector<std::string> known(listing_->facts().locales());
  known.insert(known.end(), listing_->configuration().extraLocales.begin(),
               listing_->configuration().extraLocales.end());
  std::ranges::sort(known);
  for (const auto& code : known) {
    if (!listing_->entity(code) && !codes.contains(qs(code))) codes.push_back(qs(code));
  }
  return codes;
}

QStringList ListingDocument::localeCodes() const {
  QStringList codes;
  if (!listing_) return codes;
  for (const auto& locale : listing_->locales()) codes.push_back(qs(locale->scope()));
  return codes;
}

void ListingDocument::afterChange(bool everyScope) {
  if (everyScope) {
    rejudgeAll();
  } else if (const auto* entity = currentEntity()) {
    rejudge(*entity);
  }
  refreshScopes();
  refreshChecklist();
  refreshFields(false);
  Q_EMIT stateChanged();
}

void ListingDocument::rejudge(const store::ListingEntity& entity) {
  ScopeState& state = states_[entity.scope()];
  state.findings = entity.findings();
  if (&entity == &listing_->shared()) {
    const auto& folderFindings = listing_->folderFindings();
    state.findings.insert(state.findings.begin(), folderFindings.begin(), folderFindings.end());
  }
  state.items = listing_->checklist(entity, state.findings);
  state.blockers =
      static_cast<int>(std::ranges::count(state.findings, RuleLevel::blocker, &store::ListingFinding::level));
  state.risks =
      static_cast<int>(std::ranges::count(state.findings, RuleLevel::rejectionRisk, &store::ListingFinding::level));
}

void ListingDocument::rejudgeAll() {
  states_.clear();
  for (const auto& locale : listing_->locales()) rejudge(*locale);
  rejudge(listing_->shared());
}

void ListingDocument::refreshScopes() {
  std::vector<ScopeRow> rows;
  rows.reserve(listing_->locales().size() + 1);
  auto row = [&](const store::ListingEntity& entity, QString title, QString detail, bool rightToLeft) {
    const ScopeState& state = states_[entity.scope()];
    rows.push_back(ScopeRow{.scope = qs(entity.scope()),
                            .title = std::move(title),
                            .detail = std::move(detail),
                            .blockers = state.blockers,
                            .risks = state.risks,
                            .unsaved = entity.hasUnsavedChanges(),
                            .rightToLeft = rightToLeft});
  };
  for (const auto& locale : listing_->locales()) {
    const QLocale language = localeOf(locale->scope());
    row(*locale, qs(locale->scope()), nativeName(language), language.textDirection() == Qt::RightToLeft);
  }
  // Google Play's layout has no shared files, so its sidebar has no shared entry.
  if (!listing_->shared().fields().empty()) {
    row(listing_->shared(), QStringLiteral("Shared data"), QStringLiteral("Review information, copyright, categories"),
        false);
  }
  scopes_.assign(std::move(rows));
}

void ListingDocument::refreshChecklist() {
  std::vector<CompletionItem> items;
  std::map<std::string, std::pair<std::string, QString>> places;  // item id -> scope, field key
  int blockers = 0;
  auto file = [&](const store::ListingEntity& entity) {
    const ScopeState& state = states_[entity.scope()];
    items.insert(items.end(), state.items.begin(), state.items.end());
    blockers += state.blockers;
    for (const auto field : entity.fields()) {
      places.emplace(listing_->checklistId(entity, field), std::pair(entity.scope(), qs(store::fieldKey(field))));
    }
  };
  for (const auto& locale : listing_->locales()) file(*locale);
  file(listing_->shared());

  openItems_.clear();
  std::vector<const CompletionItem*> open;
  for (const auto& item : items) {
    if (!item.status.isCompleted() && !item.status.isOptional()) open.push_back(&item);
  }
  std::ranges::stable_sort(open, [](const CompletionItem* a, const CompletionItem* b) {
    if (a->status.isBlocked() != b->status.isBlocked()) return a->status.isBlocked();
    return priorityRank(a->priority) < priorityRank(b->priority);
  });
  for (const auto* item : open) {
    const auto place = places.find(item->id);
    openItems_.push_back(QVariantMap{
        {QStringLiteral("title"), qs(item->title) + QStringLiteral(" · ") + qs(item->category.value_or(""))},
        {QStringLiteral("detail"), qs(item->description)},
        {QStringLiteral("scope"), place == places.end() ? QStringLiteral("shared") : qs(place->second.first)},
        {QStringLiteral("key"), place == places.end() ? QString() : place->second.second},
        {QStringLiteral("blocked"), item->status.isBlocked()}});
  }

  auto guide = AggregateCompletionGuide::create();
  guide->add(std::move(items), store::ListingSubmission(utf8(folder_), {listing_->tracker()}));
  const auto counts = guide->completionProgress();
  progress_ = guide->completionPercentage();
  progressText_ =
      QStringLiteral("%1 of %2 done").arg(counts.completedItems).arg(plural(counts.totalItems, "item", "items"));
  readyToSubmit_ = guide->canComplete();
  if (readyToSubmit_) {
    decision_ = QStringLiteral("Ready to submit");
  } else if (blockers > 0) {
    decision_ = plural(blockers, "blocker stops", "blockers stop") + QStringLiteral(" the submission");
  } else {
    const auto missing = std::ranges::count_if(guide->requiredItems(),
                                               [](const CompletionItem& item) { return !item.status.isCompleted(); });
    decision_ = plural(missing, "required item", "required items") + QStringLiteral(" still open");
  }
  nextAction_.clear();
  nextScope_.clear();
  nextKey_.clear();
  if (const auto next = guide->nextActionItem()) {
    // Findings name their field already ("App name: 19 characters too long").
    const QString description = qs(next->description);
    const QString title = qs(next->title);
    nextAction_ = qs(next->category.value_or("")) + QStringLiteral(" · ") +
                  (description.startsWith(title) ? description : title + QStringLiteral(": ") + description);
    if (const auto place = places.find(next->id); place != places.end()) {
      nextScope_ = place->second.first;
      nextKey_ = place->second.second;
    } else {
      nextScope_ = "shared";
    }
  }
}

FieldRow ListingDocument::rowFor(const store::ListingEntity& entity, ListingField field,
                                 const ScopeState& state) const {
  const auto& about = listing_->facts().field(field);
  const std::string& text = entity.text(field);
  const bool fromDefault = listing_->source(entity.scope(), field) == store::TextSource::defaults;
  const auto& property = entity.property(field);
  const auto count = static_cast<qint64>(characterCount(trimmed(text)));

  FieldRow row;
  row.field = field;
  row.key = qs(store::fieldKey(field));
  row.label = qs(about.label);
  row.text = fromDefault ? QString() : qs(text);
  row.placeholder = fromDefault ? qs(text) : hintFor(field);
  row.file = qs(entity.file(field));
  row.counter = about.limit ? QStringLiteral("%1 / %2").arg(count).arg(*about.limit) : QString::number(count);
  row.overLimit = about.limit && count > *about.limit;
  const store::ListingFinding* top = nullptr;
  for (const auto& finding : state.findings) {
    if (finding.field != field) continue;
    if (!top || finding.level < top->level) top = &finding;
  }
  // The most urgent finding speaks for the field; without one, the field's own verdict.
  const auto presentation = (top ? top->verdict : property.validationResult()).uiPresentation();
  row.symbol = ui::SymbolGlyphs::glyphFor(presentation.iconName);
  row.colorName = qs(presentation.colorName);
  row.message = qs(presentation.displayMessage);
  for (const auto& finding : state.findings) {
    if (finding.field == field && &finding != top) row.otherFindings.push_back(qs(finding.verdict.message));
  }
  row.level = top ? qs(store::levelTitle(top->level)) : QString();
  if (const auto fix = listing_->plannedFix(entity, field)) row.fixTitle = qs(fix->action);
  row.editor = editorFor(field);
  row.unsaved = property.hasChanged();
  row.fromDefault = fromDefault;
  if (field == ListingField::keywords) {
    for (const auto& keyword : store::splitKeywords(text)) row.keywords.push_back(qs(keyword.text));
    row.remaining = about.limit ? static_cast<int>(*about.limit - count) : 0;
  }
  return row;
}

void ListingDocument::refreshFields(bool reset) {
  const auto* entity = currentEntity();
  if (!entity) {
    fields_.reset({});
    return;
  }
  const ScopeState& state = states_[entity->scope()];
  if (reset) {
    std::vector<FieldRow> rows;
    for (const auto field : entity->fields()) rows.push_back(rowFor(*entity, field, state));
    fields_.reset(std::move(rows));
    return;
  }
  int index = 0;
  for (const auto field : entity->fields()) fields_.update(index++, rowFor(*entity, field, state));
}

void ListingDocument::setError(QString text) {
  if (errorText_ == text) return;
  errorText_ = std::move(text);
  Q_EMIT errorChanged();
}

void ListingDocument::setStatus(QString text) {
  statusText_ = std::move(text);
  Q_EMIT statusChanged();
}

}  // namespace corvane::studio
