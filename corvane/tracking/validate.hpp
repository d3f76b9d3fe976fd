#pragma once

#include "corvane/results/validation_result.hpp"

#include <concepts>
#include <functional>
#include <utility>
#include <vector>

namespace corvane {

/// A light validated value: remembers its first value, whether it was ever set to
/// something else, and its rules. Its verdict shows only once the value has been edited,
/// so that a form does not greet the user with errors. A plain value type without
/// observers, cache or saved value.
template <class T>
  requires std::equality_comparable<T> && std::copy_constructible<T>
class Validate {
 public:
  /// A rule: a verdict on a value.
  using Rule = std::function<ValidationResult(const T&)>;

  /// A clean wrapper holding `initialValue`.
  explicit Validate(T initialValue, std::vector<Rule> rules = {})
      : value_(initialValue), initialValue_(std::move(initialValue)), rules_(std::move(rules)) {}

  /// The current value.
  const T& wrappedValue() const noexcept { return value_; }

  /// Stores `newValue`. A value different from the first one makes the wrapper dirty for
  /// good: setting the first value again does not make it clean.
  void setWrappedValue(T newValue) {
    if (!(newValue == initialValue_)) isDirty_ = true;
    value_ = std::move(newValue);
  }

  /// Edits a copy of the value with `mutation`, then sets it as by `setWrappedValue`.
  template <class Mutation>
    requires std::invocable<Mutation&, T&>
  void mutateWrappedValue(Mutation&& mutation) {
    T copy = value_;
    mutation(copy);
    setWrappedValue(std::move(copy));
  }

  /// `validate()` once the wrapper is dirty, otherwise `ValidationResult::valid()`.
  ValidationResult projectedValue() const { return isDirty_ ? validate() : ValidationResult::valid(); }

  /// Runs every rule on the value and returns the last rule's verdict (`valid()` without rules).
  ValidationResult validate() const {
    ValidationResult result = ValidationResult::valid();
    for (const auto& rule : rules_) result = rule(value_);
    return result;
  }

  /// The value the wrapper was created with.
  const T& initialValue() const noexcept { return initialValue_; }
  /// The rules, in evaluation order.
  const std::vector<Rule>& rules() const noexcept { return rules_; }
  /// Whether a value different from the first one was ever set.
  bool isDirty() const noexcept { return isDirty_; }

 private:
  T value_;
  T initialValue_;
  std::vector<Rule> rules_;
  bool isDirty_ = false;
};

}  // namespace corvane
