#pragma once

#include "corvane/results/validation_result.hpp"
#include "corvane/tracking/validation_requirement.hpp"

#include <concepts>
#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace corvane {

namespace detail {

// The verdict of `emptyValueRule` once the value has been compared with the empty one.
ValidationResult emptyValueVerdict(ValidationRequirement requirement, bool isEmpty, const std::string& field);

}  // namespace detail

/// The rule of a field of any type that has an "empty" value, such as a picker: a value
/// equal to `empty` fails as critical "<field> is required" when the field is required, and
/// earns "Consider selecting <field in lower case>" (valid, an "Optional selection"
/// opportunity) when it is optional. Any other value is "<field> is valid", with a
/// "Required field" blocker when required. An absent `field` reads as "Field".
template <class T>
  requires std::equality_comparable<T> && std::copy_constructible<T>
std::function<ValidationResult(const T&)> emptyValueRule(ValidationRequirement requirement, T empty,
                                                         std::optional<std::string> field = std::nullopt) {
  return [requirement, empty = std::move(empty), field = std::move(field).value_or("Field")](const T& value) {
    return detail::emptyValueVerdict(requirement, value == empty, field);
  };
}

}  // namespace corvane
