#include "demo/app/tracked_validation_dsl_demo_model.hpp"

#include "corvane/results/business_impact.hpp"
#include "corvane/results/validation_result.hpp"
#include "ui/qt/observation_bridge.hpp"

namespace corvane::demo {
namespace {

QString toQString(const std::string& text) {
  return QString::fromStdString(text);
}

QVariantMap toMap(const ValidationResult& result) {
  const ValidationResult::UIPresentation look = result.uiPresentation();
  return {
      {QStringLiteral("isValid"), result.isValid},
      {QStringLiteral("message"), toQString(look.displayMessage)},
      {QStringLiteral("symbol"), toQString(look.iconName)},
      {QStringLiteral("color"), toQString(look.colorName)},
  };
}

}  // namespace

TrackedValidationDSLDemoModel::TrackedValidationDSLDemoModel(QObject* parent)
    : QObject(parent),
      entity_(std::make_shared<AppEssentialsWithDSL>()),
      bridge_(new ui::ObservationBridge([this] { readAll(); }, this)) {
  connect(bridge_, &ui::ObservationBridge::changed, this, &TrackedValidationDSLDemoModel::changed);
}

TrackedValidationDSLDemoModel::~TrackedValidationDSLDemoModel() = default;

QString TrackedValidationDSLDemoModel::appName() const {
  return toQString(entity_->appName());
}
void TrackedValidationDSLDemoModel::setAppName(const QString& value) {
  entity_->setAppName(value.toStdString());
}
QString TrackedValidationDSLDemoModel::subtitle() const {
  return toQString(entity_->subtitle());
}
void TrackedValidationDSLDemoModel::setSubtitle(const QString& value) {
  entity_->setSubtitle(value.toStdString());
}
QString TrackedValidationDSLDemoModel::keywords() const {
  return toQString(entity_->keywords());
}
void TrackedValidationDSLDemoModel::setKeywords(const QString& value) {
  entity_->setKeywords(value.toStdString());
}
QString TrackedValidationDSLDemoModel::description() const {
  return toQString(entity_->description());
}
void TrackedValidationDSLDemoModel::setDescription(const QString& value) {
  entity_->setDescription(value.toStdString());
}
QString TrackedValidationDSLDemoModel::supportEmail() const {
  return toQString(entity_->supportEmail());
}
void TrackedValidationDSLDemoModel::setSupportEmail(const QString& value) {
  entity_->setSupportEmail(value.toStdString());
}

QVariantMap TrackedValidationDSLDemoModel::appNameResult() const {
  return toMap(entity_->appNameProperty().validationResult());
}
QVariantMap TrackedValidationDSLDemoModel::subtitleResult() const {
  return toMap(entity_->subtitleProperty().validationResult());
}
QVariantMap TrackedValidationDSLDemoModel::keywordsResult() const {
  return toMap(entity_->keywordsProperty().validationResult());
}
QVariantMap TrackedValidationDSLDemoModel::descriptionResult() const {
  return toMap(entity_->descriptionProperty().validationResult());
}
QVariantMap TrackedValidationDSLDemoModel::supportEmailResult() const {
  return toMap(entity_->supportEmailProperty().validationResult());
}

QVariantMap TrackedValidationDSLDemoModel::overallResult() const {
  return toMap(entity_->validationResult());
}

QString TrackedValidationDSLDemoModel::businessImpactText() const {
  const auto impact = entity_->validationResult().businessImpact;
  if (!impact) return {};
  return QStringLiteral("Business Impact: ") + toQString(describe(*impact));
}

void TrackedValidationDSLDemoModel::readAll() const {
  // Everything the screen shows, so that observation sees each of its reads.
  (void)appName();
  (void)subtitle();
  (void)keywords();
  (void)description();
  (void)supportEmail();
  (void)overallResult();
  (void)appNameResult();
  (void)subtitleResult();
  (void)keywordsResult();
  (void)descriptionResult();
  (void)supportEmailResult();
}

}  // namespace corvane::demo
