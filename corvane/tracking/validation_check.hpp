#pragma once

#include "corvane/results/validation_result.hpp"
#include "corvane/support/tagged_variant.hpp"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <variant>

namespace corvane {

namespace detail {
/// The cases of `ValidationCheck`, reached as `ValidationCheck::<Case>`.
struct ValidationCheckCases {
  /// Fails when the trimmed value has more than `limit` characters.
  struct TooLong {
    std::int64_t limit;
  };
  /// Warns when the trimmed value has fewer than `minimum` characters.
  struct TooShort {
    std::int64_t minimum;
  };
  /// Always yields `check(value)`, given the untrimmed value, and ends the rule with it.
  struct Custom {
    std::function<ValidationResult(const std::string&)> check;
  };
  /// Fails as a missing required field when the trimmed value is empty.
  struct Empty {};

  /// The cases, in their canonical order.
  using Value = std::variant<TooLong, TooShort, Custom, Empty>;
};
}  // namespace detail

/// One check of a declared text field. Length checks count the user-perceived characters of
/// the trimmed value; see `makeValidationRule` for how a declaration runs its checks.
class ValidationCheck : public TaggedVariant<detail::ValidationCheckCases> {
 public:
  /// A `tooLong` check with the given limit.
  static ValidationCheck tooLong(std::int64_t limit);
  /// A `tooShort` check with the given minimum.
  static ValidationCheck tooShort(std::int64_t minimum);
  /// A `custom` check that judges the value with `check`.
  static ValidationCheck custom(std::function<ValidationResult(const std::string&)> check);
  /// An `empty` check.
  static ValidationCheck empty();

 private:
  using TaggedVariant::TaggedVariant;
};

}  // namespace corvane
