#pragma once

#include "corvane/tracking/trackable_entity.hpp"
#include "corvane/tracking/tracked.hpp"

#include <memory>
#include <string>
#include <vector>

namespace corvane {

class UnifiedChangeTracker;

/// The metadata of an app listing (name, subtitle, description, version, keywords) with
/// the store's length and format rules, ready to register with a `UnifiedChangeTracker`.
/// Each field is offered as its value (`appName()`, `setAppName()`) and as its tracked
/// property (`appNameProperty()`), through which screens reach change state and verdicts.
class ShowcaseAppEntity final : public TrackableEntity {
 public:
  /// Every field empty but the version "1.0.0"; nothing unsaved.
  ShowcaseAppEntity();

  /// "showcase-app-entity".
  std::string entityId() const override;
  /// "Showcase App Entity".
  std::string entityName() const override;

  /// The tracker the entity is registered with, if it is still alive. Held weakly so that
  /// tracker and entity do not keep each other alive. Observed key "changeTracker".
  std::shared_ptr<UnifiedChangeTracker> changeTracker() const;
  void setChangeTracker(std::weak_ptr<UnifiedChangeTracker> tracker);

  const std::string& appName() const { return appName_.wrappedValue(); }
  void setAppName(std::string value) { appName_.setWrappedValue(std::move(value)); }
  Tracked<std::string>& appNameProperty() { return appName_; }
  const Tracked<std::string>& appNameProperty() const { return appName_; }

  const std::string& subtitle() const { return subtitle_.wrappedValue(); }
  void setSubtitle(std::string value) { subtitle_.setWrappedValue(std::move(value)); }
  Tracked<std::string>& subtitleProperty() { return subtitle_; }
  const Tracked<std::string>& subtitleProperty() const { return subtitle_; }

  const std::string& appDescription() const { return appDescription_.wrappedValue(); }
  void setAppDescription(std::string value) { appDescription_.setWrappedValue(std::move(value)); }
  Tracked<std::string>& appDescriptionProperty() { return appDescription_; }
  const Tracked<std::string>& appDescriptionProperty() const { return appDescription_; }

  const std::string& version() const { return version_.wrappedValue(); }
  void setVersion(std::string value) { version_.setWrappedValue(std::move(value)); }
  Tracked<std::string>& versionProperty() { return version_; }
  const Tracked<std::string>& versionProperty() const { return version_; }

  const std::vector<std::string>& keywords() const { return keywords_.wrappedValue(); }
  void setKeywords(std::vector<std::string> value) { keywords_.setWrappedValue(std::move(value)); }
  Tracked<std::vector<std::string>>& keywordsProperty() { return keywords_; }
  const Tracked<std::vector<std::string>>& keywordsProperty() const { return keywords_; }

  /// Whether any of the five fields differs from its saved value.
  bool hasUnsavedChanges() const override;
  /// "No changes", or "Changed: " and the names of the changed fields, e.g.
  /// "Changed: appName, keywords".
  std::string changeDescription() const override;
  /// The combined verdict of the rules of name, subtitle, version and keywords on their
  /// current values (the description has no rule). The rules are attached to the properties
  /// after construction, so each property's stored verdict is `valid()` until its value
  /// first changes; this verdict is always current.
  ValidationResult validationResult() const override;
  /// Prints "💾 Saving ...", waits half a second without blocking, marks every field saved,
  /// drops the entity's cached verdict and prints "✅ ... saved successfully!".
  boost::asio::awaitable<void> saveChanges() override;
  /// Prints "🔄 Discarding changes for ...", restores every field, drops the cached verdict
  /// and prints "✅ ... changes discarded!".
  void discardChanges() override;
  std::vector<StoredProperty> storedProperties() override;

  /// The rules, one per field, as the entity attaches them.
  static ValidationResult appNameRule(const std::string& name);
  static ValidationResult subtitleRule(const std::string& subtitle);
  static ValidationResult versionRule(const std::string& version);
  static ValidationResult keywordsRule(const std::vector<std::string>& keywords);

 private:
  std::weak_ptr<UnifiedChangeTracker> changeTracker_;
  Tracked<std::string> appName_{""};
  Tracked<std::string> subtitle_{""};
  Tracked<std::string> appDescription_{""};
  Tracked<std::string> version_{"1.0.0"};
  Tracked<std::vector<std::string>> keywords_{{}};
};

}  // namespace corvane
