#pragma once

#include "corvane/submission/submission_feature.hpp"
#include "corvane/support/precondition.hpp"

#include <boost/asio/awaitable.hpp>

#include <concepts>
#include <memory>
#include <string>
#include <utility>

namespace corvane {

/// A thin value that forwards the change-tracking questions and actions to one feature.
/// Copies share the feature.
///
/// `Entity` must derive from `SubmissionFeature`. That is checked where a tracker is
/// constructed rather than on the template itself, because a feature names
/// `SubmissionChangeTracker<Self>` inside its own class, where it is still incomplete.
template <class Entity>
class SubmissionChangeTracker {
 public:
  /// A tracker over `entity`, which must not be null; its entity id is copied now.
  explicit SubmissionChangeTracker(std::shared_ptr<Entity> entity)
      : entity_(checked(std::move(entity))), entityId_(entity_->entityId()) {
    static_assert(std::derived_from<Entity, SubmissionFeature>, "Entity must be a SubmissionFeature");
  }

  /// The tracked feature.
  const std::shared_ptr<Entity>& entity() const noexcept { return entity_; }

  /// The feature's entity id as it was when the tracker was made.
  const std::string& entityId() const noexcept { return entityId_; }

  /// The feature's `hasUnsavedChanges()`.
  bool hasUnsavedChanges() const { return entity_->hasUnsavedChanges(); }

  /// The same as `hasUnsavedChanges()`.
  bool canSubmit() const { return hasUnsavedChanges(); }

  /// The feature's `changeDescription()`.
  std::string changeDescription() const { return entity_->changeDescription(); }

  /// Awaits the feature's `saveChanges()`; its error reaches the caller unchanged. The
  /// operation keeps the feature alive itself, so it may outlive this tracker.
  boost::asio::awaitable<void> submit() const { return save(entity_); }

  /// The feature's `discardChanges()`.
  void discard() const { entity_->discardChanges(); }

 private:
  static std::shared_ptr<Entity> checked(std::shared_ptr<Entity> entity) {
    CORVANE_PRECONDITION(entity, "SubmissionChangeTracker needs an entity");
    return entity;
  }

  static boost::asio::awaitable<void> save(std::shared_ptr<Entity> entity) { co_await entity->saveChanges(); }

  std::shared_ptr<Entity> entity_;
  std::string entityId_;
};

}  // namespace corvane
