#pragma once

#include "corvane/support/tagged_variant.hpp"

#include <cstdint>
#include <utility>
#include <variant>

namespace corvane {

namespace detail {
/// The cases of `SubmissionConfiguration::ValidationStrategy`, reached as
/// `SubmissionConfiguration::ValidationStrategy::<Case>`.
struct ValidationStrategyCases {
  /// After edits have paused for `milliseconds`.
  struct Debounced {
    std::int64_t milliseconds;
  };
  /// On every edit.
  struct Immediate {};
  /// Only when asked.
  struct OnDemand {};
  /// In batches.
  struct Batch {};

  /// The cases, in their canonical order.
  using Value = std::variant<Debounced, Immediate, OnDemand, Batch>;
};
}  // namespace detail

/// The settings of a submission coordinator. The strategies and the concurrency bound are
/// carried as settings only: nothing in the library acts on them yet.
struct SubmissionConfiguration {
  /// When changes would be submitted without the user asking.
  enum class AutoSubmitStrategy { manual, automatic, onValidationSuccess, onCompletion };

  /// When validation would run.
  class ValidationStrategy : public TaggedVariant<detail::ValidationStrategyCases> {
   public:
    /// A `debounced` strategy waiting `milliseconds`.
    static ValidationStrategy debounced(std::int64_t milliseconds);
    /// The `immediate` strategy.
    static ValidationStrategy immediate();
    /// The `onDemand` strategy.
    static ValidationStrategy onDemand();
    /// The `batch` strategy.
    static ValidationStrategy batch();

    /// Whether the case is `debounced`, whatever the delay.
    bool isDebounced() const noexcept { return holds<Debounced>(); }
    /// Whether the case is `immediate`.
    bool isImmediate() const noexcept { return holds<Immediate>(); }
    /// Whether the case is `onDemand`.
    bool isOnDemand() const noexcept { return holds<OnDemand>(); }
    /// Whether the case is `batch`.
    bool isBatch() const noexcept { return holds<Batch>(); }

   private:
    using TaggedVariant::TaggedVariant;
  };

  /// The shared default: everything enabled, manual submission, validation debounced by
  /// 300 milliseconds, at most 3 concurrent validations.
  static const SubmissionConfiguration& default_();

  /// Builds a configuration from all six settings, in their order.
  SubmissionConfiguration(bool enableChangeTracking, bool enableValidation, bool enableCompletionGuide,
                          AutoSubmitStrategy autoSubmitStrategy, ValidationStrategy validationStrategy,
                          std::int64_t maxConcurrentValidations);

  /// Whether the coordinator tracks changes.
  bool enableChangeTracking;
  /// Whether the coordinator validates.
  bool enableValidation;
  /// Whether the coordinator offers a completion guide.
  bool enableCompletionGuide;
  /// When changes would be submitted automatically.
  AutoSubmitStrategy autoSubmitStrategy;
  /// When validation would run.
  ValidationStrategy validationStrategy;
  /// How many validations would run at once at most.
  std::int64_t maxConcurrentValidations;
};

}  // namespace corvane
