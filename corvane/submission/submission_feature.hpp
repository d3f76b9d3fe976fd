#pragma once

#include "corvane/completion/completion_item.hpp"
#include "corvane/submission/submission_entity.hpp"

#include <string>
#include <vector>

namespace corvane {

/// A submission entity that a coordinator can register: it names its kind of feature and
/// supplies its checklist items, validation rules and change tracker.
///
/// Two requirements are typed over the implementing class itself: `createValidationRules()`
/// returns `std::vector<SubmissionValidationRule<Self>>` and `createChangeTracker()`
/// returns `SubmissionChangeTracker<Self>`. A virtual function cannot vary its return type
/// with the derived class, so these two are plain members of the concrete class, and the
/// concept `SubmissionFeatureType<F>` (submission_feature_type.hpp) checks that a class
/// has them.
class SubmissionFeature : public SubmissionEntity {
 public:
  /// The kind of feature; several entities may share one.
  virtual std::string featureId() const = 0;

  /// Whether the feature has changes to submit.
  virtual bool hasUpdates() const = 0;

  /// The feature's checklist items, built from its current values.
  virtual std::vector<CompletionItem> createCompletionItems() const = 0;

 protected:
  SubmissionFeature() = default;
};

}  // namespace corvane
