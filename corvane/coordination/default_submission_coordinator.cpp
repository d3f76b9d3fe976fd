#include "corvane/coordination/default_submission_coordinator.hpp"

#include "corvane/coordination/pure_swift_ui_completion_guide.hpp"
#include "corvane/submission/default_change_tracker.hpp"
#include "corvane/support/precondition.hpp"

#include <spdlog/logger.h>

#include <algorithm>

namespace corvane {

DefaultSubmissionCoordinator::DefaultSubmissionCoordinator(SubmissionConfiguration configuration)
    : configuration_(std::move(configuration)),
      aggregateValidator_(std::make_shared<AggregateValidator>()),
      logger_(logger("SimpleCoordination")) {
  logger_->debug("🔧 SimpleSubmissionCoordinator initialized");
}

std::shared_ptr<ChangeTrackable> DefaultSubmissionCoordinator::changeTracker() const {
  return std::shared_ptr<DefaultChangeTracker>(new DefaultChangeTracker(snapshot()));
}

std::shared_ptr<Validatable> DefaultSubmissionCoordinator::validator() const {
  return aggregateValidator_;
}

std::shared_ptr<AggregateValidator> DefaultSubmissionCoordinator::aggregateValidator() const {
  return aggregateValidator_;
}

std::shared_ptr<CompletionGuidable> DefaultSubmissionCoordinator::completionGuide() const {
  return std::make_shared<PureSwiftUICompletionGuide>(snapshot());
}

SubmissionConfiguration DefaultSubmissionCoordinator::configuration() const {
  return configuration_;
}

bool DefaultSubmissionCoordinator::isInitialized() const {
  observationRegistrar().access("isInitialized");
  return isInitialized_;
}

std::size_t DefaultSubmissionCoordinator::entityCount() const {
  return registeredEntities().size();
}

std::vector<std::string> DefaultSubmissionCoordinator::registeredEntityIds() const {
  std::vector<std::string> ids;
  for (const auto& [id, feature] : registeredEntities()) ids.push_back(id);
  return ids;
}

bool DefaultSubmissionCoordinator::isRegistered(std::string_view entityId) const {
  return find(entityId) != registeredEntities_.end();
}

void DefaultSubmissionCoordinator::register_(std::shared_ptr<SubmissionFeature> feature) {
  CORVANE_PRECONDITION(feature != nullptr, "DefaultSubmissionCoordinator::register_ needs a feature");
  std::string id = feature->entityId();
  if (isRegistered(id)) {
    logger_->error("⚠️ Entity {} already registered", id);
    return;
  }
  logger_->info("📝 Registering entity: {}", id);
  observationRegistrar().withMutation("registeredEntities", [&] { registeredEntities_.emplace_back(id, feature); });
  aggregateValidator_->register_(std::move(feature));
  logger_->info("✅ Entity {} registered with validator", id);
}

void DefaultSubmissionCoordinator::unregister(const std::shared_ptr<SubmissionFeature>& feature) {
  CORVANE_PRECONDITION(feature != nullptr, "DefaultSubmissionCoordinator::unregister needs a feature");
  const std::string id = feature->entityId();
  if (!isRegistered(id)) {
    logger_->error("⚠️ Entity {} not found", id);
    return;
  }
  logger_->info("🗑️ Unregistering entity: {}", id);
  observationRegistrar().withMutation("registeredEntities", [&] {
    std::erase_if(registeredEntities_, [&](const auto& entry) { return entry.first == id; });
  });
  aggregateValidator_->unregister(*feature);
  logger_->info("✅ Entity {} unregistered", id);
}

boost::asio::awaitable<void> DefaultSubmissionCoordinator::initialize() {
  if (isInitialized_) co_return;
  logger_->info("🚀 Initializing SimpleSubmissionCoordinator");
  setInitialized(true);
  logger_->info("✅ SimpleSubmissionCoordinator initialized");
}

boost::asio::awaitable<void> DefaultSubmissionCoordinator::teardown() {
  logger_->info("🧹 Tearing down SimpleSubmissionCoordinator");
  // The validator is deliberately not told: what was registered with it stays there.
  observationRegistrar().withMutation("registeredEntities", [&] { registeredEntities_.clear(); });
  setInitialized(false);
  logger_->info("✅ Teardown complete");
  co_return;
}

const DefaultSubmissionCoordinator::Registry& DefaultSubmissionCoordinator::registeredEntities() const {
  observationRegistrar().access("registeredEntities");
  return registeredEntities_;
}

std::vector<std::shared_ptr<SubmissionFeature>> DefaultSubmissionCoordinator::snapshot() const {
  std::vector<std::shared_ptr<SubmissionFeature>> features;
  for (const auto& [id, feature] : registeredEntities()) features.push_back(feature);
  return features;
}

DefaultSubmissionCoordinator::Registry::const_iterator DefaultSubmissionCoordinator::find(
    std::string_view entityId) const {
  const auto& registry = registeredEntities();
  return std::find_if(registry.begin(), registry.end(), [&](const auto& entry) { return entry.first == entityId; });
}

void DefaultSubmissionCoordinator::setInitialized(bool initialized) {
  observationRegistrar().withMutation("isInitialized", [&] { isInitialized_ = initialized; });
}

}  // namespace corvane
