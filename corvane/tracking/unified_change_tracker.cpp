#include "corvane/tracking/unified_change_tracker.hpp"

#include "corvane/support/precondition.hpp"
#include "corvane/support/print_line.hpp"
#include "corvane/tracking/property_discovery.hpp"
#include "corvane/tracking/tracked_validatable.hpp"

#include <boost/asio/any_completion_handler.hpp>
#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/async_result.hpp>
#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/this_coro.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <deque>
#include <exception>
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

// submitAll's saves as one group. They start in order, each as soon as the save before it
// has finished or waits: a worker coroutine saves entities one after another for as long as
// their saves finish without waiting, and when one waits, a new worker takes the next
// entity. So the group spawns one worker per save that waited (plus one) instead of one
// coroutine per entity, and a save that does not wait costs about what a plain loop awaiting
// it would. The group owns the entities, so that an unregister during a save cannot pull
// one away. Only its workers own it, so that a group whose executor is destroyed before it
// ends goes with them. Touched only on the submit's executor, one handler at a time.
class SaveGroup final : public std::enable_shared_from_this<SaveGroup> {
 public:
  using Handler = boost::asio::any_completion_handler<void(std::exception_ptr)>;

  SaveGroup(boost::asio::any_io_executor executor, std::vector<std::shared_ptr<TrackableEntity>> entities)
      : executor_(std::move(executor)), entities_(std::move(entities)) {}

  // Starts saving `entities` on `executor` and completes `handler` with the first failure,
  // if any, once no save is under way. Cancelling the handler cancels the saves.
  static void start(boost::asio::any_io_executor executor, std::vector<std::shared_ptr<TrackableEntity>> entities,
                    Handler handler) {
    auto group = std::make_shared<SaveGroup>(std::move(executor), std::move(entities));
    group->handler_.swap(handler);  // Boost 1.81's move assignment of this type recurses without end
    if (auto slot = boost::asio::get_associated_cancellation_slot(group->handler_); slot.is_connected()) {
      slot.assign([weak = group->weak_from_this()](boost::asio::cancellation_type type) {
        if (auto self = weak.lock()) self->cancel(type);
      });
    }
    group->starting_ = true;
    // A spawn returns once its worker has run out of entities or waits in a save. An executor
    // that queues even what it could run at once leaves the worker unstarted instead: then
    // each entity left gets a worker of its own, and each worker that runs carries on where
    // the ones before it wait.
    while (group->hasNext()) {
      const auto taken = group->next_;
      group->spawnWorker();
      if (group->next_ == taken) {
        for (auto left = group->entities_.size() - taken - 1; left > 0; --left) group->spawnWorker();
        break;
      }
    }
    group->starting_ = false;
    if (group->workersLeft_ == 0) group->complete();
  }

 private:
  static boost::asio::awaitable<void> work(std::shared_ptr<SaveGroup> group, std::size_t worker) {
    while (group->hasNext()) {
      TrackableEntity* entity = group->entities_[group->next_++].get();
      try {
        co_await entity->saveChanges();
      } catch (...) {
        group->fail(std::current_exception(), worker);
      }
    }
  }

  void spawnWorker() {
    const std::size_t worker = workers_.size();
    auto& cancellation = workers_.emplace_back().cancellation;
    ++workersLeft_;
    auto self = shared_from_this();
    boost::asio::co_spawn(
        executor_, work(self, worker),
        boost::asio::bind_cancellation_slot(cancellation.slot(), [self, worker](std::exception_ptr error) {
          self->workers_[worker].done = true;
          if (error) self->fail(std::move(error), worker);
          if (--self->workersLeft_ == 0 && !self->starting_) self->complete();
        }));
  }

  // Whether a save is left to start: not once every save has started, one has failed or
  // the group was cancelled.
  bool hasNext() const { return !stopped_ && next_ < entities_.size(); }

  // The first failure ends the group: the saves that wait are cancelled and the rest never
  // start. The failing worker itself is not signalled: it is running, and a coroutine
  // cancelled while it runs would fail its next step, even co_spawn's own last one.
  void fail(std::exception_ptr error, std::size_t failing) {
    if (firstFailure_) return;
    firstFailure_ = std::move(error);
    stopped_ = true;
    for (std::size_t worker = 0; worker < workers_.size(); ++worker) {
      if (worker != failing) workers_[worker].cancel(boost::asio::cancellation_type::terminal);
    }
  }

  // The submit itself was cancelled, so no worker is running.
  void cancel(boost::asio::cancellation_type type) {
    stopped_ = true;
    for (auto& worker : workers_) worker.cancel(type);
  }

  void complete() {
    if (auto slot = boost::asio::get_associated_cancellation_slot(handler_); slot.is_connected()) slot.clear();
    // Called from a worker's completion, which runs on the submit's executor: the handler's own.
    Handler handler(std::move(handler_));
    std::move(handler)(std::move(firstFailure_));
  }

  boost::asio::any_io_executor executor_;
  std::vector<std::shared_ptr<TrackableEntity>> entities_;
  std::size_t next_ = 0;
  std::size_t workersLeft_ = 0;
  bool starting_ = false;
  bool stopped_ = false;
  struct Worker {
    void cancel(boost::asio::cancellation_type type) {
      if (!done) cancellation.emit(type);
    }

    boost::asio::cancellation_signal cancellation;
    bool done = false;
  };
  std::deque<Worker> workers_;  // a deque, because a signal must not move
  std::exception_ptr firstFailure_;
  Handler handler_;
};

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
  // entitiesWithChanges() and validationErrors() in one walk, so that each entity is read
  // while it is still in the cache. As there, verdicts are read (reading one may print) in
  // registration order and only once something has changed.
  const auto& all = entities();
  // At once for every entity: growing step by step, a large list is copied and, with the
  // allocator handing out fresh pages each time, faulted in again several times.
  std::vector<EntityPtr> changed;
  changed.reserve(all.size());
  std::vector<std::string> errors;
  auto unread = all.begin();
  auto readVerdictsUpTo = [&](std::list<Registration>::const_iterator end) {
    for (; unread != end; ++unread) {
      const auto verdict = unread->entity->validationResult();
      if (!verdict.isValid) errors.push_back(unread->entity->entityName() + ": " + verdict.message);
    }
  };
  for (auto registration = all.begin(); registration != all.end(); ++registration) {
    if (registration->entity->hasUnsavedChanges()) changed.push_back(registration->entity);
    if (!changed.empty()) readVerdictsUpTo(std::next(registration));
  }
  if (changed.empty()) throw ChangeTrackingError::nothingToSubmit();
  if (!errors.empty()) {
    std::string reason = errors.size() == 1 ? "Fix this issue" : fmt::format("Fix {} issues", errors.size());
    throw ChangeTrackingError::submissionBlocked(std::move(reason), std::move(errors));
  }
  log(fmt::format("Submitting {} entities", changed.size()));

  auto executor = co_await boost::asio::this_coro::executor;
  // Rethrows the first save failure as it was thrown; the other saves then failed by being
  // cancelled. The initiation holds references only: this frame outlives it, and GCC 12
  // destroys it twice (a shared pointer in it would be released twice).
  co_await boost::asio::async_initiate<decltype(boost::asio::use_awaitable), void(std::exception_ptr)>(
      [&](auto handler) { SaveGroup::start(std::move(executor), std::move(changed), std::move(handler)); },
      boost::asio::use_awaitable);
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
