#pragma once

#include "corvane/completion/completion_item.hpp"
#include "corvane/submission/change_tracking_field.hpp"
#include "corvane/submission/submission_change_tracker.hpp"
#include "corvane/submission/submission_feature.hpp"
#include "corvane/submission/submission_feature_type.hpp"
#include "corvane/submission/submission_validation_rule.hpp"

#include <boost/asio/awaitable.hpp>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// The reference submission feature: an app's name, subtitle and description, each a
/// `ChangeTrackingField<std::string>`. It traces its change-tracking questions to standard
/// output so that a demo screen can show when observers re-read them.
///
/// Observed keys: "appName", "subtitle", "appDescription" (which field object is in
/// place; the fields announce their own values).
class ExampleAppInfoEntity final : public SubmissionFeature, public std::enable_shared_from_this<ExampleAppInfoEntity> {
 public:
  /// The field type of the entity.
  using Field = ChangeTrackingField<std::string>;

  /// A new entity with three empty fields. Always shared: its change tracker and its
  /// saves hold on to it.
  static std::shared_ptr<ExampleAppInfoEntity> create();

  /// "example-app-info".
  std::string entityId() const override;

  /// "App Information".
  std::string entityName() const;

  /// "app-basic-information": the kind of feature, deliberately not the entity id.
  std::string featureId() const override;

  /// The app's display name.
  std::shared_ptr<Field> appName() const;
  /// Puts `field` (not null) in place of the name field.
  void setAppName(std::shared_ptr<Field> field);

  /// The app's subtitle.
  std::shared_ptr<Field> subtitle() const;
  /// Puts `field` (not null) in place of the subtitle field.
  void setSubtitle(std::shared_ptr<Field> field);

  /// The app's description.
  std::shared_ptr<Field> appDescription() const;
  /// Puts `field` (not null) in place of the description field.
  void setAppDescription(std::shared_ptr<Field> field);

  /// Whether any of the three fields has unsaved changes. Prints
  /// "📊 Entity hasUnsavedChanges: <result> (appName: <a>, subtitle: <s>, description: <d>)".
  bool hasUnsavedChanges() const override;

  /// The labels of the changed fields ("App Name", "Subtitle", "Description") joined with
  /// ", ", or "" when nothing changed. Prints "📝 changedPropertiesDescription: '<text>'".
  std::string changeDescription() const override;

  /// `hasUnsavedChanges()` (with its line), then prints
  /// "🔄 Entity hasUpdates: <result> - SwiftUI will auto-update!".
  bool hasUpdates() const override;

  /// Waits half a second (a simulated save), then marks the three fields saved. The wait's
  /// cancellation is the only failure, and then nothing is saved.
  boost::asio::awaitable<void> saveChanges() override;

  /// Discards the changes of the three fields, in order (each prints its change line).
  void discardChanges() override;

  /// Two independent rules on the app name, each with a fresh UUID id: it is not empty
  /// ("App name is required"), and it has more than two characters ("App name must be at
  /// least 3 characters"). A passing rule gives the shared valid result.
  std::vector<SubmissionValidationRule<ExampleAppInfoEntity>> createValidationRules() const;

  /// Three items in the category "Basic Information": the app name (required), the
  /// subtitle (recommended) and the description (optional), each completed when its
  /// field is not empty.
  std::vector<CompletionItem> createCompletionItems() const override;

  /// A tracker over this entity.
  SubmissionChangeTracker<ExampleAppInfoEntity> createChangeTracker();

 private:
  struct Passkey {};

 public:
  /// Use `create`.
  explicit ExampleAppInfoEntity(Passkey);

 private:
  std::shared_ptr<Field> field(std::string_view key, const std::shared_ptr<Field>& storage) const;
  void setField(std::string_view key, std::shared_ptr<Field>& storage, std::shared_ptr<Field> field);

  std::shared_ptr<Field> appName_;
  std::shared_ptr<Field> subtitle_;
  std::shared_ptr<Field> appDescription_;
};

static_assert(SubmissionFeatureType<ExampleAppInfoEntity>);

}  // namespace corvane
