#include "corvane/entities/example_app_info_entity.hpp"

#include "corvane/support/uuid.hpp"
#include "corvane/submission/submission_validation_result.hpp"
#include "corvane/support/describe.hpp"
#include "corvane/support/precondition.hpp"
#include "corvane/support/print_line.hpp"
#include "corvane/support/sleep.hpp"
#include "corvane/text/characters.hpp"


#include <chrono>

namespace corvane {

namespace {

constexpr std::string_view kAppName = "appName";
constexpr std::string_view kSubtitle = "subtitle";
constexpr std::string_view kAppDescription = "appDescription";
constexpr std::string_view kCategory = "Basic Information";

boost::asio::awaitable<void> saveAfterDelay(std::shared_ptr<ExampleAppInfoEntity> entity) {
  co_await sleepFor(std::chrono::milliseconds(500));
  entity->appName()->markAsSaved();
  entity->subtitle()->markAsSaved();
  entity->appDescription()->markAsSaved();
}

}  // namespace

ExampleAppInfoEntity::ExampleAppInfoEntity(Passkey)
    : appName_(std::make_shared<Field>("")),
      subtitle_(std::make_shared<Field>("")),
      appDescription_(std::make_shared<Field>("")) {}

std::shared_ptr<ExampleAppInfoEntity> ExampleAppInfoEntity::create() {
  return std::make_shared<ExampleAppInfoEntity>(Passkey{});
}

std::string ExampleAppInfoEntity::entityId() const {
  return "example-app-info";
}

std::string ExampleAppInfoEntity::entityName() const {
  return "App Information";
}

std::string ExampleAppInfoEntity::featureId() const {
  return "app-basic-information";
}

std::shared_ptr<ExampleAppInfoEntity::Field> ExampleAppInfoEntity::field(std::string_view key,
                                                                         const std::shared_ptr<Field>& storage) const {
  observationRegistrar().access(key);
  return storage;
}

void ExampleAppInfoEntity::setField(std::string_view key, std::shared_ptr<Field>& storage,
                                    std::shared_ptr<Field> field) {
  CORVANE_PRECONDITION(field, "ExampleAppInfoEntity fields cannot be null");
  observationRegistrar().withMutation(key, [&] { storage = std::move(field); });
}

std::shared_ptr<ExampleAppInfoEntity::Field> ExampleAppInfoEntity::appName() const {
  return field(kAppName, appName_);
}
void ExampleAppInfoEntity::setAppName(std::shared_ptr<Field> field) {
  setField(kAppName, appName_, std::move(field));
}

std::shared_ptr<ExampleAppInfoEntity::Field> ExampleAppInfoEntity::subtitle() const {
  return field(kSubtitle, subtitle_);
}
void ExampleAppInfoEntity::setSubtitle(std::shared_ptr<Field> field) {
  setField(kSubtitle, subtitle_, std::move(field));
}

std::shared_ptr<ExampleAppInfoEntity::Field> ExampleAppInfoEntity::appDescription() const {
  return field(kAppDescription, appDescription_);
}
void ExampleAppInfoEntity::setAppDescription(std::shared_ptr<Field> field) {
  setField(kAppDescription, appDescription_, std::move(field));
}

bool ExampleAppInfoEntity::hasUnsavedChanges() const {
  const bool result =
      appName()->hasUnsavedChanges() || subtitle()->hasUnsavedChanges() || appDescription()->hasUnsavedChanges();
  printLine("📊 Entity hasUnsavedChanges: " + describe(result) + " (appName: " +
            describe(appName()->hasUnsavedChanges()) + ", subtitle: " + describe(subtitle()->hasUnsavedChanges()) +
            ", description: " + describe(appDescription()->hasUnsavedChanges()) + ")");
  return result;
}

std::string ExampleAppInfoEntity::changeDescription() const {
  std::string text;
  auto add = [&text](bool changed, std::string_view label) {
    if (!changed) return;
    if (!text.empty()) text += ", ";
    text += label;
  };
  add(appName()->hasUnsavedChanges(), "App Name");
  add(subtitle()->hasUnsavedChanges(), "Subtitle");
  add(appDescription()->hasUnsavedChanges(), "Description");
  printLine("📝 changedPropertiesDescription: '" + text + "'");
  return text;
}

bool ExampleAppInfoEntity::hasUpdates() const {
  const bool result = hasUnsavedChanges();
  printLine("🔄 Entity hasUpdates: " + describe(result) + " - SwiftUI will auto-update!");
  return result;
}

boost::asio::awaitable<void> ExampleAppInfoEntity::saveChanges() {
  return saveAfterDelay(shared_from_this());
}

void ExampleAppInfoEntity::discardChanges() {
  appName()->discardChanges();
  subtitle()->discardChanges();
  appDescription()->discardChanges();
}

std::vector<SubmissionValidationRule<ExampleAppInfoEntity>> ExampleAppInfoEntity::createValidationRules() const {
  using Result = SubmissionValidationResult;
  std::vector<SubmissionValidationRule<ExampleAppInfoEntity>> rules;
  rules.push_back({newUppercaseUuidString(), [](const ExampleAppInfoEntity& entity) -> boost::asio::awaitable<Result> {
                     if (entity.appName()->value().empty()) co_return Result::invalid("App name is required");
                     co_return Result::valid();
                   }});
  rules.push_back({newUppercaseUuidString(), [](const ExampleAppInfoEntity& entity) -> boost::asio::awaitable<Result> {
                     if (characterCount(entity.appName()->value()) <= 2) {
                       co_return Result::invalid("App name must be at least 3 characters");
                     }
                     co_return Result::valid();
                   }});
  return rules;
}

std::vector<CompletionItem> ExampleAppInfoEntity::createCompletionItems() const {
  using Status = CompletionItem::CompletionStatus;
  using Priority = CompletionItem::Priority;
  const std::string category(kCategory);
  auto doneOr = [](const std::shared_ptr<Field>& field, Status otherwise) {
    return field->value().empty() ? otherwise : Status::completed();
  };
  return {
      CompletionItem("app-name-set", "App Name", "Set your app's display name", doneOr(appName(), Status::missing()),
                     Priority::required, category),
      CompletionItem("subtitle-set", "Subtitle", "Add a subtitle to help users discover your app",
                     doneOr(subtitle(), Status::optional()), Priority::recommended, category),
      CompletionItem("description-set", "Description", "Provide a detailed description of your app",
                     doneOr(appDescription(), Status::optional()), Priority::optional, category),
  };
}

SubmissionChangeTracker<ExampleAppInfoEntity> ExampleAppInfoEntity::createChangeTracker() {
  return SubmissionChangeTracker<ExampleAppInfoEntity>(shared_from_this());
}

}  // namespace corvane
