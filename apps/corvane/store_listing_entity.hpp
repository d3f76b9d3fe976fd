#pragma once

#include "corvane/tracking/trackable_entity.hpp"
#include "corvane/tracking/tracked.hpp"

#include <array>
#include <string>
#include <vector>

namespace corvane::cli {

/// The listing texts the library's reference entities do not cover: the support, marketing
/// and privacy policy URLs, the promotional text (at most 170 characters) and the release
/// notes (at most 4000), each declared in the rule language under its own field name.
class StoreListingEntity final : public TrackableEntity {
 public:
  /// Every field empty; the entity id is "store-listing-<locale>".
  explicit StoreListingEntity(std::string locale);

  /// "store-listing-<locale>".
  std::string entityId() const override;
  /// "Store listing (<locale>)".
  std::string entityName() const override;
  /// Whether any field differs from its saved value.
  bool hasUnsavedChanges() const override;
  /// The changed fields' own descriptions joined with "; ", or "No changes".
  std::string changeDescription() const override;
  /// `ValidationResult::combine` over the fields' current verdicts.
  ValidationResult validationResult() const override;
  /// Marks every field saved.
  boost::asio::awaitable<void> saveChanges() override;
  /// Restores every field's saved value.
  void discardChanges() override;
  /// The five fields under "_supportUrl", "_marketingUrl", "_privacyUrl",
  /// "_promotionalText" and "_releaseNotes".
  std::vector<StoredProperty> storedProperties() override;

  /// The support URL: optional, should start with https:// (the library's preset).
  Tracked<std::string>& supportUrlProperty() { return supportUrl_; }
  /// The marketing URL: optional; when given, an absolute https:// URL.
  Tracked<std::string>& marketingUrlProperty() { return marketingUrl_; }
  /// The privacy policy URL: required; an absolute https:// URL.
  Tracked<std::string>& privacyUrlProperty() { return privacyUrl_; }
  /// The promotional text: optional, at most 170 characters.
  Tracked<std::string>& promotionalTextProperty() { return promotionalText_; }
  /// The release notes: optional, at most 4000 characters.
  Tracked<std::string>& releaseNotesProperty() { return releaseNotes_; }

 private:
  std::array<Tracked<std::string>*, 5> properties();
  std::array<const Tracked<std::string>*, 5> properties() const;

  std::string locale_;
  Tracked<std::string> supportUrl_;
  Tracked<std::string> marketingUrl_;
  Tracked<std::string> privacyUrl_;
  Tracked<std::string> promotionalText_;
  Tracked<std::string> releaseNotes_;
};

}  // namespace corvane::cli
