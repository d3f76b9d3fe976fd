#include "corvane/entities/showcase_user_entity.hpp"

#include "corvane/entities/showcase_entity_steps.hpp"
#include "corvane/tracking/unified_change_tracker.hpp"

#include <chrono>

namespace corvane {
namespace {

constexpr std::string_view kChangeTracker = "changeTracker";

}  // namespace

ShowcaseUserEntity::ShowcaseUserEntity() {
  name_.addValidation(nameRule);
  email_.addValidation(emailRule);
}

std::string ShowcaseUserEntity::entityId() const { return "showcase-user-entity"; }

std::string ShowcaseUserEntity::entityName() const { return "User Profile"; }

std::shared_ptr<UnifiedChangeTracker> ShowcaseUserEntity::changeTracker() const {
  observationRegistrar().access(kChangeTracker);
  return changeTracker_.lock();
}

void ShowcaseUserEntity::setChangeTracker(std::weak_ptr<UnifiedChangeTracker> tracker) {
  observationRegistrar().withMutation(kChangeTracker, [&] { changeTracker_ = std::move(tracker); });
}

ValidationResult ShowcaseUserEntity::nameRule(const std::string& name) {
  return name.empty() ? ValidationResult::failure(ValidationSeverity::error, "Name required") : ValidationResult::valid();
}

ValidationResult ShowcaseUserEntity::emailRule(const std::string& email) {
  return email.find('@') != std::string::npos ? ValidationResult::valid()
                                               : ValidationResult::failure(ValidationSeverity::error, "Invalid email");
}

bool ShowcaseUserEntity::hasUnsavedChanges() const { return name_.hasChanged() || email_.hasChanged(); }

std::string ShowcaseUserEntity::changeDescription() const {
  return detail::describeChangedFields({{"name", &name_}, {"email", &email_}});
}

ValidationResult ShowcaseUserEntity::validationResult() const {
  // Fresh verdicts, as for the app entity: the stored ones catch up at the first change.
  return ValidationResult::combine({name_.validate(), email_.validate()});
}

boost::asio::awaitable<void> ShowcaseUserEntity::saveChanges() {
  using namespace std::chrono_literals;
  // Not a coroutine itself: it hands the field list to one, which keeps its own copy.
  return detail::saveShowcaseFields(entityId(), entityName(), 200ms, std::vector<ChangeDetectable*>{&name_, &email_});
}

void ShowcaseUserEntity::discardChanges() { detail::discardShowcaseFields(entityId(), entityName(), {&name_, &email_}); }

std::vector<TrackableEntity::StoredProperty> ShowcaseUserEntity::storedProperties() {
  return {{"entityId", nullptr}, {"entityName", nullptr}, {"changeTracker", nullptr}, {"_name", &name_},
          {"_email", &email_}};
}

}  // namespace corvane
