#pragma once

#include "corvane/entities/app_essentials_with_dsl.hpp"

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVariantMap>

#include <memory>

namespace corvane::ui {
class ObservationBridge;
}

namespace corvane::demo {

/// The state of the rule-language screen: one `AppEssentialsWithDSL` entity whose five
/// fields are edited beside their live verdicts. A verdict reaches QML as a map with
/// "isValid", "message", "symbol" (the symbol's name) and "color" (a colour name).
class TrackedValidationDSLDemoModel final : public QObject {
  Q_OBJECT
  Q_PROPERTY(QString appName READ appName WRITE setAppName NOTIFY changed)
  Q_PROPERTY(QString subtitle READ subtitle WRITE setSubtitle NOTIFY changed)
  Q_PROPERTY(QString keywords READ keywords WRITE setKeywords NOTIFY changed)
  Q_PROPERTY(QString description READ description WRITE setDescription NOTIFY changed)
  Q_PROPERTY(QString supportEmail READ supportEmail WRITE setSupportEmail NOTIFY changed)
  Q_PROPERTY(QVariantMap appNameResult READ appNameResult NOTIFY changed)
  Q_PROPERTY(QVariantMap subtitleResult READ subtitleResult NOTIFY changed)
  Q_PROPERTY(QVariantMap keywordsResult READ keywordsResult NOTIFY changed)
  Q_PROPERTY(QVariantMap descriptionResult READ descriptionResult NOTIFY changed)
  Q_PROPERTY(QVariantMap supportEmailResult READ supportEmailResult NOTIFY changed)
  Q_PROPERTY(QVariantMap overallResult READ overallResult NOTIFY changed)
  Q_PROPERTY(QString businessImpactText READ businessImpactText NOTIFY changed)

 public:
  /// A fresh entity with every field empty.
  explicit TrackedValidationDSLDemoModel(QObject* parent = nullptr);
  ~TrackedValidationDSLDemoModel() override;

  // The entity's fields, read and written through their tracked properties.
  QString appName() const;
  void setAppName(const QString& value);
  QString subtitle() const;
  void setSubtitle(const QString& value);
  QString keywords() const;
  void setKeywords(const QString& value);
  QString description() const;
  void setDescription(const QString& value);
  QString supportEmail() const;
  void setSupportEmail(const QString& value);

  // Each field's stored verdict.
  QVariantMap appNameResult() const;
  QVariantMap subtitleResult() const;
  QVariantMap keywordsResult() const;
  QVariantMap descriptionResult() const;
  QVariantMap supportEmailResult() const;

  /// The entity's combined verdict.
  QVariantMap overallResult() const;
  /// "Business Impact: " and the combined verdict's impact, e.g. `blocker(reason: "...")`;
  /// empty when the verdict carries none.
  QString businessImpactText() const;

  /// The entity the screen edits.
  AppEssentialsWithDSL& entity() { return *entity_; }

 Q_SIGNALS:
  /// Something the screen shows has changed.
  void changed();

 private:
  void readAll() const;

  std::shared_ptr<AppEssentialsWithDSL> entity_;
  ui::ObservationBridge* bridge_;
};

}  // namespace corvane::demo
