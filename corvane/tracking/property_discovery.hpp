#pragma once

#include "corvane/tracking/change_detectable.hpp"
#include "corvane/tracking/trackable_entity.hpp"

#include <string>
#include <vector>

namespace corvane {

/// Finds the tracked properties of an entity among its `storedProperties()`, in declaration
/// order, and names them after their labels: one leading "_" is dropped, so "_appName" names
/// "appName" and "__x" names "_x". Both operations write each property's `propertyName`;
/// that is how properties learn their display names. Fields that are not tracked are skipped.
struct PropertyDiscovery {
  /// A discovered property with the name discovery gave it.
  struct NamedProperty {
    std::string name;
    ChangeDetectable* property;
  };

  PropertyDiscovery() = delete;

  /// The tracked properties of `entity`. A labelled property's name is set from its label;
  /// an unlabelled one keeps whatever name it had.
  static std::vector<ChangeDetectable*> findTrackedProperties(TrackableEntity& entity);

  /// The tracked properties of `entity` with their names; an unlabelled property is named
  /// "unknown". Every property's name is set to the name listed.
  static std::vector<NamedProperty> findTrackedPropertiesWithNames(TrackableEntity& entity);
};

}  // namespace corvane
