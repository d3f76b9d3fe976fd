#pragma once

#include "corvane/observation/observation_registrar.hpp"

#include <boost/asio/awaitable.hpp>

#include <string>

namespace corvane {

/// A change tracker over the entities of a submission: what changed, and submitting or
/// discarding it.
class ChangeTrackable : public Observable {
 public:
  virtual ~ChangeTrackable() = default;

  /// Whether any tracked entity has unsaved changes.
  virtual bool hasUnsavedChanges() const = 0;

  /// Whether `submit()` has anything to do.
  virtual bool canSubmit() const = 0;

  /// Whether a submission is running.
  virtual bool isSubmitting() const = 0;

  /// A human-readable list of what changed.
  virtual std::string changeDescription() const = 0;

  /// Saves the changes; may fail.
  virtual boost::asio::awaitable<void> submit() = 0;

  /// Throws the changes away.
  virtual void discard() = 0;

  /// Returns every entity to its saved state.
  virtual void reset() = 0;

 protected:
  ChangeTrackable() = default;
};

}  // namespace corvane
