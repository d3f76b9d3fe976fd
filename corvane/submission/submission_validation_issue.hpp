#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// One problem found while validating for submission. Issues are values compared member by
/// member; `id` identifies an issue in lists.
struct SubmissionValidationIssue {
  /// How serious the issue is. Raw values are the case names, matched case-sensitively.
  enum class Severity { error, warning, info };

  /// The severity whose raw value is exactly `rawValue` ("error", "warning" or "info");
  /// nothing for any other text, "Error" included.
  static std::optional<Severity> severityFromRawValue(std::string_view rawValue) noexcept;

  /// Every severity in declaration order: error, warning, info.
  static constexpr std::array<Severity, 3> allSeverities() noexcept {
    return {Severity::error, Severity::warning, Severity::info};
  }

  /// Unique among issues; the factories of `SubmissionValidationResult` use a fresh UUID.
  std::string id;
  /// How serious the issue is.
  Severity severity;
  /// The short heading.
  std::string title;
  /// The message.
  std::string description;
  /// The entity the issue concerns, if known.
  std::optional<std::string> entityId;
  /// The property the issue concerns, if known.
  std::optional<std::string> propertyKey;
  /// What the user can do about it, if anything is suggested.
  std::optional<std::string> suggestedAction;

  /// All seven members equal.
  friend bool operator==(const SubmissionValidationIssue&, const SubmissionValidationIssue&) = default;
};

/// The severity's raw value: "error", "warning" or "info".
std::string_view rawValue(SubmissionValidationIssue::Severity severity) noexcept;

}  // namespace corvane
