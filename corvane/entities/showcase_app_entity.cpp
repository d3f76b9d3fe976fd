#include "corvane/entities/showcase_app_entity.hpp"

#include "corvane/entities/showcase_entity_steps.hpp"
#include "corvane/text/characters.hpp"
#include "corvane/tracking/unified_change_tracker.hpp"

#include <algorithm>
#include <chrono>

namespace corvane {
namespace {

constexpr std::string_view kChangeTracker = "changeTracker";

bool isDigits(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

// Digits, a full stop, digits, a full stop, digits, and nothing else: "1.0.0", "10.20.30".
bool isDottedTriple(std::string_view version) {
  const auto first = version.find('.');
  if (first == std::string_view::npos) return false;
  const auto second = version.find('.', first + 1);
  if (second == std::string_view::npos) return false;
  return isDigits(version.substr(0, first)) && isDigits(version.substr(first + 1, second - first - 1)) &&
         isDigits(version.substr(second + 1));
}

}  // namespace

ShowcaseAppEntity::ShowcaseAppEntity() {
  appName_.addValidation(appNameRule);
  subtitle_.addValidation(subtitleRule);
  version_.addValidation(versionRule);
  keywords_.addValidation(keywordsRule);
}

std::string ShowcaseAppEntity::entityId() const { return "showcase-app-entity"; }

std::string ShowcaseAppEntity::entityName() const { return "Showcase App Entity"; }

std::shared_ptr<UnifiedChangeTracker> ShowcaseAppEntity::changeTracker() const {
  observationRegistrar().access(kChangeTracker);
  return changeTracker_.lock();
}

void ShowcaseAppEntity::setChangeTracker(std::weak_ptr<UnifiedChangeTracker> tracker) {
  observationRegistrar().withMutation(kChangeTracker, [&] { changeTracker_ = std::move(tracker); });
}

ValidationResult ShowcaseAppEntity::appNameRule(const std::string& name) {
  const auto length = characterCount(name);
  if (length == 0) {
    return ValidationResult::failure(ValidationSeverity::error, "App name is required", "Enter a name for your app");
  }
  if (length >= 2 && length <= 30) return ValidationResult::valid();
  if (length >= 31) {
    return ValidationResult::failure(ValidationSeverity::warning, "App name should be 30 characters or less",
                                     "Consider shortening the app name");
  }
  return ValidationResult::failure(ValidationSeverity::error, "App name must be at least 2 characters",
                                   "Enter a longer app name");
}

ValidationResult ShowcaseAppEntity::subtitleRule(const std::string& subtitle) {
  const auto length = characterCount(subtitle);
  if (length == 0) {
    return ValidationResult(true, ValidationSeverity::warning, "Consider adding a subtitle",
                            "Subtitles help users discover your app");
  }
  if (length <= 30) return ValidationResult::valid();
  return ValidationResult::failure(ValidationSeverity::error, "Subtitle must be 30 characters or less",
                                   "Shorten the subtitle");
}

ValidationResult ShowcaseAppEntity::versionRule(const std::string& version) {
  if (isDottedTriple(version)) return ValidationResult::valid();
  return ValidationResult::failure(ValidationSeverity::error, "Version must be in format X.Y.Z", "Use format like 1.0.0");
}

ValidationResult ShowcaseAppEntity::keywordsRule(const std::vector<std::string>& keywords) {
  if (keywords.size() >= 101) {
    return ValidationResult::failure(ValidationSeverity::error, "Maximum 100 keywords allowed", "Remove some keywords");
  }
  if (keywords.empty()) {
    return ValidationResult(true, ValidationSeverity::warning, "Consider adding keywords",
                            "Keywords help with app discoverability");
  }
  return ValidationResult::valid();
}

bool ShowcaseAppEntity::hasUnsavedChanges() const {
  return appName_.hasChanged() || subtitle_.hasChanged() || appDescription_.hasChanged() || version_.hasChanged() ||
         keywords_.hasChanged();
}

std::string ShowcaseAppEntity::changeDescription() const {
  return detail::describeChangedFields({{"appName", &appName_},
                                        {"subtitle", &subtitle_},
                                        {"appDescription", &appDescription_},
                                        {"version", &version_},
                                        {"keywords", &keywords_}});
}

ValidationResult ShowcaseAppEntity::validationResult() const {
  // Fresh verdicts: the rules are attached after the properties are built, so a property's
  // stored verdict only catches up at its first change.
  return ValidationResult::combine({appName_.validate(), subtitle_.validate(), version_.validate(), keywords_.validate()});
}

boost::asio::awaitable<void> ShowcaseAppEntity::saveChanges() {
  using namespace std::chrono_literals;
  // Not a coroutine itself: it hands the field list to one, which keeps its own copy.
  return detail::saveShowcaseFields(entityId(), entityName(), 500ms,
                                      std::vector<ChangeDetectable*>{&appName_, &subtitle_, &appDescription_, &version_, &keywords_});
}

void ShowcaseAppEntity::discardChanges() {
  detail::discardShowcaseFields(entityId(), entityName(),
                                {&appName_, &subtitle_, &appDescription_, &version_, &keywords_});
}

std::vector<TrackableEntity::StoredProperty> ShowcaseAppEntity::storedProperties() {
  return {{"entityId", nullptr},       {"entityName", nullptr},      {"changeTracker", nullptr},
          {"_appName", &appName_},     {"_subtitle", &subtitle_},    {"_appDescription", &appDescription_},
          {"_version", &version_},     {"_keywords", &keywords_}};
}

}  // namespace corvane
