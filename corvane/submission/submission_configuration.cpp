#include "corvane/submission/submission_configuration.hpp"

namespace corvane {

using ValidationStrategy = SubmissionConfiguration::ValidationStrategy;

ValidationStrategy ValidationStrategy::debounced(std::int64_t milliseconds) {
  return ValidationStrategy(Debounced{milliseconds});
}
ValidationStrategy ValidationStrategy::immediate() {
  return ValidationStrategy(Immediate{});
}
ValidationStrategy ValidationStrategy::onDemand() {
  return ValidationStrategy(OnDemand{});
}
ValidationStrategy ValidationStrategy::batch() {
  return ValidationStrategy(Batch{});
}

SubmissionConfiguration::SubmissionConfiguration(bool enableChangeTracking_, bool enableValidation_,
                                                 bool enableCompletionGuide_, AutoSubmitStrategy autoSubmitStrategy_,
                                                 ValidationStrategy validationStrategy_,
                                                 std::int64_t maxConcurrentValidations_)
    : enableChangeTracking(enableChangeTracking_),
      enableValidation(enableValidation_),
      enableCompletionGuide(enableCompletionGuide_),
      autoSubmitStrategy(autoSubmitStrategy_),
      validationStrategy(std::move(validationStrategy_)),
      maxConcurrentValidations(maxConcurrentValidations_) {}

const SubmissionConfiguration& SubmissionConfiguration::default_() {
  static const SubmissionConfiguration shared(true, true, true, AutoSubmitStrategy::manual,
                                              ValidationStrategy::debounced(300), 3);
  return shared;
}

}  // namespace corvane
