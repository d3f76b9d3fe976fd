#pragma once

#include "corvane/results/validation_result.hpp"

#include <memory>

namespace corvane {

/// A verdict kept in the space of one pointer, for objects that hold one verdict each and
/// live by the thousand. `ValidationResult::valid()`, the verdict most values get, takes no
/// memory of its own; any other verdict lives in one heap block, which the next such verdict
/// reuses. Not synchronised, like the object that holds it.
class StoredVerdict {
 public:
  /// Holds `ValidationResult::valid()`.
  StoredVerdict() noexcept = default;

  /// The stored verdict, valid until the next `set`.
  const ValidationResult& get() const noexcept { return verdict_ ? *verdict_ : ValidationResult::valid(); }

  /// Replaces the stored verdict.
  void set(ValidationResult verdict);

 private:
  std::unique_ptr<ValidationResult> verdict_;  // null for valid()
};

}  // namespace corvane
