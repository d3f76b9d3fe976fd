#pragma once

#include "corvane/results/action_guidance.hpp"
#include "corvane/results/validation_result.hpp"
#include "corvane/support/tagged_variant.hpp"

#include <string>
#include <utility>
#include <variant>

namespace corvane {

namespace detail {
/// The cases of `ValidationGuidance`, reached as `ValidationGuidance::<Case>`.
struct ValidationGuidanceCases {
  /// Suggests adding `what` for `benefit` when an optional field is empty.
  struct MissingOptional {
    std::string what;
    std::string benefit;
    friend bool operator==(const MissingOptional&, const MissingOptional&) = default;
  };
  /// Offers `action` under `title` for `benefit` when the field is empty.
  struct Opportunity {
    std::string title;
    std::string benefit;
    ActionGuidance::Action action;
    friend bool operator==(const Opportunity&, const Opportunity&) = default;
  };
  /// Always yields `result`.
  struct Custom {
    ValidationResult result;
    friend bool operator==(const Custom&, const Custom&) = default;
  };

  /// The cases, in their canonical order.
  using Value = std::variant<MissingOptional, Opportunity, Custom>;
};
}  // namespace detail

/// Advice a declared text field gives once all its checks have passed; see
/// `makeValidationRule` for when each case yields a verdict.
class ValidationGuidance : public TaggedVariant<detail::ValidationGuidanceCases> {
 public:
  /// A `missingOptional` guidance: what to add (a phrase such as "descriptive app name")
  /// and why.
  static ValidationGuidance missingOptional(std::string what, std::string benefit);
  /// An `opportunity` guidance offering `action`.
  static ValidationGuidance opportunity(std::string title, std::string benefit, ActionGuidance::Action action);
  /// A `custom` guidance that always yields `result`.
  static ValidationGuidance custom(ValidationResult result);

  /// Same case and equal payload.
  friend bool operator==(const ValidationGuidance&, const ValidationGuidance&) = default;

 private:
  using TaggedVariant::TaggedVariant;
};

}  // namespace corvane
