#pragma once

#include "field_list_model.hpp"
#include "scope_list_model.hpp"

#include "corvane/completion/completion_item.hpp"
#include "corvane/store/listing_finding.hpp"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QUrl>
#include <QtCore/QVariantList>
#include <QtCore/QVariantMap>

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace corvane::store {
struct ListingConflict;
class ListingEntity;
class StoreFacts;
class StoreListing;
}  // namespace corvane::store

namespace corvane::studio {

/// One metadata folder open in the editor: the store listing the library loaded from it,
/// presented to the QML scene. The sidebar's scopes, the form's fields of the scope on
/// screen, the checklist's progress and decision, and the conflicts and errors of saving
/// are properties; every edit goes through the listing's tracked values and updates them at
/// once. Lives on the UI thread.
class ListingDocument final : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool isOpen READ isOpen NOTIFY opened)
  Q_PROPERTY(QString folder READ folder NOTIFY opened)
  Q_PROPERTY(QString folderName READ folderName NOTIFY opened)
  Q_PROPERTY(QString storeName READ storeName NOTIFY opened)
  Q_PROPERTY(corvane::studio::ScopeListModel* scopes READ scopes CONSTANT)
  Q_PROPERTY(corvane::studio::FieldListModel* fields READ fields CONSTANT)
  Q_PROPERTY(QString currentScope READ currentScope NOTIFY currentScopeChanged)
  Q_PROPERTY(QString currentTitle READ currentTitle NOTIFY currentScopeChanged)
  Q_PROPERTY(bool currentRightToLeft READ currentRightToLeft NOTIFY currentScopeChanged)
  Q_PROPERTY(bool hasUnsavedChanges READ hasUnsavedChanges NOTIFY stateChanged)
  Q_PROPERTY(bool currentHasUnsavedChanges READ currentHasUnsavedChanges NOTIFY stateChanged)
  Q_PROPERTY(double progress READ progress NOTIFY stateChanged)
  Q_PROPERTY(QString progressText READ progressText NOTIFY stateChanged)
  Q_PROPERTY(bool readyToSubmit READ readyToSubmit NOTIFY stateChanged)
  Q_PROPERTY(QString decision READ decision NOTIFY stateChanged)
  Q_PROPERTY(QString nextAction READ nextAction NOTIFY stateChanged)
  Q_PROPERTY(QVariantList openItems READ openItems NOTIFY stateChanged)
  Q_PROPERTY(QStringList addableLocales READ addableLocales NOTIFY stateChanged)
  Q_PROPERTY(QStringList localeCodes READ localeCodes NOTIFY stateChanged)
  Q_PROPERTY(QVariantList conflicts READ conflicts NOTIFY conflictsChanged)
  Q_PROPERTY(QString errorText READ errorText NOTIFY errorChanged)
  Q_PROPERTY(QString statusText READ statusText NOTIFY statusChanged)

 public:
  explicit ListingDocument(QObject* parent = nullptr);
  ~ListingDocument() override;

  /// Opens the metadata folder `folder` in the layout of `store` ("appstore", "play" or
  /// "auto" to tell by its files), with its `.corvane.toml` when it has one, and shows its
  /// first locale. On bad input it sets `errorText`, keeps what was open and returns false.
  Q_INVOKABLE bool open(const QString& folder, const QString& store = QStringLiteral("auto"));
  /// `open` for a folder chosen in a file dialog.
  Q_INVOKABLE bool openUrl(const QUrl& folder);

  /// Shows `scope` (a locale code or "shared") in the form.
  Q_INVOKABLE void selectScope(const QString& scope);
  /// Shows the scope `step` places below (or, negative, above) the one on screen in the
  /// sidebar's order, stopping at either end.
  Q_INVOKABLE void selectAdjacentScope(int step);

  /// Sets the text of the field with key `key` on screen, as an edit.
  Q_INVOKABLE void setText(const QString& key, const QString& text);
  /// Applies the auto-fix the field offers, as an edit.
  Q_INVOKABLE void applyFix(const QString& key);
  /// Keyword chips: adds `keyword` (trimmed; blanks and repeats in any letter case are
  /// ignored), removes the one at `index`, or moves one from `from` to `to`.
  Q_INVOKABLE void addKeyword(const QString& key, const QString& keyword);
  Q_INVOKABLE void removeKeyword(const QString& key, int index);
  Q_INVOKABLE void moveKeyword(const QString& key, int from, int to);

  /// Throws away the unsaved edit of one field, of the scope on screen, or of everything.
  Q_INVOKABLE void discardField(const QString& key);
  Q_INVOKABLE void discardCurrent();
  Q_INVOKABLE void discardAll();

  /// Writes the changed files of the scope on screen, or of every scope, atomically. A
  /// file changed on disk since it was read fills `conflicts` instead; a write that fails
  /// sets `errorText` and keeps every edit unsaved. Returns whether the files were written.
  Q_INVOKABLE bool save();
  Q_INVOKABLE bool saveAll();

  /// Settles conflict `index` by keeping the edit (written at the next save) or the file's
  /// text (the edit is dropped).
  Q_INVOKABLE void keepEdited(int index);
  Q_INVOKABLE void keepFile(int index);

  /// Re-reads the files: fields without edits take what changed on disk, edited fields
  /// whose file changed become conflicts.
  Q_INVOKABLE void checkDisk();

  /// Adds locale `code`, copying the texts of `copyFrom` when it is not empty, and shows it.
  Q_INVOKABLE bool addLocale(const QString& code, const QString& copyFrom);

  /// Shows the scope of the checklist's next action and asks the form to focus its field.
  Q_INVOKABLE void goToNextAction();
  /// Shows `scope` and asks the form to focus the field with key `key`.
  Q_INVOKABLE void goTo(const QString& scope, const QString& key);

  /// Clears `errorText`.
  Q_INVOKABLE void dismissError();

  bool isOpen() const { return listing_ != nullptr; }
  QString folder() const { return folder_; }
  QString folderName() const;
  QString storeName() const;
  ScopeListModel* scopes() { return &scopes_; }
  FieldListModel* fields() { return &fields_; }
  QString currentScope() const { return QString::fromStdString(current_); }
  QString currentTitle() const;
  bool currentRightToLeft() const;
  bool hasUnsavedChanges() const;
  bool currentHasUnsavedChanges() const;
  /// The share of checklist items done, 0 to 1.
  double progress() const { return progress_; }
  /// "9 of 12 items done".
  QString progressText() const { return progressText_; }
  bool readyToSubmit() const { return readyToSubmit_; }
  /// "Ready to submit", or how many blockers stop the submission.
  QString decision() const { return decision_; }
  /// The checklist's next action in words; empty when everything is done.
  QString nextAction() const { return nextAction_; }
  /// The checklist items not done, most urgent first: maps of "title", "detail", "scope",
  /// "key" and "blocked".
  QVariantList openItems() const { return openItems_; }
  /// The store's locale codes the listing does not hold yet.
  QStringList addableLocales() const;
  /// The listing's locale codes.
  QStringList localeCodes() const;
  /// The files changed on disk under unsaved edits: maps of "scope", "label", "file",
  /// "fileText" (empty with "fileGone" true when the file was deleted) and "editedText".
  QVariantList conflicts() const { return conflicts_; }
  QString errorText() const { return errorText_; }
  /// What the last save or check did, for the status bar.
  QString statusText() const { return statusText_; }

  /// The listing open now, for tests and benchmarks; null before a folder is opened.
  store::StoreListing* listing() { return listing_.get(); }

 Q_SIGNALS:
  void opened();
  void currentScopeChanged();
  void stateChanged();
  void conflictsChanged();
  void errorChanged();
  void statusChanged();
  /// The form should put the keyboard focus on the field with key `key`.
  void focusFieldRequested(const QString& key);

 private:
  struct ScopeState {
    std::vector<store::ListingFinding> findings;
    std::vector<CompletionItem> items;
    int blockers = 0;
    int risks = 0;
  };

  store::ListingEntity* currentEntity() const;
  int fieldIndex(const QString& key) const;
  void editField(store::ListingField field, std::string text);
  void rejudge(const store::ListingEntity& entity);
  void rejudgeAll();
  void refreshScopes();
  void refreshChecklist();
  void refreshFields(bool reset);
  FieldRow rowFor(const store::ListingEntity& entity, store::ListingField field, const ScopeState& state) const;
  bool write(bool everything);
  void settle(int index, bool keepEdit);
  QVariantMap conflictMap(const store::ListingConflict& conflict) const;
  void setError(QString text);
  void setStatus(QString text);
  void afterChange(bool everyScope);

  std::unique_ptr<store::StoreListing> listing_;
  QString folder_;
  std::string current_;
  std::map<std::string, ScopeState, std::less<>> states_;
  ScopeListModel scopes_;
  FieldListModel fields_;
  double progress_ = 0;
  QString progressText_;
  bool readyToSubmit_ = false;
  QString decision_;
  QString nextAction_;
  std::string nextScope_;
  QString nextKey_;
  QVariantList openItems_;
  QVariantList conflicts_;
  std::vector<std::pair<std::string, store::ListingField>> conflictFields_;
  // A save that met conflicts goes on once they are settled with at least one edit kept.
  bool pendingSave_ = false;
  bool keptEdits_ = false;
  bool lastSaveEverything_ = false;
  QString errorText_;
  QString statusText_;
};

}  // namespace corvane::studio
