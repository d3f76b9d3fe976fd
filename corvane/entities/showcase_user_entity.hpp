#pragma once

#include "corvane/tracking/trackable_entity.hpp"
#include "corvane/tracking/tracked.hpp"

#include <memory>
#include <string>
#include <vector>

namespace corvane {

class UnifiedChangeTracker;

/// A small user profile (name and e-mail), ready to register with a `UnifiedChangeTracker`.
class ShowcaseUserEntity final : public TrackableEntity {
 public:
  /// Both fields empty; nothing unsaved.
  ShowcaseUserEntity();

  /// "showcase-user-entity".
  std::string entityId() const override;
  /// "User Profile".
  std::string entityName() const override;

  /// The tracker the entity is registered with, if it is still alive (held weakly).
  /// Observed key "changeTracker".
  std::shared_ptr<UnifiedChangeTracker> changeTracker() const;
  void setChangeTracker(std::weak_ptr<UnifiedChangeTracker> tracker);

  const std::string& name() const { return name_.wrappedValue(); }
  void setName(std::string value) { name_.setWrappedValue(std::move(value)); }
  Tracked<std::string>& nameProperty() { return name_; }
  const Tracked<std::string>& nameProperty() const { return name_; }

  const std::string& email() const { return email_.wrappedValue(); }
  void setEmail(std::string value) { email_.setWrappedValue(std::move(value)); }
  Tracked<std::string>& emailProperty() { return email_; }
  const Tracked<std::string>& emailProperty() const { return email_; }

  bool hasUnsavedChanges() const override;
  /// "No changes", or "Changed: " and the names of the changed fields.
  std::string changeDescription() const override;
  /// The combined verdict of the name and e-mail rules on the current values.
  ValidationResult validationResult() const override;
  /// Like the app entity's save, with a wait of 0.2 seconds.
  boost::asio::awaitable<void> saveChanges() override;
  void discardChanges() override;
  std::vector<StoredProperty> storedProperties() override;

  static ValidationResult nameRule(const std::string& name);
  /// Only the presence of "@" is checked.
  static ValidationResult emailRule(const std::string& email);

 private:
  std::weak_ptr<UnifiedChangeTracker> changeTracker_;
  Tracked<std::string> name_{""};
  Tracked<std::string> email_{""};
};

}  // namespace corvane
