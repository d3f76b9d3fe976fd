#pragma once

#include "corvane/submission/submission_change_tracker.hpp"
#include "corvane/submission/submission_feature.hpp"
#include "corvane/submission/submission_validation_rule.hpp"

#include <concepts>
#include <vector>

namespace corvane {

/// A complete submission feature: a `SubmissionFeature` whose class also offers the two
/// requirements typed over itself, `createValidationRules()` returning rules over `F` and
/// `createChangeTracker()` returning a tracker over `F` (see `SubmissionFeature` for why
/// they cannot be virtual).
template <class F>
concept SubmissionFeatureType = std::derived_from<F, SubmissionFeature> && requires(F& feature) {
  { feature.createValidationRules() } -> std::same_as<std::vector<SubmissionValidationRule<F>>>;
  { feature.createChangeTracker() } -> std::same_as<SubmissionChangeTracker<F>>;
};

}  // namespace corvane
