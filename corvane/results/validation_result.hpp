#pragma once

#include "corvane/results/action_guidance.hpp"
#include "corvane/results/business_impact.hpp"
#include "corvane/results/display_behavior.hpp"
#include "corvane/results/validation_severity.hpp"

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// The store's public page of product-page guidance, offered as help by `tooLong`.
inline constexpr std::string_view kProductPageGuidanceURL = "https://developer.apple.com/app-store/product-page/";

/// One verdict on one value: whether it passes, how serious it is, what to tell the user,
/// and the business view of it (why the store cares, what it means for the submission,
/// what the user can do, and how urgently to show it). A plain value: copy and compare it.
struct ValidationResult {
  /// How a screen draws a verdict; see `uiPresentation()`.
  struct UIPresentation {
    /// How the indicator moves.
    enum class AnimationType { none, subtle, pulse };

    /// A named colour.
    std::string colorName;
    /// A named symbol image.
    std::string iconName;
    /// Whether to draw the indicator.
    bool shouldShowIndicator;
    /// The text to show.
    std::string displayMessage;
    /// How the indicator moves.
    AnimationType animationType;

    friend bool operator==(const UIPresentation&, const UIPresentation&) = default;
  };

  /// Whether the value passes.
  bool isValid;
  /// How serious the verdict is; independent of `isValid`.
  ValidationSeverity severity;
  /// The primary user-facing text.
  std::string message;
  /// A short fix text.
  std::optional<std::string> suggestedFix;
  /// Why the store cares.
  std::optional<std::string> businessReason;
  /// The effect on the submission.
  std::optional<BusinessImpact> businessImpact;
  /// What the user can do.
  std::optional<ActionGuidance> actionGuidance;
  /// When and how urgently to show the verdict.
  std::optional<DisplayBehavior> displayBehavior;

  /// A verdict without the business fields.
  ValidationResult(bool isValid, ValidationSeverity severity, std::string message,
                   std::optional<std::string> suggestedFix = std::nullopt);

  /// A verdict with every field given.
  ValidationResult(bool isValid, ValidationSeverity severity, std::string message,
                   std::optional<std::string> suggestedFix, std::optional<std::string> businessReason,
                   std::optional<BusinessImpact> businessImpact, std::optional<ActionGuidance> actionGuidance,
                   std::optional<DisplayBehavior> displayBehavior);

  // Shared verdicts, created on first use.

  /// Valid, severity `none`, empty message.
  static const ValidationResult& valid();
  /// Invalid, severity `error`, "Invalid state".
  static const ValidationResult& invalid();
  /// Invalid (unlike `info()`), severity `warning`, "Warning state".
  static const ValidationResult& warning();
  /// Valid, severity `info`, "Informational state".
  static const ValidationResult& info();
  /// Valid, severity `none`, "Valid required field", carrying a `blocker` impact.
  static const ValidationResult& validRequired();

  // Factories.

  /// A required field that is filled in: valid, "<field> is valid", with a `blocker` impact.
  static ValidationResult validRequired(std::string_view field);
  /// An invalid verdict with the given severity, message and fix, and no business fields.
  static ValidationResult failure(ValidationSeverity severity, std::string message,
                                  std::optional<std::string> suggestedFix = std::nullopt);
  /// Another name for `failure`, with identical results.
  static ValidationResult invalid(ValidationSeverity severity, std::string message,
                                  std::optional<std::string> suggestedFix = std::nullopt);
  /// A valid verdict of severity `info`, without business fields.
  static ValidationResult info(std::string message, std::optional<std::string> suggestedFix = std::nullopt);
  /// A missing required field: critical, blocking, shown at once. `reason` replaces the
  /// default business reason.
  static ValidationResult required(std::string_view field, std::optional<std::string> reason = std::nullopt);
  /// A field of `current` characters over its `limit`, offering `autoFix` to trim it. The
  /// verdict is critical beyond twice the limit, an error up to it. Aborts when the excess
  /// or twice the limit does not fit in 64 bits.
  static ValidationResult tooLong(std::string_view field, std::int64_t limit, std::int64_t current,
                                  std::function<void()> autoFix);
  /// An empty optional field: valid but warning, with `benefit` as the reason to fill it
  /// in and `helpSteps` as the manual action.
  static ValidationResult missingOptional(std::string_view field, std::string benefit,
                                          std::vector<std::string> helpSteps);
  /// A value that is not in `expectedFormat`: an error with a high rejection risk.
  static ValidationResult invalidFormat(std::string_view field, std::string_view expectedFormat);
  /// A valid verdict that suggests `action` for `benefit`, titled `title`.
  static ValidationResult opportunity(std::string title, std::string benefit, ActionGuidance::Action action);

  // Derived values.

  /// The rank used to pick among verdicts: the display behaviour's priority when there is
  /// one, otherwise 0, 200, 500, 800 or 1000 for severities none to critical.
  std::int64_t displayPriority() const;
  /// Whether the verdict is an opportunity: by its impact when it has one, otherwise
  /// when it is valid with severity `info`.
  bool isOpportunity() const;
  /// Whether the verdict stops the submission: invalid and critical, a `blocker` impact
  /// (even on a valid verdict), or a high rejection risk.
  bool blocksSubmission() const;
  /// Whether to show the verdict at once: by its display timing when it has one,
  /// otherwise when it is critical.
  bool showsImmediately() const;
  /// `blocksSubmission() || showsImmediately()`.
  bool requiresImmediateAttention() const;
  /// The message, followed by " • " and the business reason when there is one.
  std::string fullMessage() const;
  /// The colour, symbol, text and animation a screen uses for this verdict.
  UIPresentation uiPresentation() const;

  /// Reduces `results` to one verdict. The invalid result with the highest display
  /// priority wins (the earliest on ties). Without invalid results: the first
  /// opportunity, else the first warning, else the first info, else the first `none`
  /// result (printing "Returning validRequired result: " and its full message), else
  /// `valid()`.
  static ValidationResult combine(std::span<const ValidationResult> results);
  /// See the span overload.
  static ValidationResult combine(std::initializer_list<ValidationResult> results);

  /// All eight fields compared; auto-fix handlers never are.
  friend bool operator==(const ValidationResult&, const ValidationResult&) = default;
};

/// The animation's name: "none", "subtle" or "pulse".
std::string describe(ValidationResult::UIPresentation::AnimationType animation);

}  // namespace corvane
