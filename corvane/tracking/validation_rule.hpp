#pragma once

#include "corvane/results/validation_result.hpp"
#include "corvane/tracking/validation_check.hpp"
#include "corvane/tracking/validation_guidance.hpp"
#include "corvane/tracking/validation_requirement.hpp"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// Turns the declaration of a text field into the single rule that judges it. On a value v,
/// with t the value trimmed of white space and line breaks:
///
/// 1. A `required` field whose t is empty fails as critical "<field> is required", with a
///    "Required field" blocker and nothing else.
/// 2. The checks run in order and the first verdict ends the rule: `tooLong` and `tooShort`
///    compare the characters of t with their bound, `empty` fails on an empty t with
///    `ValidationResult::required`, and `custom` always ends the rule with its verdict on
///    the untrimmed v (so later checks and the guidance never run).
/// 3. The guidance may then answer: `missingOptional` for an empty optional field,
///    `opportunity` for any empty field, `custom` always.
/// 4. Otherwise the field is valid: "<field> is valid", carrying the "Required field" blocker
///    when the field is required.
///
/// An absent `field` reads as "Field". The result suits `Tracked<std::string>::Rule`.
std::function<ValidationResult(const std::string&)> makeValidationRule(
    std::optional<std::string> field, ValidationRequirement requirement, std::vector<ValidationCheck> checks,
    std::optional<ValidationGuidance> guidance = std::nullopt);

}  // namespace corvane
