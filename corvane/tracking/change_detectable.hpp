#pragma once

#include <optional>
#include <string>

namespace corvane {

/// A property that knows whether its value differs from the last saved one, whatever the
/// value's type. Entities drive all their properties through this interface.
class ChangeDetectable {
 public:
  virtual ~ChangeDetectable() = default;

  /// Whether the current value differs from the saved value.
  virtual bool hasChanged() const = 0;
  /// What changed, for people; empty when nothing did.
  virtual std::string changeDescription() const = 0;
  /// The display name used in change descriptions; absent until somebody sets it.
  virtual std::optional<std::string> propertyName() const = 0;
  /// Sets the display name.
  virtual void setPropertyName(std::optional<std::string> name) = 0;
  /// Makes the current value the saved value.
  virtual void markSaved() = 0;
  /// Restores the saved value.
  virtual void discardChanges() = 0;

 protected:
  ChangeDetectable() = default;
  ChangeDetectable(const ChangeDetectable&) = default;
  ChangeDetectable& operator=(const ChangeDetectable&) = default;
};

}  // namespace corvane
