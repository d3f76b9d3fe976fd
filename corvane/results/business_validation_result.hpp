#pragma once

#include "corvane/results/action_guidance.hpp"
#include "corvane/results/business_impact.hpp"
#include "corvane/results/display_timing.hpp"
#include "corvane/results/validation_color_scheme.hpp"
#include "corvane/results/validation_result.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace corvane {

/// A verdict put business first: its impact on the submission leads, and screens colour
/// it by that impact. Converts back to a plain `ValidationResult` with `asLegacyResult()`.
struct BusinessValidationResult {
  /// The effect on the submission.
  BusinessImpact businessImpact;
  /// Whether the verdict stops the submission.
  bool blocksSubmission;
  /// The text shown to the user.
  std::string userMessage;
  /// Why the store cares.
  std::optional<std::string> businessReason;
  /// What the user can do.
  std::optional<ActionGuidance> actionGuidance;
  /// When the verdict appears.
  DisplayTiming displayTiming;
  /// How prominent the verdict is; larger is more prominent.
  std::int64_t visualPriority;

  /// The colour family of the impact: blocker → critical, high rejection risk → error,
  /// medium or low rejection risk → warning, suboptimal → suggestion, opportunity →
  /// opportunity.
  ValidationColorScheme colorScheme() const;
  /// Whether the impact is only `suboptimal` or an `opportunity`.
  bool isSuccess() const;
  /// Whether the timing is `immediate`.
  bool shouldShowImmediately() const;
  /// The plain verdict: valid unless blocking, severity from the impact, the user message,
  /// and the primary action's description as suggested fix. The business fields,
  /// including the reason, are dropped.
  ValidationResult asLegacyResult() const;

  /// All seven fields compared.
  friend bool operator==(const BusinessValidationResult&, const BusinessValidationResult&) = default;
};

}  // namespace corvane
