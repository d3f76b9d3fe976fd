#include "scope_list_model.hpp"

#include <algorithm>

namespace corvane::studio {

int ScopeListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant ScopeListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() < 0 || index.row() >= rowCount()) return {};
  const ScopeRow& row = rows_[static_cast<std::size_t>(index.row())];
  switch (role) {
    case ScopeRole:
      return row.scope;
    case TitleRole:
      return row.title;
    case DetailRole:
      return row.detail;
    case BlockersRole:
      return row.blockers;
    case RisksRole:
      return row.risks;
    case UnsavedRole:
      return row.unsaved;
    case RightToLeftRole:
      return row.rightToLeft;
    default:
      return {};
  }
}

QHash<int, QByteArray> ScopeListModel::roleNames() const {
  return {{ScopeRole, "scope"}, {TitleRole, "title"},     {DetailRole, "detail"},          {BlockersRole, "blockers"},
          {RisksRole, "risks"}, {UnsavedRole, "unsaved"}, {RightToLeftRole, "rightToLeft"}};
}

void ScopeListModel::assign(std::vector<ScopeRow> rows) {
  const bool sameScopes = std::ranges::equal(rows, rows_, {}, &ScopeRow::scope, &ScopeRow::scope);
  if (!sameScopes) {
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
    return;
  }
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i] == rows_[i]) continue;
    rows_[i] = std::move(rows[i]);
    const QModelIndex at = createIndex(static_cast<int>(i), 0);
    Q_EMIT dataChanged(at, at);
  }
}

int ScopeListModel::indexOf(const QString& scope) const {
  const auto found = std::ranges::find(rows_, scope, &ScopeRow::scope);
  return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

}  // namespace corvane::studio
