#pragma once

#include <QtCore/QAbstractListModel>
#include <QtCore/QString>

#include <vector>

namespace corvane::studio {

/// What the sidebar shows of one scope: a locale, or the data every locale shares.
struct ScopeRow {
  /// The locale code, or "shared".
  QString scope;
  /// "de-DE", or "Shared data".
  QString title;
  /// The locale's name in its own language ("Deutsch (Deutschland)"), or what the shared
  /// data holds.
  QString detail;
  int blockers = 0;
  int risks = 0;
  bool unsaved = false;
  /// Whether the locale's language is written right to left.
  bool rightToLeft = false;

  friend bool operator==(const ScopeRow&, const ScopeRow&) = default;
};

/// The sidebar's scopes, locales in name order and then the shared data, with their badges.
class ScopeListModel final : public QAbstractListModel {
  Q_OBJECT

 public:
  enum Role {
    ScopeRole = Qt::UserRole + 1,
    TitleRole,
    DetailRole,
    BlockersRole,
    RisksRole,
    UnsavedRole,
    RightToLeftRole
  };

  using QAbstractListModel::QAbstractListModel;

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

  /// Replaces every row; rows that only changed are updated in place, so the list keeps
  /// its selection and scroll position.
  void assign(std::vector<ScopeRow> rows);

  const std::vector<ScopeRow>& rows() const { return rows_; }
  /// The row of `scope`; -1 when there is none.
  Q_INVOKABLE int indexOf(const QString& scope) const;

 private:
  std::vector<ScopeRow> rows_;
};

}  // namespace corvane::studio
