#pragma once

#include "corvane/store/listing_field.hpp"

#include <QtCore/QAbstractListModel>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <vector>

namespace corvane::studio {

/// What the form shows of one field: its text and counter, the verdict as the library
/// presents it, the fix it offers and whether it holds an unsaved change.
struct FieldRow {
  store::ListingField field = store::ListingField::name;
  /// The field's key ("name", "promotional-text"), which QML names its controls by.
  QString key;
  QString label;
  /// The text in the editor: empty while the field shows `default/`'s text as a placeholder.
  QString text;
  /// What the empty editor shows: `default/`'s text, or a hint.
  QString placeholder;
  /// The file the text is written to, relative to the metadata folder.
  QString file;
  /// "21 / 30", or "21" for a field without a limit.
  QString counter;
  bool overLimit = false;
  /// The verdict: its glyph, colour name ("green", "red", ...), message and level ("Blocker").
  QString symbol;
  QString colorName;
  QString message;
  QString level;
  /// The other findings' messages on the field.
  QStringList otherFindings;
  /// The auto-fix's title ("Trim to 30 characters"); empty when the text needs none.
  QString fixTitle;
  /// How the field is edited: "line", "paragraph" or "keywords".
  QString editor;
  bool unsaved = false;
  bool fromDefault = false;
  /// For keywords: the list as chips, and the characters left under the limit.
  QStringList keywords;
  int remaining = 0;

  friend bool operator==(const FieldRow&, const FieldRow&) = default;
};

/// The fields of the scope on screen, one row each, for the form's repeater. Rows are
/// updated in place, so the editor being typed into keeps its focus and cursor.
class FieldListModel final : public QAbstractListModel {
  Q_OBJECT

 public:
  enum Role {
    KeyRole = Qt::UserRole + 1,
    LabelRole,
    TextRole,
    PlaceholderRole,
    FileRole,
    CounterRole,
    OverLimitRole,
    SymbolRole,
    ColorNameRole,
    MessageRole,
    LevelRole,
    OtherFindingsRole,
    FixTitleRole,
    EditorRole,
    UnsavedRole,
    FromDefaultRole,
    KeywordsRole,
    RemainingRole,
  };

  using QAbstractListModel::QAbstractListModel;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

  /// Replaces every row (another scope is on screen).
  void reset(std::vector<FieldRow> rows);
  /// Updates row `index` in place, announcing only what changed.
  void update(int index, FieldRow row);

  const std::vector<FieldRow>& rows() const { return rows_; }
  /// The row of the field with key `key`; -1 when there is none.
  int indexOf(const QString& key) const;

 private:
  std::vector<FieldRow> rows_;
};

}  // namespace corvane::studio
