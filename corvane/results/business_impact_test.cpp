#include "corvane/results/business_impact.hpp"

#include <gtest/gtest.h>

namespace corvane {
namespace {

using Severity = BusinessImpact::RejectionSeverity;

TEST(BusinessImpact, QueriesMatchExactlyOneCase) {
  const auto blocker = BusinessImpact::blocker("Required field");
  EXPECT_TRUE(blocker.isBlocker());
  EXPECT_FALSE(blocker.isRejectionRisk() || blocker.isHighRejectionRisk() || blocker.isSuboptimal() ||
               blocker.isOpportunity());
  ASSERT_NE(blocker.getIf<BusinessImpact::Blocker>(), nullptr);
  EXPECT_EQ(blocker.getIf<BusinessImpact::Blocker>()->reason, "Required field");
  EXPECT_EQ(blocker.getIf<BusinessImpact::Opportunity>(), nullptr);

  const auto suboptimal = BusinessImpact::suboptimal("discoverability");
  EXPECT_TRUE(suboptimal.isSuboptimal());
  EXPECT_FALSE(suboptimal.isBlocker() || suboptimal.isRejectionRisk() || suboptimal.isOpportunity());

  const auto opportunity = BusinessImpact::opportunity("More downloads");
  EXPECT_TRUE(opportunity.isOpportunity());
  EXPECT_FALSE(opportunity.isBlocker() || opportunity.isRejectionRisk() || opportunity.isSuboptimal());
  ASSERT_NE(opportunity.getIf<BusinessImpact::Opportunity>(), nullptr);
  EXPECT_EQ(opportunity.getIf<BusinessImpact::Opportunity>()->benefit, "More downloads");
}

TEST(BusinessImpact, OnlyHighRejectionRiskIsHigh) {
  for (Severity severity : {Severity::high, Severity::medium, Severity::low}) {
    const auto risk = BusinessImpact::rejectionRisk(severity);
    EXPECT_TRUE(risk.isRejectionRisk()) << describe(severity);
    EXPECT_EQ(risk.isHighRejectionRisk(), severity == Severity::high) << describe(severity);
    EXPECT_FALSE(risk.isBlocker() || risk.isSuboptimal() || risk.isOpportunity()) << describe(severity);
  }
}

TEST(BusinessImpact, EqualityNeedsSameCaseAndPayload) {
  EXPECT_EQ(BusinessImpact::blocker("a"), BusinessImpact::blocker("a"));
  EXPECT_NE(BusinessImpact::blocker("a"), BusinessImpact::blocker("b"));
  EXPECT_NE(BusinessImpact::rejectionRisk(Severity::high), BusinessImpact::rejectionRisk(Severity::low));
  EXPECT_EQ(BusinessImpact::rejectionRisk(Severity::medium), BusinessImpact::rejectionRisk(Severity::medium));
  // Same payload text under different cases is still a different impact.
  EXPECT_NE(BusinessImpact::suboptimal("x"), BusinessImpact::opportunity("x"));
  EXPECT_NE(BusinessImpact::blocker("x"), BusinessImpact::suboptimal("x"));
}

TEST(BusinessImpact, DescribesCaseAndPayload) {
  EXPECT_EQ(describe(BusinessImpact::blocker("Required field")), "blocker(reason: \"Required field\")");
  EXPECT_EQ(describe(BusinessImpact::rejectionRisk(Severity::high)), "rejectionRisk(severity: high)");
  EXPECT_EQ(describe(BusinessImpact::rejectionRisk(Severity::medium)), "rejectionRisk(severity: medium)");
  EXPECT_EQ(describe(BusinessImpact::rejectionRisk(Severity::low)), "rejectionRisk(severity: low)");
  EXPECT_EQ(describe(BusinessImpact::suboptimal("x")), "suboptimal(area: \"x\")");
  EXPECT_EQ(describe(BusinessImpact::opportunity("say \"hi\"")), "opportunity(benefit: \"say \\\"hi\\\"\")");
}

}  // namespace
}  // namespace corvane
