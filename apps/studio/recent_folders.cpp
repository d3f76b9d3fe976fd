#include "recent_folders.hpp"

#include <QtCore/QDir>
#include <QtCore/QSettings>

#include <memory>

namespace corvane::studio {
namespace {

constexpr qsizetype kMaxFolders = 8;
const QString kKey = QStringLiteral("recentFolders");

std::unique_ptr<QSettings> settingsAt(const QString& file) {
  if (file.isEmpty()) return std::make_unique<QSettings>(QStringLiteral("Corvane"), QStringLiteral("Corvane Studio"));
  return std::make_unique<QSettings>(file, QSettings::IniFormat);
}

}  // namespace

RecentFolders::RecentFolders(QString settingsFile, QObject* parent)
    : QObject(parent), settingsFile_(std::move(settingsFile)) {}

QStringList RecentFolders::folders() const {
  QStringList existing;
  for (const auto& folder : settingsAt(settingsFile_)->value(kKey).toStringList()) {
    if (QDir(folder).exists()) existing.push_back(folder);
  }
  return existing;
}

void RecentFolders::add(const QString& folder) {
  const QString clean = QDir::cleanPath(folder);
  QStringList folders = settingsAt(settingsFile_)->value(kKey).toStringList();
  folders.removeAll(clean);
  folders.prepend(clean);
  store(folders.mid(0, kMaxFolders));
}

void RecentFolders::remove(const QString& folder) {
  QStringList folders = settingsAt(settingsFile_)->value(kKey).toStringList();
  if (folders.removeAll(QDir::cleanPath(folder)) > 0) store(folders);
}

void RecentFolders::store(const QStringList& folders) {
  auto settings = settingsAt(settingsFile_);
  settings->setValue(kKey, folders);
  settings->sync();
  Q_EMIT changed();
}

}  // namespace corvane::studio
