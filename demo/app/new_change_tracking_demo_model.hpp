#pragma once

#include "corvane/entities/showcase_app_entity.hpp"
#include "corvane/entities/showcase_user_entity.hpp"
#include "corvane/tracking/unified_change_tracker.hpp"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>

namespace corvane::ui {
class ObservationBridge;
}

namespace corvane::demo {

/// The state and actions of the showcase screen: an app and a user entity under one
/// change tracker, the live status of the tracker and the shared validation cache's
/// statistics. Every property notifies through `changed()`, driven by observation.
class NewChangeTrackingDemoModel final : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString appName READ appName WRITE setAppName NOTIFY changed)
  Q_PROPERTY(QString subtitle READ subtitle WRITE setSubtitle NOTIFY changed)
  Q_PROPERTY(QString version READ version WRITE setVersion NOTIFY changed)
  Q_PROPERTY(QString appDescription READ appDescription WRITE setAppDescription NOTIFY changed)
  Q_PROPERTY(QString appNameSymbol READ appNameSymbol NOTIFY changed)
  Q_PROPERTY(QString subtitleSymbol READ subtitleSymbol NOTIFY changed)
  Q_PROPERTY(QString versionSymbol READ versionSymbol NOTIFY changed)
  Q_PROPERTY(QStringList keywords READ keywords NOTIFY changed)
  Q_PROPERTY(QString keywordCountText READ keywordCountText NOTIFY changed)
  Q_PROPERTY(QString keywordInput READ keywordInput WRITE setKeywordInput NOTIFY keywordInputChanged)
  Q_PROPERTY(QString changesText READ changesText NOTIFY changed)
  Q_PROPERTY(QString validationText READ validationText NOTIFY changed)
  Q_PROPERTY(bool canSubmit READ canSubmit NOTIFY changed)
  Q_PROPERTY(QString canSubmitSymbol READ canSubmitSymbol NOTIFY changed)
  Q_PROPERTY(QString entitiesText READ entitiesText NOTIFY changed)
  Q_PROPERTY(QString validationsText READ validationsText NOTIFY changed)
  Q_PROPERTY(QString cacheHitsText READ cacheHitsText NOTIFY changed)
  Q_PROPERTY(QString hitRateText READ hitRateText NOTIFY changed)
  Q_PROPERTY(QString cacheSizeText READ cacheSizeText NOTIFY changed)

 public:
  /// A new tracker (10000 entities at most, no logging) and two fresh entities.
  explicit NewChangeTrackingDemoModel(QObject* parent = nullptr);
  ~NewChangeTrackingDemoModel() override;

  // The app entity's fields, read and written through their tracked properties.
  QString appName() const;
  void setAppName(const QString& value);
  QString subtitle() const;
  void setSubtitle(const QString& value);
  QString version() const;
  void setVersion(const QString& value);
  QString appDescription() const;
  void setAppDescription(const QString& value);

  /// "checkmark.circle.fill" when the name passes, else "exclamationmark.circle.fill".
  QString appNameSymbol() const;
  /// "checkmark.circle.fill" when the subtitle passes, else "exclamationmark.triangle.fill".
  QString subtitleSymbol() const;
  /// "checkmark.circle.fill" when the version passes, else "exclamationmark.circle.fill".
  QString versionSymbol() const;

  /// The app entity's keywords, shown as chips.
  QStringList keywords() const;
  /// The keyword count against the limit, e.g. "3/100".
  QString keywordCountText() const;
  /// The text typed into the keyword field.
  QString keywordInput() const;
  void setKeywordInput(const QString& value);

  /// The tracker's change description, or "No changes" when nothing changed.
  QString changesText() const;
  /// The number of validation errors followed by " error(s)".
  QString validationText() const;
  /// Whether the tracker can submit.
  bool canSubmit() const;
  /// "checkmark.circle.fill" when the tracker can submit, else "clock".
  QString canSubmitSymbol() const;
  /// "<n> registered, <m> with changes".
  QString entitiesText() const;
  /// The shared cache's request count.
  QString validationsText() const;
  /// The shared cache's hit count.
  QString cacheHitsText() const;
  /// The shared cache's hit rate in percent, one decimal.
  QString hitRateText() const;
  /// The shared cache's published entry count.
  QString cacheSizeText() const;

  /// Hands both entities the tracker, registers the app entity and prints the greeting.
  Q_INVOKABLE void appear();
  /// Adds the trimmed keyword input to the app's keywords unless it is empty or already
  /// there, and clears the input.
  Q_INVOKABLE void addKeyword();
  /// Removes the keyword chip at `index`.
  Q_INVOKABLE void removeKeyword(int index);
  /// Validates the app name eleven times through the freshly cleared shared cache and
  /// prints the statistics.
  Q_INVOKABLE void testCache();
  /// Submits every changed entity on the main executor and prints the outcome.
  Q_INVOKABLE void submitAll();
  /// Discards every entity's changes.
  Q_INVOKABLE void discardAll();

  /// The tracker the screen owns.
  UnifiedChangeTracker& tracker() { return *tracker_; }
  /// The app entity the screen edits.
  ShowcaseAppEntity& appEntity() { return *appEntity_; }

 Q_SIGNALS:
  /// Something the screen shows has changed.
  void changed();
  /// The keyword input has changed.
  void keywordInputChanged();

 private:
  void readAll() const;

  std::shared_ptr<UnifiedChangeTracker> tracker_;
  std::shared_ptr<ShowcaseAppEntity> appEntity_;
  std::shared_ptr<ShowcaseUserEntity> userEntity_;
  QString keywordInput_;
  ui::ObservationBridge* bridge_;
};

}  // namespace corvane::demo
