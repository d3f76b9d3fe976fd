#pragma once

#include "corvane/completion/completion_guidable.hpp"
#include "corvane/observation/observation_registrar.hpp"
#include "corvane/submission/change_trackable.hpp"
#include "corvane/submission/submission_configuration.hpp"
#include "corvane/submission/submission_feature.hpp"
#include "corvane/submission/validatable.hpp"

#include <boost/asio/awaitable.hpp>

#include <memory>

namespace corvane {

/// The one object a submission screen talks to: it registers features and hands out a
/// change tracker, a validator and a completion guide over them.
class SubmissionCoordinating : public Observable {
 public:
  virtual ~SubmissionCoordinating() = default;

  /// A change tracker over the registered features.
  virtual std::shared_ptr<ChangeTrackable> changeTracker() const = 0;

  /// The validator of the registered features.
  virtual std::shared_ptr<Validatable> validator() const = 0;

  /// A completion guide over the registered features.
  virtual std::shared_ptr<CompletionGuidable> completionGuide() const = 0;

  /// The settings given at construction.
  virtual SubmissionConfiguration configuration() const = 0;

  /// Registers `feature` for submission, filed under its entity id.
  virtual void register_(std::shared_ptr<SubmissionFeature> feature) = 0;

  /// Removes the feature filed under `feature`'s entity id.
  virtual void unregister(const std::shared_ptr<SubmissionFeature>& feature) = 0;

  /// Prepares the coordinator for use; may fail.
  virtual boost::asio::awaitable<void> initialize() = 0;

  /// Lets go of the registered features.
  virtual boost::asio::awaitable<void> teardown() = 0;

 protected:
  SubmissionCoordinating() = default;
};

}  // namespace corvane
