#include "field_list_model.hpp"

#include <algorithm>

namespace corvane::studio {

int FieldListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant FieldListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() < 0 || index.row() >= rowCount()) return {};
  const FieldRow& row = rows_[static_cast<std::size_t>(index.row())];
  switch (role) {
    case KeyRole:
      return row.key;
    case LabelRole:
      return row.label;
    case TextRole:
      return row.text;
    case PlaceholderRole:
      return row.placeholder;
    case FileRole:
      return row.file;
    case CounterRole:
      return row.counter;
    case OverLimitRole:
      return row.overLimit;
    case SymbolRole:
      return row.symbol;
    case ColorNameRole:
      return row.colorName;
    case MessageRole:
      return row.message;
    case LevelRole:
      return row.level;
    case OtherFindingsRole:
      return row.otherFindings;
    case FixTitleRole:
      return row.fixTitle;
    case EditorRole:
      return row.editor;
    case UnsavedRole:
      return row.unsaved;
    case FromDefaultRole:
      return row.fromDefault;
    case KeywordsRole:
      return row.keywords;
    case RemainingRole:
      return row.remaining;
    default:
      return {};
  }
}

QHash<int, QByteArray> FieldListModel::roleNames() const {
  return {
      {KeyRole, "key"},
      {LabelRole, "label"},
      {TextRole, "text"},
      {PlaceholderRole, "placeholder"},
      {FileRole, "file"},
      {CounterRole, "counter"},
      {OverLimitRole, "overLimit"},
      {SymbolRole, "symbol"},
      {ColorNameRole, "colorName"},
      {MessageRole, "message"},
      {LevelRole, "level"},
      {OtherFindingsRole, "otherFindings"},
      {FixTitleRole, "fixTitle"},
      {EditorRole, "editor"},
      {UnsavedRole, "unsaved"},
      {FromDefaultRole, "fromDefault"},
      {KeywordsRole, "keywords"},
      {RemainingRole, "remaining"},
  };
}

void FieldListModel::reset(std::vector<FieldRow> rows) {
  beginResetModel();
  rows_ = std::move(rows);
  endResetModel();
}

void FieldListModel::update(int index, FieldRow row) {
  if (index < 0 || index >= rowCount()) return;
  FieldRow& old = rows_[static_cast<std::size_t>(index)];
  if (old == row) return;
  // Announcing only the roles that changed keeps bindings on the others (the editor's own
  // text above all) from being re-evaluated on every keystroke.
  QList<int> roles;
  auto compare = [&](auto member, Role role) {
    if (old.*member != row.*member) roles.push_back(role);
  };
  compare(&FieldRow::key, KeyRole);
  compare(&FieldRow::label, LabelRole);
  compare(&FieldRow::text, TextRole);
  compare(&FieldRow::placeholder, PlaceholderRole);
  compare(&FieldRow::file, FileRole);
  compare(&FieldRow::counter, CounterRole);
  compare(&FieldRow::overLimit, OverLimitRole);
  compare(&FieldRow::symbol, SymbolRole);
  compare(&FieldRow::colorName, ColorNameRole);
  compare(&FieldRow::message, MessageRole);
  compare(&FieldRow::level, LevelRole);
  compare(&FieldRow::otherFindings, OtherFindingsRole);
  compare(&FieldRow::fixTitle, FixTitleRole);
  compare(&FieldRow::editor, EditorRole);
  compare(&FieldRow::unsaved, UnsavedRole);
  compare(&FieldRow::fromDefault, FromDefaultRole);
  compare(&FieldRow::keywords, KeywordsRole);
  compare(&FieldRow::remaining, RemainingRole);
  old = std::move(row);
  const QModelIndex at = createIndex(index, 0);
  Q_EMIT dataChanged(at, at, roles);
}

int FieldListModel::indexOf(const QString& key) const {
  const auto found = std::ranges::find(rows_, key, &FieldRow::key);
  return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

}  // namespace corvane::studio
