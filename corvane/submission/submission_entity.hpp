#pragma once

#include "corvane/observation/observation_registrar.hpp"

#include <boost/asio/awaitable.hpp>

#include <string>

namespace corvane {

/// An editable entity that takes part in a submission: it knows whether it has unsaved
/// changes, describes them, and saves or discards them as a whole. Implementations are
/// observable objects with identity, held by `std::shared_ptr`.
class SubmissionEntity : public Observable {
 public:
  virtual ~SubmissionEntity() = default;

  /// The key under which coordinators and validators file the entity.
  virtual std::string entityId() const = 0;

  /// Whether any value differs from its saved value.
  virtual bool hasUnsavedChanges() const = 0;

  /// A human-readable list of what changed.
  virtual std::string changeDescription() const = 0;

  /// Makes the current values the saved ones; may fail, and then saves nothing it had
  /// not saved before failing.
  virtual boost::asio::awaitable<void> saveChanges() = 0;

  /// Restores the saved values.
  virtual void discardChanges() = 0;

 protected:
  SubmissionEntity() = default;
};

}  // namespace corvane
