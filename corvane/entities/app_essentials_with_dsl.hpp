#pragma once

#include "corvane/tracking/trackable_entity.hpp"
#include "corvane/tracking/tracked.hpp"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// The five essentials of an app's store page (name, subtitle, description, support e-mail,
/// keywords), each a tracked text property declared wholly in the rule language; only the
/// support e-mail adds a check of its own. Every property starts empty and unchanged.
///
/// Each field `x` has `x()` (the value, recording an access), `setX(value)` and
/// `xProperty()`, the tracked property itself.
class AppEssentialsWithDSL final : public TrackableEntity {
 public:
  /// The names the verdicts use for each field. The entity's own declarations name none, so
  /// its verdicts speak of "Field" ("Field is required"); a host that shows verdicts out of
  /// context, such as a report, names them.
  struct FieldNames {
    std::optional<std::string> appName;
    std::optional<std::string> subtitle;
    std::optional<std::string> description;
    std::optional<std::string> supportEmail;
    std::optional<std::string> keywords;
  };

  /// A new entity with a fresh random UUID as its id and every field empty.
  AppEssentialsWithDSL();
  /// The same with `names` in the verdicts.
  explicit AppEssentialsWithDSL(FieldNames names);

  /// The UUID made at construction, in its canonical lower-case text form.
  std::string entityId() const override;
  /// "App Essentials (Simple DSL)".
  std::string entityName() const override;
  /// Whether any of the five properties differs from its saved value.
  bool hasUnsavedChanges() const override;
  /// The labels of the changed properties ("app name", "subtitle", "description", "support
  /// email", "keywords", in that order) joined with ", "; "app essentials" when none changed.
  std::string changeDescription() const override;
  /// `ValidationResult::combine` over the five properties' verdicts, in field order.
  ValidationResult validationResult() const override;
  /// Marks each property saved, in field order. Never fails.
  boost::asio::awaitable<void> saveChanges() override;
  /// Discards each property's edits, in field order.
  void discardChanges() override;
  /// The five properties under their backing-store labels "_appName", "_subtitle",
  /// "_description", "_supportEmail" and "_keywords".
  std::vector<StoredProperty> storedProperties() override;

  /// The app's name: required, at most 30 characters.
  const std::string& appName() const;
  /// Sets the app's name.
  void setAppName(std::string value);
  /// The app name's tracked property.
  Tracked<std::string>& appNameProperty();
  /// The app name's tracked property, read-only.
  const Tracked<std::string>& appNameProperty() const;

  /// The subtitle: required, at most 30 characters.
  const std::string& subtitle() const;
  /// Sets the subtitle.
  void setSubtitle(std::string value);
  /// The subtitle's tracked property.
  Tracked<std::string>& subtitleProperty();
  /// The subtitle's tracked property, read-only.
  const Tracked<std::string>& subtitleProperty() const;

  /// The long description: optional, at most 4000 characters.
  const std::string& description() const;
  /// Sets the description.
  void setDescription(std::string value);
  /// The description's tracked property.
  Tracked<std::string>& descriptionProperty();
  /// The description's tracked property, read-only.
  const Tracked<std::string>& descriptionProperty() const;

  /// The support contact address: optional; warns when it lacks an "@".
  const std::string& supportEmail() const;
  /// Sets the support address.
  void setSupportEmail(std::string value);
  /// The support address's tracked property.
  Tracked<std::string>& supportEmailProperty();
  /// The support address's tracked property, read-only.
  const Tracked<std::string>& supportEmailProperty() const;

  /// The search keywords as one text: required, 10 to 100 characters.
  const std::string& keywords() const;
  /// Sets the keywords.
  void setKeywords(std::string value);
  /// The keywords' tracked property.
  Tracked<std::string>& keywordsProperty();
  /// The keywords' tracked property, read-only.
  const Tracked<std::string>& keywordsProperty() const;

 private:
  std::array<const Tracked<std::string>*, 5> properties() const;
  std::array<Tracked<std::string>*, 5> properties();

  const std::string entityId_;
  Tracked<std::string> appName_;
  Tracked<std::string> subtitle_;
  Tracked<std::string> description_;
  Tracked<std::string> supportEmail_;
  Tracked<std::string> keywords_;
};

}  // namespace corvane
