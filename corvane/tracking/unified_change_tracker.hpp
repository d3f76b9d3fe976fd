#pragma once

#include "corvane/observation/observation_registrar.hpp"
#include "corvane/results/validation_result.hpp"
#include "corvane/tracking/change_tracking_error.hpp"
#include "corvane/tracking/trackable_entity.hpp"

#include <boost/asio/awaitable.hpp>

#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace corvane {

/// The registry of the entities a host edits, keyed by entity identifier. It answers for
/// all of them together (changed? valid? can we submit? what should the status say?),
/// groups their verdicts into blockers, rejection risks, optimisations and opportunities,
/// submits (saves) and discards them, and raises a state version on every change so that
/// observers refresh.
///
/// Entities are iterated in registration order everywhere; re-registering an identifier
/// replaces the entity in place. The tracker holds entities strongly; entities refer back
/// to it weakly. Not synchronised: use it from the user-interface thread. Observed keys:
/// "entities" and "stateVersion".
///
/// A submit keeps a tracker that a `std::shared_ptr` owns alive from the call until it
/// ends, so its owner may let go meanwhile. A tracker owned any other way must outlive
/// its submits: destroying it while one is under way (started or not) is a fatal
/// precondition failure.
class UnifiedChangeTracker final : public Observable, public std::enable_shared_from_this<UnifiedChangeTracker> {
 public:
  /// Fixed at construction.
  struct Configuration {
    /// Registering beyond this many entities is a programming error.
    std::int64_t maxEntities = 10000;
    /// Whether the tracker prints "ChangeTracker: " lines.
    bool enableLogging = false;

    friend bool operator==(const Configuration&, const Configuration&) = default;
  };

  /// One tracked field's verdict, named as property discovery names it.
  struct FieldValidationResult {
    std::string fieldName;
    ValidationResult result;

    friend bool operator==(const FieldValidationResult&, const FieldValidationResult&) = default;
  };

  /// Required fields (those whose verdict carries a `blocker` impact) and every issue.
  struct ValidationSummary {
    std::int64_t totalRequiredFields;
    /// Names of the required fields that pass, in walk order.
    std::vector<std::string> validRequiredFields;
    /// Every field whose verdict does not pass, in walk order.
    std::vector<FieldValidationResult> allValidationIssues;

    friend bool operator==(const ValidationSummary&, const ValidationSummary&) = default;
  };

  using EntityPtr = std::shared_ptr<TrackableEntity>;

  /// An empty tracker at state version 0, with the default configuration.
  UnifiedChangeTracker();
  /// An empty tracker at state version 0.
  explicit UnifiedChangeTracker(Configuration configuration);
  /// Aborts when a submit of this tracker is still under way.
  ~UnifiedChangeTracker();
  UnifiedChangeTracker(const UnifiedChangeTracker&) = delete;
  UnifiedChangeTracker& operator=(const UnifiedChangeTracker&) = delete;

  const Configuration& configuration() const noexcept { return configuration_; }

  // Registration.

  /// Files `entity` under its identifier, replacing an entity filed there before, and raises
  /// the state version. Aborts when `maxEntities` entities are already registered (also
  /// when the identifier is already taken).
  void register_(EntityPtr entity);
  /// Registers each entity in order.
  template <class Entity>
  void register_(const std::vector<std::shared_ptr<Entity>>& entities) {
    for (const auto& entity : entities) register_(EntityPtr(entity));
  }
  /// Removes the entity filed under `entityId`, if any, and raises the state version either way.
  void unregister(std::string_view entityId);

  /// The entity under `entityId` as `Entity`, or null when unknown or of another type.
  template <class Entity>
  std::shared_ptr<Entity> getEntity(std::string_view entityId) const {
    return std::dynamic_pointer_cast<Entity>(find(entityId));
  }
  /// Every registered entity.
  std::vector<EntityPtr> registeredEntities() const;
  /// The entities with unsaved changes.
  std::vector<EntityPtr> entitiesWithChanges() const;
  /// The entities whose verdict does not pass.
  std::vector<EntityPtr> entitiesWithErrors() const;
  /// "<entity name>: <message>" for each entity whose verdict does not pass.
  std::vector<std::string> validationErrors() const;

  // One entity, by identifier (unknown identifiers are not errors).

