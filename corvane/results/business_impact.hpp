#pragma once

#include "corvane/support/tagged_variant.hpp"

#include <string>
#include <utility>
#include <variant>

namespace corvane {

namespace detail {
/// The cases of `BusinessImpact`, reached as `BusinessImpact::<Case>`.
struct BusinessImpactCases {
  /// How likely the store is to reject the submission over a `rejectionRisk`.
  enum class RejectionSeverity { high, medium, low };

  /// The submission cannot go ahead; `reason` says why.
  struct Blocker {
    std::string reason;
    friend bool operator==(const Blocker&, const Blocker&) = default;
  };
  /// The store may reject the submission.
  struct RejectionRisk {
    RejectionSeverity severity;
    friend bool operator==(const RejectionRisk&, const RejectionRisk&) = default;
  };
  /// The listing works but could do better in `area`.
  struct Suboptimal {
    std::string area;
    friend bool operator==(const Suboptimal&, const Suboptimal&) = default;
  };
  /// Acting on the verdict would bring `benefit`.
  struct Opportunity {
    std::string benefit;
    friend bool operator==(const Opportunity&, const Opportunity&) = default;
  };

  /// The cases, in their canonical order.
  using Value = std::variant<Blocker, RejectionRisk, Suboptimal, Opportunity>;
};
}  // namespace detail

/// What a verdict means for the submission: it blocks it, risks a rejection, leaves the
/// listing suboptimal, or points at a missed opportunity.
class BusinessImpact : public TaggedVariant<detail::BusinessImpactCases> {
 public:
  /// A `blocker` impact with the given reason.
  static BusinessImpact blocker(std::string reason);
  /// A `rejectionRisk` impact of the given severity.
  static BusinessImpact rejectionRisk(RejectionSeverity severity);
  /// A `suboptimal` impact on the given area.
  static BusinessImpact suboptimal(std::string area);
  /// An `opportunity` impact with the given benefit.
  static BusinessImpact opportunity(std::string benefit);

  /// Whether the case is `blocker`.
  bool isBlocker() const noexcept { return holds<Blocker>(); }
  /// Whether the case is `rejectionRisk`, of any severity.
  bool isRejectionRisk() const noexcept { return holds<RejectionRisk>(); }
  /// Whether the case is `rejectionRisk` with severity `high`.
  bool isHighRejectionRisk() const noexcept;
  /// Whether the case is `suboptimal`.
  bool isSuboptimal() const noexcept { return holds<Suboptimal>(); }
  /// Whether the case is `opportunity`.
  bool isOpportunity() const noexcept { return holds<Opportunity>(); }

  /// Same case and equal payload.
  friend bool operator==(const BusinessImpact&, const BusinessImpact&) = default;

 private:
  using TaggedVariant::TaggedVariant;
};

/// The severity's name: "high", "medium" or "low".
std::string describe(BusinessImpact::RejectionSeverity severity);

/// The case with its payload, e.g. `blocker(reason: "Required field")` or
/// `rejectionRisk(severity: high)`.
std::string describe(const BusinessImpact& impact);

}  // namespace corvane
