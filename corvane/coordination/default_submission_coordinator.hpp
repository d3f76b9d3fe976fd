#pragma once

#include "corvane/completion/completion_guidable.hpp"
#include "corvane/submission/aggregate_validator.hpp"
#include "corvane/submission/change_trackable.hpp"
#include "corvane/submission/submission_configuration.hpp"
#include "corvane/submission/submission_coordinating.hpp"
#include "corvane/submission/submission_feature.hpp"
#include "corvane/submission/validatable.hpp"
#include "corvane/support/logging.hpp"

#include <boost/asio/awaitable.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace corvane {

/// The one object a submission screen talks to. It files features by entity id (refusing
/// a second feature under an id it holds), forwards registrations to its one
/// `AggregateValidator`, and hands out a fresh change tracker and completion guide over
/// the registered features on every read. Every step is logged to
/// "Corvane.SimpleCoordination".
///
/// Features are kept in registration order: the ids, the trackers and the guides list
/// them in that order.
///
/// Observed keys: "registeredEntities", "isInitialized".
class DefaultSubmissionCoordinator final : public SubmissionCoordinating {
 public:
  /// An uninitialised coordinator with nothing registered. Logs
  /// "🔧 SimpleSubmissionCoordinator initialized" at debug level.
  explicit DefaultSubmissionCoordinator(SubmissionConfiguration configuration = SubmissionConfiguration::default_());

  /// A new `DefaultChangeTracker` over the features registered now. Keep the one you got
  /// if you need the same object twice.
  std::shared_ptr<ChangeTrackable> changeTracker() const override;

  /// The coordinator's `AggregateValidator`, the same object on every read.
  std::shared_ptr<Validatable> validator() const override;

  /// The same validator as `validator()`, with its own interface.
  std::shared_ptr<AggregateValidator> aggregateValidator() const;

  /// A new `PureSwiftUICompletionGuide` over the features registered now.
  std::shared_ptr<CompletionGuidable> completionGuide() const override;

  /// The settings given at construction; nothing here acts on them.
  SubmissionConfiguration configuration() const override;

  /// Whether `initialize()` ran since construction or the last `teardown()`.
  bool isInitialized() const;

  /// The number of registered features.
  std::size_t entityCount() const;

  /// The ids of the registered features, in registration order.
  std::vector<std::string> registeredEntityIds() const;

  /// Whether a feature is registered under `entityId`.
  bool isRegistered(std::string_view entityId) const;

  /// Files `feature` (not null) under its entity id and registers it with the validator.
  /// An id that is registered already is refused: "⚠️ Entity <id> already registered" is
  /// logged at error level and nothing changes.
  void register_(std::shared_ptr<SubmissionFeature> feature) override;

  /// Removes the feature filed under `feature`'s entity id, here and in the validator. An
  /// unknown id logs "⚠️ Entity <id> not found" at error level and changes nothing.
  void unregister(const std::shared_ptr<SubmissionFeature>& feature) override;

  /// Marks the coordinator initialised, logging it; a second call does nothing. Never
  /// fails. The coordinator must outlive the operation.
  boost::asio::awaitable<void> initialize() override;

  /// Lets go of every registered feature and marks the coordinator uninitialised, logging
  /// it, whatever the state. The validator keeps the features registered with it. The
  /// coordinator must outlive the operation.
  boost::asio::awaitable<void> teardown() override;

 private:
  using Registry = std::vector<std::pair<std::string, std::shared_ptr<SubmissionFeature>>>;

  const Registry& registeredEntities() const;
  std::vector<std::shared_ptr<SubmissionFeature>> snapshot() const;
  Registry::const_iterator find(std::string_view entityId) const;
  void setInitialized(bool initialized);

  SubmissionConfiguration configuration_;
  Registry registeredEntities_;
  std::shared_ptr<AggregateValidator> aggregateValidator_;
  bool isInitialized_ = false;
  std::shared_ptr<spdlog::logger> logger_;
};

}  // namespace corvane
