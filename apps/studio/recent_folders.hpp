#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

namespace corvane::studio {

/// The metadata folders opened lately, newest first, kept in the user's settings (or in
/// the file given, for tests) across runs. At most eight; folders that no longer exist are
/// left out when read.
class RecentFolders final : public QObject {
  Q_OBJECT
  Q_PROPERTY(QStringList folders READ folders NOTIFY changed)

 public:
  /// The list in the user's settings, or in `settingsFile` when it is not empty.
  explicit RecentFolders(QString settingsFile = {}, QObject* parent = nullptr);

  QStringList folders() const;
  /// Puts `folder` first.
  Q_INVOKABLE void add(const QString& folder);
  /// Forgets `folder`.
  Q_INVOKABLE void remove(const QString& folder);

 Q_SIGNALS:
  void changed();

 private:
  void store(const QStringList& folders);

  QString settingsFile_;
};

}  // namespace corvane::studio
