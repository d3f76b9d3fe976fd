#include "corvane/results/stored_verdict.hpp"

namespace corvane {

void StoredVerdict::set(ValidationResult verdict) {
  if (verdict == ValidationResult::valid()) {
    verdict_.reset();
  } else if (verdict_) {
    *verdict_ = std::move(verdict);
  } else {
    verdict_ = std::make_unique<ValidationResult>(std::move(verdict));
  }
}

}  // namespace corvane
