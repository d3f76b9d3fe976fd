#pragma once

#include "corvane/observation/observation_registrar.hpp"
#include "corvane/results/validation_result.hpp"
#include "corvane/tracking/change_detectable.hpp"

#include <boost/asio/awaitable.hpp>

#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// An editable, observable object (an app's metadata, a user) made of tracked properties.
/// Trackers register entities through this interface, ask them for their state, and save
/// or discard them as a whole.
class TrackableEntity : public Observable {
 public:
  /// One stored field of an entity, as `PropertyDiscovery` sees it: the field's label, if it
  /// has one, and the field itself when it is a tracked property (null otherwise).
  struct StoredProperty {
    std::optional<std::string> label;
    ChangeDetectable* property;
  };

  virtual ~TrackableEntity();

  /// The key under which the entity is registered and its verdict cached.
  virtual std::string entityId() const = 0;
  /// A display name.
  virtual std::string entityName() const = 0;
  /// Whether any property differs from its saved value.
  virtual bool hasUnsavedChanges() const = 0;
  /// What changed, for people.
  virtual std::string changeDescription() const = 0;
  /// The entity's overall verdict.
  virtual ValidationResult validationResult() const = 0;
  /// Whether the overall verdict passes; by default `validationResult().isValid`.
  virtual bool isValid() const;

  /// Saves the entity. By default: awaits `willSave()` (whose failure ends the save with the
  /// same exception, before anything else happens), removes the shared validation cache's
  /// entry under `entityId() + ":validation"`, then awaits `didSave()`. The default does not
  /// mark properties saved: entities with tracked properties do that in their own override.
  /// The entity must outlive the returned awaitable, as with any member coroutine;
  /// `UnifiedChangeTracker` holds its entities for the whole of a submit.
  virtual boost::asio::awaitable<void> saveChanges();
  /// Discards unsaved edits. By default: `willDiscard()`, removal of the cache entry under
  /// `entityId() + ":validation"`, `didDiscard()`.
  virtual void discardChanges();

  /// Runs before the default save; throwing aborts the save. Does nothing by default.
  virtual boost::asio::awaitable<void> willSave();
  /// Runs at the end of the default save. Does nothing by default.
  virtual boost::asio::awaitable<void> didSave();
  /// Runs before the default discard. Does nothing by default.
  virtual void willDiscard();
  /// Runs at the end of the default discard. Does nothing by default.
  virtual void didDiscard();

  /// The entity's stored fields in declaration order, each with its backing-store label
  /// (such as "_appName"); C++ has no reflection, so entities list them here. Empty by
  /// default.
  virtual std::vector<StoredProperty> storedProperties();

 protected:
  TrackableEntity() = default;
};

}  // namespace corvane
