#include "corvane/tracking/property_discovery.hpp"

#include <optional>
#include <utility>

namespace corvane {
namespace {

std::optional<std::string> nameFromLabel(const std::optional<std::string>& label) {
  if (!label) return std::nullopt;
  return label->starts_with('_') ? label->substr(1) : *label;
}

}  // namespace

std::vector<ChangeDetectable*> PropertyDiscovery::findTrackedProperties(TrackableEntity& entity) {
  std::vector<ChangeDetectable*> properties;
  for (auto& [label, property] : entity.storedProperties()) {
    if (property == nullptr) continue;
    if (auto name = nameFromLabel(label)) property->setPropertyName(std::move(name));
    properties.push_back(property);
  }
  return properties;
}

std::vector<PropertyDiscovery::NamedProperty> PropertyDiscovery::findTrackedPropertiesWithNames(
    TrackableEntity& entity) {
  std::vector<NamedProperty> properties;
  for (auto& [label, property] : entity.storedProperties()) {
    if (property == nullptr) continue;
    std::string name = nameFromLabel(label).value_or("unknown");
    property->setPropertyName(name);
    properties.push_back({std::move(name), property});
  }
  return properties;
}

}  // namespace corvane
