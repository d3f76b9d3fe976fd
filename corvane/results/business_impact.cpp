#include "corvane/results/business_impact.hpp"

#include "corvane/support/describe.hpp"
#include "corvane/support/precondition.hpp"

namespace corvane {

BusinessImpact BusinessImpact::blocker(std::string reason) {
  return BusinessImpact(Blocker{std::move(reason)});
}

BusinessImpact BusinessImpact::rejectionRisk(RejectionSeverity severity) {
  return BusinessImpact(RejectionRisk{severity});
}

BusinessImpact BusinessImpact::suboptimal(std::string area) {
  return BusinessImpact(Suboptimal{std::move(area)});
}

BusinessImpact BusinessImpact::opportunity(std::string benefit) {
  return BusinessImpact(Opportunity{std::move(benefit)});
}

bool BusinessImpact::isHighRejectionRisk() const noexcept {
  const auto* risk = getIf<RejectionRisk>();
  return risk != nullptr && risk->severity == RejectionSeverity::high;
}

std::string describe(BusinessImpact::RejectionSeverity severity) {
  switch (severity) {
    case BusinessImpact::RejectionSeverity::high:
      return "high";
    case BusinessImpact::RejectionSeverity::medium:
      return "medium";
    case BusinessImpact::RejectionSeverity::low:
      return "low";
  }
  detail::preconditionFailure("not a BusinessImpact::RejectionSeverity");
}

namespace {

struct ImpactDescription {
  std::string operator()(const BusinessImpact::Blocker& c) const { return "blocker(reason: " + quoted(c.reason) + ")"; }
  std::string operator()(const BusinessImpact::RejectionRisk& c) const {
    return "rejectionRisk(severity: " + describe(c.severity) + ")";
  }
  std::string operator()(const BusinessImpact::Suboptimal& c) const {
    return "suboptimal(area: " + quoted(c.area) + ")";
  }
  std::string operator()(const BusinessImpact::Opportunity& c) const {
    return "opportunity(benefit: " + quoted(c.benefit) + ")";
  }
};

}  // namespace

std::string describe(const BusinessImpact& impact) {
  return std::visit(ImpactDescription{}, impact.value());
}

}  // namespace corvane
