#include "corvane/tracking/trackable_entity.hpp"

#include "corvane/cache/validation_cache.hpp"

namespace corvane {

TrackableEntity::~TrackableEntity() = default;

bool TrackableEntity::isValid() const {
  return validationResult().isValid;
}

boost::asio::awaitable<void> TrackableEntity::saveChanges() {
  co_await willSave();
  ValidationCache::shared().invalidate(entityId() + ":validation");
  co_await didSave();
}

void TrackableEntity::discardChanges() {
  willDiscard();
  ValidationCache::shared().invalidate(entityId() + ":validation");
  didDiscard();
}

boost::asio::awaitable<void> TrackableEntity::willSave() {
  co_return;
}

boost::asio::awaitable<void> TrackableEntity::didSave() {
  co_return;
}

void TrackableEntity::willDiscard() {}

void TrackableEntity::didDiscard() {}

std::vector<TrackableEntity::StoredProperty> TrackableEntity::storedProperties() {
  return {};
}

}  // namespace corvane
