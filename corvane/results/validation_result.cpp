#include "corvane/results/validation_result.hpp"

#include "corvane/text/characters.hpp"

#include "corvane/support/describe.hpp"
#include "corvane/support/precondition.hpp"
#include "corvane/support/print_line.hpp"

#include <algorithm>
#include <utility>

namespace corvane {
namespace {

using Action = ActionGuidance::Action;
using ActionType = Action::ActionType;
using DisplayStyle = DisplayBehavior::DisplayStyle;
using DisplayTiming = DisplayBehavior::DisplayTiming;

// Field names are lowered inside sentences ("Enter your app name").
std::string lower(std::string_view text) { return lowercased(text); }

const std::optional<Url>& productPageGuidance() {
  static const std::optional<Url> url = Url::parse(kProductPageGuidanceURL);
  return url;
}

std::int64_t defaultPriority(ValidationSeverity severity) {
  switch (severity) {
    case ValidationSeverity::none:
      return 0;
    case ValidationSeverity::info:
      return 200;
    case ValidationSeverity::warning:
      return 500;
    case ValidationSeverity::error:
      return 800;
    case ValidationSeverity::critical:
      return 1000;
  }
  detail::preconditionFailure("not a ValidationSeverity");
}

}  // namespace

ValidationResult::ValidationResult(bool valid, ValidationSeverity level, std::string text,
                                   std::optional<std::string> fix)
    : ValidationResult(valid, level, std::move(text), std::move(fix), std::nullopt, std::nullopt, std::nullopt,
                       std::nullopt) {}

ValidationResult::ValidationResult(bool valid, ValidationSeverity level, std::string text,
                                   std::optional<std::string> fix, std::optional<std::string> reason,
                                   std::optional<BusinessImpact> impact, std::optional<ActionGuidance> guidance,
                                   std::optional<DisplayBehavior> display)
    : isValid(valid),
      severity(level),
      message(std::move(text)),
      suggestedFix(std::move(fix)),
      businessReason(std::move(reason)),
      businessImpact(std::move(impact)),
      actionGuidance(std::move(guidance)),
      displayBehavior(std::move(display)) {}

const ValidationResult& ValidationResult::valid() {
  static const ValidationResult result(true, ValidationSeverity::none, "");
  return result;
}

const ValidationResult& ValidationResult::invalid() {
  static const ValidationResult result(false, ValidationSeverity::error, "Invalid state");
  return result;
}

const ValidationResult& ValidationResult::warning() {
  static const ValidationResult result(false, ValidationSeverity::warning, "Warning state");
  return result;
}

const ValidationResult& ValidationResult::info() {
  static const ValidationResult result(true, ValidationSeverity::info, "Informational state");
  return result;
}

const ValidationResult& ValidationResult::validRequired() {
  static const ValidationResult result(true, ValidationSeverity::none, "Valid required field", std::nullopt,
                                       "Required for App Store submission", BusinessImpact::blocker("Required field"),
                                       std::nullopt, std::nullopt);
  return result;
}

ValidationResult ValidationResult::validRequired(std::string_view field) {
  return ValidationResult(true, ValidationSeverity::none, std::string(field) + " is valid", std::nullopt,
                          "Required for App Store submission", BusinessImpact::blocker("Required field"), std::nullopt,
                          std::nullopt);
}

ValidationResult ValidationResult::failure(ValidationSeverity level, std::string text, std::optional<std::string> fix) {
  return ValidationResult(false, level, std::move(text), std::move(fix));
}

ValidationResult ValidationResult::invalid(ValidationSeverity level, std::string text, std::optional<std::string> fix) {
  return failure(level, std::move(text), std::move(fix));
}

ValidationResult ValidationResult::info(std::string text, std::optional<std::string> fix) {
  return ValidationResult(true, ValidationSeverity::info, std::move(text), std::move(fix));
}

ValidationResult ValidationResult::required(std::string_view field, std::optional<std::string> reason) {
  const std::string name = lower(field);
  ActionGuidance guidance{
      .primaryAction = Action{.title = "Add " + name,
                              .description = "Enter your " + name,
                              .type = ActionType::manual({"Click on the field", "Enter " + name})},
      .alternativeActions = {},
      .helpURL = std::nullopt,
      .estimatedTime = "< 1 minute",
  };
  return ValidationResult(
      false, ValidationSeverity::critical, std::string(field) + " is required", std::nullopt,
      reason ? std::move(*reason) : "App Store requires this information to process your submission",
      BusinessImpact::blocker("Required field"), std::move(guidance),
      DisplayBehavior{.timing = DisplayTiming::immediate(), .priority = 1000, .style = DisplayStyle::critical});
}

ValidationResult ValidationResult::tooLong(std::string_view field, std::int64_t limit, std::int64_t current,
                                           std::function<void()> autoFix) {
  const std::int64_t excess = checkedSubtract(current, limit);
  const bool critical = current > checkedMultiply(limit, std::int64_t{2});
  const std::string excessText = describe(excess);
  const std::string limitText = describe(limit);

  ActionGuidance guidance{
      .primaryAction = Action{.title = "Auto-trim to " + limitText,
                              .description = "Automatically shorten to meet App Store requirements",
                              .type = ActionType::autoFix(std::move(autoFix))},
      .alternativeActions = {Action{
          .title = "Edit manually",
          .description = "Remove " + excessText + " characters yourself",
          .type = ActionType::manual(
              {"Remove " + excessText + " characters", "Keep the most important words", "Make every word count"})}},
      .helpURL = productPageGuidance(),
      .estimatedTime = "1-2 minutes",
  };
  DisplayBehavior display =
      critical
          ? DisplayBehavior{.timing = DisplayTiming::immediate(), .priority = 900, .style = DisplayStyle::critical}
          : DisplayBehavior{.timing = DisplayTiming::onInteraction(), .priority = 700, .style = DisplayStyle::error};

  return ValidationResult(
      false, critical ? ValidationSeverity::critical : ValidationSeverity::error,
      std::string(field) + " is " + excessText + " characters too long", std::nullopt,
      "App Store automatically rejects apps with " + lower(field) + " over " + limitText + " characters",
      BusinessImpact::blocker(std::string(field) + " exceeds limit"), std::move(guidance), std::move(display));
}

ValidationResult ValidationResult::missingOptional(std::string_view field, std::string benefit,
                                                   std::vector<std::string> helpSteps) {
  const std::string name = lower(field);
  ActionGuidance guidance{
      .primaryAction = Action{.title = "Add " + name,
                              .description = "Improve your app's success",
                              .type = ActionType::manual(std::move(helpSteps))},
      .alternativeActions = {},
      .helpURL = std::nullopt,
      .estimatedTime = "2-5 minutes",
  };
  return ValidationResult(
      true, ValidationSeverity::warning, "No " + name + " added", std::nullopt, std::move(benefit),
      BusinessImpact::suboptimal("discoverability"), std::move(guidance),
      DisplayBehavior{.timing = DisplayTiming::delayed(3.0), .priority = 300, .style = DisplayStyle::suggestion});
}

ValidationResult ValidationResult::invalidFormat(std::string_view field, std::string_view expectedFormat) {
  const std::string name = lower(field);
  ActionGuidance guidance{
      .primaryAction = Action{.title = "Fix format",
                              .description = "Enter valid " + name,
                              .type = ActionType::manual({"Use format: " + std::string(expectedFormat),
                                                          "Double-check spelling", "Make sure it's accessible"})},
      .alternativeActions = {},
      .helpURL = std::nullopt,
      .estimatedTime = "< 1 minute",
  };
  return ValidationResult(
      false, ValidationSeverity::error, "Invalid " + name + " format", std::nullopt,
      "App Store needs valid " + name + " to contact you about your app",
      BusinessImpact::rejectionRisk(BusinessImpact::RejectionSeverity::high), std::move(guidance),
      DisplayBehavior{.timing = DisplayTiming::immediate(), .priority = 950, .style = DisplayStyle::error});
}

ValidationResult ValidationResult::opportunity(std::string title, std::string benefit, ActionGuidance::Action action) {
  ActionGuidance guidance{
      .primaryAction = std::move(action),
      .alternativeActions = {},
      .helpURL = std::nullopt,
      .estimatedTime = "5-15 minutes",
  };
  BusinessImpact impact = BusinessImpact::opportunity(benefit);
  return ValidationResult(
      true, ValidationSeverity::info, std::move(title), std::nullopt, std::move(benefit), std::move(impact),
      std::move(guidance),
      DisplayBehavior{.timing = DisplayTiming::onFocus(), .priority = 100, .style = DisplayStyle::info});
}

std::int64_t ValidationResult::displayPriority() const {
  return displayBehavior ? displayBehavior->priority : defaultPriority(severity);
}

bool ValidationResult::isOpportunity() const {
  if (businessImpact) return businessImpact->isOpportunity();
  return isValid && severity == ValidationSeverity::info;
}

bool ValidationResult::blocksSubmission() const {
  if (!isValid && severity == ValidationSeverity::critical) return true;
  return businessImpact && (businessImpact->isBlocker() || businessImpact->isHighRejectionRisk());
}

bool ValidationResult::showsImmediately() const {
  if (displayBehavior) return displayBehavior->timing.isImmediate();
  return severity == ValidationSeverity::critical;
}

bool ValidationResult::requiresImmediateAttention() const {
  return blocksSubmission() || showsImmediately();
}

std::string ValidationResult::fullMessage() const {
  if (!businessReason) return message;
  return message + " \u2022 " + *businessReason;
}

ValidationResult ValidationResult::combine(std::span<const ValidationResult> results) {
  const ValidationResult* winner = nullptr;
  for (const auto& result : results) {
    if (result.isValid) continue;
    if (winner == nullptr || result.displayPriority() > winner->displayPriority()) winner = &result;
  }
  if (winner != nullptr) return *winner;

  // Only valid results remain: an opportunity outranks a warning, a warning outranks
  // plain information, and a plain valid result comes last.
  const auto first = [&](auto&& predicate) -> const ValidationResult* {
    const auto found = std::ranges::find_if(results, predicate);
    return found == results.end() ? nullptr : &*found;
  };
  if (const auto* found = first([](const ValidationResult& r) { return r.isOpportunity(); })) return *found;
  if (const auto* found = first([](const ValidationResult& r) { return r.severity == ValidationSeverity::warning; })) {
    return *found;
  }
  if (const auto* found = first([](const ValidationResult& r) { return r.severity == ValidationSeverity::info; })) {
    return *found;
  }
  if (const auto* found = first([](const ValidationResult& r) { return r.severity == ValidationSeverity::none; })) {
    printLine("Returning validRequired result: " + found->fullMessage());
    return *found;
  }
  return valid();
}

ValidationResult ValidationResult::combine(std::initializer_list<ValidationResult> results) {
  return combine(std::span<const ValidationResult>(results.begin(), results.size()));
}

}  // namespace corvane
