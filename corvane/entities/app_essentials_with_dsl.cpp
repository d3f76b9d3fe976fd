#include "corvane/entities/app_essentials_with_dsl.hpp"

#include "corvane/support/uuid.hpp"

#include <algorithm>
#include <utility>

namespace corvane {
namespace {

using Check = ValidationCheck;
using Guidance = ValidationGuidance;
using Requirement = ValidationRequirement;

// An empty address is left to the requirement and guidance.
ValidationResult supportEmailCheck(const std::string& email) {
  if (email.empty() || email.find('@') != std::string::npos) return ValidationResult::valid();
  return ValidationResult(false, ValidationSeverity::warning, "Support email should contain @", std::nullopt,
                          std::nullopt, BusinessImpact::suboptimal("Email format"), std::nullopt, std::nullopt);
}

// Labels of the change description, in field order.
constexpr std::array<const char*, 5> kChangeLabels{"app name", "subtitle", "description", "support email", "keywords"};

}  // namespace

// The declarations give no field name, so verdicts speak of "Field", as the rule language
// does for any unnamed field.
AppEssentialsWithDSL::AppEssentialsWithDSL() : AppEssentialsWithDSL(FieldNames{}) {}

AppEssentialsWithDSL::AppEssentialsWithDSL(FieldNames names)
    : entityId_(newUuidString()),
      appName_("", std::move(names.appName), Requirement::required, {Check::tooLong(30)},
               Guidance::missingOptional("descriptive app name",
                                         "Longer names (5-15 characters) perform better in App Store search")),
      subtitle_("", std::move(names.subtitle), Requirement::required, {Check::tooLong(30)}),
      description_("", std::move(names.description), Requirement::optional, {Check::tooLong(4000)},
                   Guidance::missingOptional("detailed description",
                                             "Detailed descriptions help users understand your app better")),
      supportEmail_(
          "", std::move(names.supportEmail), Requirement::optional, {Check::custom(supportEmailCheck)},
          Guidance::missingOptional("support email", "Support emails help users get help and improve app ratings")),
      keywords_("", std::move(names.keywords), Requirement::required, {Check::tooLong(100), Check::tooShort(10)}) {}

std::string AppEssentialsWithDSL::entityId() const {
  return entityId_;
}

std::string AppEssentialsWithDSL::entityName() const {
  return "App Essentials (Simple DSL)";
}

bool AppEssentialsWithDSL::hasUnsavedChanges() const {
  const auto all = properties();
  return std::any_of(all.begin(), all.end(), [](const auto* property) { return property->hasChanged(); });
}

std::string AppEssentialsWithDSL::changeDescription() const {
  std::string description;
  const auto all = properties();
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (!all[i]->hasChanged()) continue;
    if (!description.empty()) description += ", ";
    description += kChangeLabels[i];
  }
  return description.empty() ? "app essentials" : description;
}

ValidationResult AppEssentialsWithDSL::validationResult() const {
  std::vector<ValidationResult> verdicts;
  for (const auto* property : properties()) verdicts.push_back(property->validationResult());
  return ValidationResult::combine(verdicts);
}

// Only the per-property steps, as declared for this entity: it has no hooks, and nothing
// caches its verdict under its id, so the trackable defaults would have nothing to do.
boost::asio::awaitable<void> AppEssentialsWithDSL::saveChanges() {
  for (auto* property : properties()) property->markSaved();
  co_return;
}

void AppEssentialsWithDSL::discardChanges() {
  for (auto* property : properties()) property->discardChanges();
}

std::vector<TrackableEntity::StoredProperty> AppEssentialsWithDSL::storedProperties() {
  return {{"_appName", &appName_},
          {"_subtitle", &subtitle_},
          {"_description", &description_},
          {"_supportEmail", &supportEmail_},
          {"_keywords", &keywords_}};
}

const std::string& AppEssentialsWithDSL::appName() const {
  return appName_.wrappedValue();
}
void AppEssentialsWithDSL::setAppName(std::string value) {
  appName_.setWrappedValue(std::move(value));
}
Tracked<std::string>& AppEssentialsWithDSL::appNameProperty() {
  return appName_;
}
const Tracked<std::string>& AppEssentialsWithDSL::appNameProperty() const {
  return appName_;
}

const std::string& AppEssentialsWithDSL::subtitle() const {
  return subtitle_.wrappedValue();
}
void AppEssentialsWithDSL::setSubtitle(std::string value) {
  subtitle_.setWrappedValue(std::move(value));
}
Tracked<std::string>& AppEssentialsWithDSL::subtitleProperty() {
  return subtitle_;
}
const Tracked<std::string>& AppEssentialsWithDSL::subtitleProperty() const {
  return subtitle_;
}

const std::string& AppEssentialsWithDSL::description() const {
  return description_.wrappedValue();
}
void AppEssentialsWithDSL::setDescription(std::string value) {
  description_.setWrappedValue(std::move(value));
}
Tracked<std::string>& AppEssentialsWithDSL::descriptionProperty() {
  return description_;
}
const Tracked<std::string>& AppEssentialsWithDSL::descriptionProperty() const {
  return description_;
}

const std::string& AppEssentialsWithDSL::supportEmail() const {
  return supportEmail_.wrappedValue();
}
void AppEssentialsWithDSL::setSupportEmail(std::string value) {
  supportEmail_.setWrappedValue(std::move(value));
}
Tracked<std::string>& AppEssentialsWithDSL::supportEmailProperty() {
  return supportEmail_;
}
const Tracked<std::string>& AppEssentialsWithDSL::supportEmailProperty() const {
  return supportEmail_;
}

const std::string& AppEssentialsWithDSL::keywords() const {
  return keywords_.wrappedValue();
}
void AppEssentialsWithDSL::setKeywords(std::string value) {
  keywords_.setWrappedValue(std::move(value));
}
Tracked<std::string>& AppEssentialsWithDSL::keywordsProperty() {
  return keywords_;
}
const Tracked<std::string>& AppEssentialsWithDSL::keywordsProperty() const {
  return keywords_;
}

std::array<const Tracked<std::string>*, 5> AppEssentialsWithDSL::properties() const {
  return {&appName_, &subtitle_, &description_, &supportEmail_, &keywords_};
}

std::array<Tracked<std::string>*, 5> AppEssentialsWithDSL::properties() {
  return {&appName_, &subtitle_, &description_, &supportEmail_, &keywords_};
}

}  // namespace corvane