  /// Whether the entity has unsaved changes; false when unknown.
  bool hasChanges(std::string_view entityId) const;
  /// Whether the entity's verdict passes; false when unknown.
  bool isValid(std::string_view entityId) const;
  /// The entity's verdict; nothing when unknown.
  std::optional<ValidationResult> getValidationResult(std::string_view entityId) const;
  /// The entity's change description, or "Entity not found".
  std::string getChangeDescription(std::string_view entityId) const;
  /// "Entity not found", "No changes", "Has validation issues" or "Ready to submit".
  std::string getStatusText(std::string_view entityId) const;
  /// Saves one entity. Throws `ChangeTrackingError` (entityNotFound, nothingToSubmit,
  /// submissionBlocked, checked in that order) or whatever the entity's save throws; the
  /// state version rises only after a successful save.
  boost::asio::awaitable<void> submit(std::string entityId);
  /// Discards the entity's changes and raises the state version; nothing when unknown.
  void discard(std::string_view entityId);

  // All entities.

  /// Whether any entity has unsaved changes.
  bool hasUnsavedChanges() const;
  /// Whether every entity's verdict passes (true when none is registered).
  bool isValid() const;
  /// Whether something changed and everything passes.
  bool canSubmit() const;
  /// "No changes to submit", "<name> has changes", "<a> and <b> have changes" or
  /// "<n> entities have changes".
  std::string changeDescription() const;
  /// "No changes to submit", "1 issue to fix", "<n> issues to fix" or "Ready to submit".
  std::string statusText() const;
  /// Saves every changed entity concurrently on the calling coroutine's executor: the saves
  /// start in registration order, each once the one before it has ended or waits. Throws
  /// `nothingToSubmit` when nothing changed and `submissionBlocked` when any entity (changed
  /// or not) does not pass; otherwise the first save error, unchanged: the saves waiting then
  /// are cancelled, those not yet started never start, those already done stay done.
  /// Cancelling the submit cancels the saves that wait. The state version rises only when
  /// every save succeeded.
  boost::asio::awaitable<void> submitAll();
  /// Discards the changes of every changed entity and raises the state version.
  void discardAll();
  /// Forgets every entity and returns the state version to 0.
  void reset();
  /// Raises the state version; entities call this when one of their properties changes.
  void notifyChange();
  /// A number that rises on every change the tracker makes or is told of.
  std::int64_t stateVersion() const;

  // Entity verdicts by business impact, recomputed on every read.

  /// Critical failures, `blocker` impacts and high rejection risks.
  std::vector<ValidationResult> blockers() const;
  /// Medium and low rejection risks that are not critical failures, and invalid errors
  /// without an impact.
  std::vector<ValidationResult> rejectionRisks() const;
  /// `suboptimal` impacts, and valid warnings without an impact.
  std::vector<ValidationResult> optimizations() const;
  /// `opportunity` impacts, and valid infos without an impact.
  std::vector<ValidationResult> opportunities() const;
  /// The four categories in that order, then stably sorted by display priority, highest first.
  std::vector<ValidationResult> enhancedValidationResults() const;

  // Field level.

  /// Every validating tracked property of every entity with its verdict.
  std::vector<FieldValidationResult> allFieldValidationResults() const;
  /// The names of those properties.
  std::vector<std::string> validatedFieldNames() const;
  /// The number of tracked properties of all entities, validating or not.
  std::int64_t totalTrackedFieldCount() const;
  /// Required fields and issues over `allFieldValidationResults()`.
  ValidationSummary getValidationSummary() const;

 private:
  struct Registration {
    std::string entityId;
    EntityPtr entity;
  };
  // Travels with a submit's coroutine frame from the call on: holds the tracker when a
  // shared pointer owns it, and counts the submits under way for the destructor's check.
  class SubmitGuard {
   public:
    explicit SubmitGuard(UnifiedChangeTracker& tracker);
    SubmitGuard(SubmitGuard&& other) noexcept;
    SubmitGuard& operator=(SubmitGuard&&) = delete;
    ~SubmitGuard();

   private:
    UnifiedChangeTracker* tracker_;
    std::shared_ptr<UnifiedChangeTracker> owner_;
  };

  boost::asio::awaitable<void> submitGuarded(SubmitGuard guard, std::string entityId);
  boost::asio::awaitable<void> submitAllGuarded(SubmitGuard guard);

  EntityPtr find(std::string_view entityId) const;
  const std::list<Registration>& entities() const;
  void mutateEntities(const std::function<void()>& mutation);
  void setStateVersion(std::int64_t version);
  void raiseStateVersion();
  void log(std::string_view message) const;
  template <class Predicate>
  std::vector<ValidationResult> verdictsWhere(Predicate predicate) const;

  const Configuration configuration_;
  std::list<Registration> entities_;  // registration order
  std::unordered_map<std::string_view, std::list<Registration>::iterator> index_;
  std::int64_t stateVersion_ = 0;
  std::size_t submitsUnderWay_ = 0;
};

}  // namespace corvane
