#include "corvane/tracking/unified_change_tracker.hpp"

#include "corvane/support/precondition.hpp"
#include "corvane/support/print_line.hpp"
#include "corvane/tracking/property_discovery.hpp"
#include "corvane/tracking/tracked_validatable.hpp"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/deferred.hpp>
#include <boost/asio/experimental/parallel_group.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <utility>

namespace corvane {
namespace {

constexpr std::string_view kEntities = "entities";
constexpr std::string_view kStateVersion = "stateVersion";

bool isCriticalFailure(const ValidationResult& result) {
  return !result.isValid && result.severity == ValidationSeverity::critical;
}

bool isBlocker(const ValidationResult& result) {
  return isCriticalFailure(result) ||
         (result.businessImpact && (result.businessImpact->isBlocker() || result.businessImpact->isHighRejectionRisk()));
}

bool isRejectionRisk(const ValidationResult& result) {
  if (result.businessImpact) {
    return result.businessImpact->isRejectionRisk() && !result.businessImpact->isHighRejectionRisk() &&
           !isCriticalFailure(result);
  }
  return !result.isValid && result.severity == ValidationSeverity::error;
}

bool isOptimization(const ValidationResult& result) {
  if (result.businessImpact) return result.businessImpact->isSuboptimal();
  return result.isValid && result.severity == ValidationSeverity::warning;
}

bool isOpportunity(const ValidationResult& result) {
  if (result.businessImpact) return result.businessImpact->isOpportunity();
  return result.isValid && result.severity == ValidationSeverity::info;
}

// One child of submitAll's task group. It owns its entity, so that an unregister during
// the save cannot pull the entity away.
boost::asio::awaitable<void> saveEntity(std::shared_ptr<TrackableEntity> entity) { co_await entity->saveChanges(); }

}  // namespace

UnifiedChangeTracker::UnifiedChangeTracker() : UnifiedChangeTracker(Configuration{}) {}

UnifiedChangeTracker::UnifiedChangeTracker(Configuration configuration) : configuration_(configuration) {}

UnifiedChangeTracker::~UnifiedChangeTracker() {
  // A submit under way would go on with a destroyed tracker when it resumes.
  CORVANE_PRECONDITION(submitsUnderWay_ == 0,
                       "UnifiedChangeTracker destroyed while one of its submits is under way: own it through a "
                       "std::shared_ptr or keep it until the submit ends");
}

const std::list<UnifiedChangeTracker::Registration>& UnifiedChangeTracker::entities() const {
  observationRegistrar().access(kEntities);
  return entities_;
}

UnifiedChangeTracker::EntityPtr UnifiedChangeTracker::find(std::string_view entityId) const {
  observationRegistrar().access(kEntities);
  auto found = index_.find(entityId);
  return found == index_.end() ? nullptr : found->second->entity;
}

void UnifiedChangeTracker::mutateEntities(const std::function<void()>& mutation) {
  observationRegistrar().withMutation(kEntities, mutation);
}

void UnifiedChangeTracker::setStateVersion(std::int64_t version) {
  observationRegistrar().withMutation(kStateVersion, [&] { stateVersion_ = version; });
}

void UnifiedChangeTracker::raiseStateVersion() { setStateVersion(checkedAdd<std::int64_t>(stateVersion_, 1)); }

void UnifiedChangeTracker::log(std::string_view message) const {
  if (configuration_.enableLogging) printLine(fmt::format("ChangeTracker: {}", message));
}

void UnifiedChangeTracker::register_(EntityPtr entity) {
  CORVANE_PRECONDITION(entity != nullptr, "registering a null entity");
  std::string entityId = entity->entityId();
  CORVANE_PRECONDITION(static_cast<std::int64_t>(entities_.size()) < configuration_.maxEntities,
                       "the change tracker already holds maxEntities entities");
  mutateEntities([&] {
    if (auto found = index_.find(entityId); found != index_.end()) {
      found->second->entity = std::move(entity);
      return;
    }
    entities_.push_back(Registration{entityId, std::move(entity)});
    auto last = std::prev(entities_.end());
    index_.emplace(last->entityId, last);
  });
  raiseStateVersion();
  log("Registered entity '" + entityId + "'");
}

void UnifiedChangeTracker::unregister(std::string_view entityId) {
  const std::string id(entityId);
  mutateEntities([&] {
    if (auto found = index_.find(id); found != index_.end()) {
      auto position = found->second;
      index_.erase(found);
      entities_.erase(position);
    }
  });
  raiseStateVersion();
  log("Unregistered entity '" + id + "'");
}

std::vector<UnifiedChangeTracker::EntityPtr> UnifiedChangeTracker::registeredEntities() const {
  std::vector<EntityPtr> result;
  for (const auto& registration : entities()) result.push_back(registration.entity);
  return result;
}

std::vector<UnifiedChangeTracker::EntityPtr> UnifiedChangeTracker::entitiesWithChanges() const {
  std::vector<EntityPtr> result;
  for (const auto& registration : entities()) {
    if (registration.entity->hasUnsavedChanges()) result.push_back(registration.entity);
  }
  return result;
}

std::vector<UnifiedChangeTracker::EntityPtr> UnifiedChangeTracker::entitiesWithErrors() const {
  std::vector<EntityPtr> result;
  for (const auto& registration : entities()) {
    if (!registration.entity->validationResult().isValid) result.push_back(registration.entity);
  }
  return result;
}

std::vector<std::string> UnifiedChangeTracker::validationErrors() const {
  std::vector<std::string> result;
  for (const auto& registration : entities()) {
    const auto verdict = registration.entity->validationResult();
    if (!verdict.isValid) result.push_back(registration.entity->entityName() + ": " + verdict.message);
  }
  return result;
}

bool UnifiedChangeTracker::hasChanges(std::string_view entityId) const {
  auto entity = find(entityId);
  return entity && entity->hasUnsavedChanges();
}

bool UnifiedChangeTracker::isValid(std::string_view entityId) const {
  auto entity = find(entityId);
  return entity && entity->validationResult().isValid;
}

std::optional<ValidationResult> UnifiedChangeTracker::getValidationResult(std::string_view entityId) const {
  auto entity = find(entityId);
  if (!entity) return std::nullopt;
  return entity->validationResult();
}

std::string UnifiedChangeTracker::getChangeDescription(std::string_view entityId) const {
  auto entity = find(entityId);
  return entity ? entity->changeDescription() : "Entity not found";
}

std::string UnifiedChangeTracker::getStatusText(std::string_view entityId) const {
  auto entity = find(entityId);
  if (!entity) return "Entity not found";
  if (!entity->hasUnsavedChanges()) return "No changes";
  if (!entity->validationResult().isValid) return "Has validation issues";
  return "Ready to submit";
}

UnifiedChangeTracker::SubmitGuard::SubmitGuard(UnifiedChangeTracker& tracker)
    : tracker_(&tracker), owner_(tracker.weak_from_this().lock()) {
  ++tracker_->submitsUnderWay_;
}

UnifiedChangeTracker::SubmitGuard::SubmitGuard(SubmitGuard&& other) noexcept
    : tracker_(std::exchange(other.tracker_, nullptr)), owner_(std::move(other.owner_)) {}

UnifiedChangeTracker::SubmitGuard::~SubmitGuard() {
  // Counted down before `owner_` goes, which may destroy the tracker.
  if (tracker_) --tracker_->submitsUnderWay_;
}

// The coroutines proper take the guard as a parameter, so that it is in their frame from the
// call on: an awaitable does not start until it is awaited.
boost::asio::awaitable<void> UnifiedChangeTracker::submit(std::string entityId) {
  return submitGuarded(SubmitGuard(*this), std::move(entityId));
}

boost::asio::awaitable<void> UnifiedChangeTracker::submitAll() {
  return submitAllGuarded(SubmitGuard(*this));
}

boost::asio::awaitable<void> UnifiedChangeTracker::submitGuarded(SubmitGuard, std::string entityId) {
  auto entity = find(entityId);
  if (!entity) throw ChangeTrackingError::entityNotFound(entityId);
  if (!entity->hasUnsavedChanges()) throw ChangeTrackingError::nothingToSubmit();
  const auto verdict = entity->validationResult();
  if (!verdict.isValid) {
    throw ChangeTrackingError::submissionBlocked("Fix validation issue", {entity->entityName() + ": " + verdict.message});
  }
  co_await entity->saveChanges();
  raiseStateVersion();
}

void UnifiedChangeTracker::discard(std::string_view entityId) {
  auto entity = find(entityId);
  if (!entity) return;
  entity->discardChanges();
  raiseStateVersion();
}

bool UnifiedChangeTracker::hasUnsavedChanges() const {
  return std::ranges::any_of(entities(), [](const auto& r) { return r.entity->hasUnsavedChanges(); });
}

bool UnifiedChangeTracker::isValid() const {
  return std::ranges::all_of(entities(), [](const auto& r) { return r.entity->validationResult().isValid; });
}

bool UnifiedChangeTracker::canSubmit() const { return hasUnsavedChanges() && isValid(); }

std::string UnifiedChangeTracker::changeDescription() const {
  const auto changed = entitiesWithChanges();
  switch (changed.size()) {
    case 0: return "No changes to submit";
    case 1: return changed[0]->entityName() + " has changes";
    case 2: return changed[0]->entityName() + " and " + changed[1]->entityName() + " have changes";
    default: return fmt::format("{} entities have changes", changed.size());
  }
}

std::string UnifiedChangeTracker::statusText() const {
  if (!hasUnsavedChanges()) return "No changes to submit";
  const auto invalid = entitiesWithErrors().size();
  if (invalid == 1) return "1 issue to fix";
  if (invalid > 1) return fmt::format("{} issues to fix", invalid);
  return "Ready to submit";
}

boost::asio::awaitable<void> UnifiedChangeTracker::submitAllGuarded(SubmitGuard) {
  const auto changed = entitiesWithChanges();
  if (changed.empty()) throw ChangeTrackingError::nothingToSubmit();
  auto errors = validationErrors();
  if (!errors.empty()) {
    std::string reason = errors.size() == 1 ? "Fix this issue" : fmt::format("Fix {} issues", errors.size());
    throw ChangeTrackingError::submissionBlocked(std::move(reason), std::move(errors));
  }
  log(fmt::format("Submitting {} entities", changed.size()));

  auto executor = co_await boost::asio::this_coro::executor;
  using Save = decltype(boost::asio::co_spawn(executor, std::declval<boost::asio::awaitable<void>>(),
                                              boost::asio::deferred));
  std::vector<Save> saves;
  saves.reserve(changed.size());
  for (const auto& entity : changed) saves.push_back(boost::asio::co_spawn(executor, saveEntity(entity), boost::asio::deferred));
  auto [completionOrder, failures] =
      co_await boost::asio::experimental::make_parallel_group(std::move(saves))
          .async_wait(boost::asio::experimental::wait_for_one_error(), boost::asio::use_awaitable);
  // The first child to fail ended the group; the others then failed by being cancelled.
  for (auto index : completionOrder) {
    if (failures[index]) std::rethrow_exception(failures[index]);
  }
  raiseStateVersion();
  log("Successfully submitted all entities");
}

void UnifiedChangeTracker::discardAll() {
  const auto changed = entitiesWithChanges();
  log(fmt::format("Discarding changes in {} entities", changed.size()));
  for (const auto& entity : changed) entity->discardChanges();
  raiseStateVersion();
  log("Successfully discarded all changes");
}

void UnifiedChangeTracker::reset() {
  mutateEntities([&] {
    index_.clear();
    entities_.clear();
  });
  setStateVersion(0);
  log("Reset change tracker state");
}

void UnifiedChangeTracker::notifyChange() { raiseStateVersion(); }

std::int64_t UnifiedChangeTracker::stateVersion() const {
  observationRegistrar().access(kStateVersion);
  return stateVersion_;
}

template <class Predicate>
std::vector<ValidationResult> UnifiedChangeTracker::verdictsWhere(Predicate predicate) const {
  std::vector<ValidationResult> result;
  for (const auto& registration : entities()) {
    auto verdict = registration.entity->validationResult();
    if (predicate(verdict)) result.push_back(std::move(verdict));
  }
  return result;
}

std::vector<ValidationResult> UnifiedChangeTracker::blockers() const { return verdictsWhere(isBlocker); }

std::vector<ValidationResult> UnifiedChangeTracker::rejectionRisks() const { return verdictsWhere(isRejectionRisk); }

std::vector<ValidationResult> UnifiedChangeTracker::optimizations() const { return verdictsWhere(isOptimization); }

std::vector<ValidationResult> UnifiedChangeTracker::opportunities() const { return verdictsWhere(isOpportunity); }

std::vector<ValidationResult> UnifiedChangeTracker::enhancedValidationResults() const {
  auto all = blockers();
  for (auto&& category : {rejectionRisks(), optimizations(), opportunities()}) {
    all.insert(all.end(), category.begin(), category.end());
  }
  std::ranges::stable_sort(all, std::greater<>{}, &ValidationResult::displayPriority);
  return all;
}

std::vector<UnifiedChangeTracker::FieldValidationResult> UnifiedChangeTracker::allFieldValidationResults() const {
  std::vector<FieldValidationResult> result;
  for (const auto& registration : entities()) {
    for (const auto& [name, property] : PropertyDiscovery::findTrackedPropertiesWithNames(*registration.entity)) {
      if (const auto* validatable = dynamic_cast<const TrackedValidatable*>(property)) {
        result.push_back(FieldValidationResult{name, validatable->validationResult()});
      }
    }
  }
  return result;
}

std::vector<std::string> UnifiedChangeTracker::validatedFieldNames() const {
  std::vector<std::string> names;
  for (auto& field : allFieldValidationResults()) names.push_back(std::move(field.fieldName));
  return names;
}

std::int64_t UnifiedChangeTracker::totalTrackedFieldCount() const {
  std::int64_t total = 0;
  for (const auto& registration : entities()) {
    const auto count = static_cast<std::int64_t>(PropertyDiscovery::findTrackedProperties(*registration.entity).size());
    total = checkedAdd(total, count);
  }
  return total;
}

UnifiedChangeTracker::ValidationSummary UnifiedChangeTracker::getValidationSummary() const {
  ValidationSummary summary{0, {}, {}};
  for (auto& field : allFieldValidationResults()) {
    const bool required = field.result.businessImpact && field.result.businessImpact->isBlocker();
    if (required) summary.totalRequiredFields = checkedAdd<std::int64_t>(summary.totalRequiredFields, 1);
    if (field.result.isValid) {
      if (required) summary.validRequiredFields.push_back(std::move(field.fieldName));
      continue;
    }
    summary.allValidationIssues.push_back(std::move(field));
  }
  return summary;
}

}  // namespace corvane
