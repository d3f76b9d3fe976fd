#include "corvane/submission/default_change_tracker.hpp"

#include "corvane/support/precondition.hpp"

#include <algorithm>

namespace corvane {

namespace {

using Features = std::vector<std::shared_ptr<SubmissionFeature>>;

boost::asio::awaitable<void> saveChangedInOrder(Features features) {
  for (const auto& feature : features) {
    if (feature->hasUnsavedChanges()) co_await feature->saveChanges();
  }
}

}  // namespace

DefaultChangeTracker::DefaultChangeTracker(Features entities) : entities_(std::move(entities)) {
  CORVANE_PRECONDITION(std::none_of(entities_.begin(), entities_.end(), [](const auto& entity) { return !entity; }),
                       "DefaultChangeTracker needs non-null entities");
}

bool DefaultChangeTracker::hasUnsavedChanges() const {
  return std::any_of(entities_.begin(), entities_.end(),
                     [](const auto& entity) { return entity->hasUnsavedChanges(); });
}

bool DefaultChangeTracker::canSubmit() const {
  return hasUnsavedChanges();
}

bool DefaultChangeTracker::isSubmitting() const {
  return false;
}

std::string DefaultChangeTracker::changeDescription() const {
  std::string joined;
  for (const auto& entity : entities_) {
    if (!entity->hasUnsavedChanges()) continue;
    const std::string description = entity->changeDescription();
    if (description.empty()) continue;
    if (!joined.empty()) joined += ", ";
    joined += description;
  }
  return joined.empty() ? "No changes" : joined;
}

boost::asio::awaitable<void> DefaultChangeTracker::submit() {
  return saveChangedInOrder(entities_);
}

void DefaultChangeTracker::discard() {
  reset();
}

void DefaultChangeTracker::reset() {
  for (const auto& entity : entities_) entity->discardChanges();
}

}  // namespace corvane
