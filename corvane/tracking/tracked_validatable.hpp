#pragma once

#include "corvane/results/validation_result.hpp"
#include "corvane/tracking/change_detectable.hpp"

namespace corvane {

/// A change-detecting property that also carries a verdict on its value.
class TrackedValidatable : public ChangeDetectable {
 public:
  /// The verdict last computed and stored (not a fresh computation).
  virtual ValidationResult validationResult() const = 0;
};

}  // namespace corvane
