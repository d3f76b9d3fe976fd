#pragma once

#include "corvane/support/describe.hpp"

#include <string>
#include <variant>

namespace corvane {

/// The moment at which a verdict appears. `Tag` only tells apart the timing of a display
/// behaviour from the timing of a business verdict: the two have the same cases but are
/// types of their own.
template <class Tag>
class BasicDisplayTiming {
 public:
  /// After `seconds` have passed.
  struct Delayed {
    double seconds;
    friend bool operator==(const Delayed&, const Delayed&) = default;
  };
  /// As soon as the verdict exists.
  struct Immediate {
    friend bool operator==(const Immediate&, const Immediate&) = default;
  };
  /// When the user interacts with the field.
  struct OnInteraction {
    friend bool operator==(const OnInteraction&, const OnInteraction&) = default;
  };
  /// When the field loses focus.
  struct OnBlur {
    friend bool operator==(const OnBlur&, const OnBlur&) = default;
  };
  /// When the field gains focus.
  struct OnFocus {
    friend bool operator==(const OnFocus&, const OnFocus&) = default;
  };

  /// The cases, in their canonical order.
  using Value = std::variant<Delayed, Immediate, OnInteraction, OnBlur, OnFocus>;

  /// Shown after `seconds`.
  static BasicDisplayTiming delayed(double seconds) { return BasicDisplayTiming(Delayed{seconds}); }
  /// Shown at once.
  static BasicDisplayTiming immediate() { return BasicDisplayTiming(Immediate{}); }
  /// Shown on interaction.
  static BasicDisplayTiming onInteraction() { return BasicDisplayTiming(OnInteraction{}); }
  /// Shown when the field loses focus.
  static BasicDisplayTiming onBlur() { return BasicDisplayTiming(OnBlur{}); }
  /// Shown when the field gains focus.
  static BasicDisplayTiming onFocus() { return BasicDisplayTiming(OnFocus{}); }

  /// Whether the case is `delayed`.
  bool isDelayed() const noexcept { return std::holds_alternative<Delayed>(value_); }
  /// Whether the case is `immediate`.
  bool isImmediate() const noexcept { return std::holds_alternative<Immediate>(value_); }
  /// Whether the case is `onInteraction`.
  bool isOnInteraction() const noexcept { return std::holds_alternative<OnInteraction>(value_); }
  /// Whether the case is `onBlur`.
  bool isOnBlur() const noexcept { return std::holds_alternative<OnBlur>(value_); }
  /// Whether the case is `onFocus`.
  bool isOnFocus() const noexcept { return std::holds_alternative<OnFocus>(value_); }

  /// The payload of case `Case`, or null when the timing is another case.
  template <class Case>
  const Case* getIf() const noexcept {
    return std::get_if<Case>(&value_);
  }

  /// The underlying variant, for exhaustive visiting.
  const Value& value() const noexcept { return value_; }

  /// Same case; `delayed` timings also compare their seconds.
  friend bool operator==(const BasicDisplayTiming&, const BasicDisplayTiming&) = default;

 private:
  explicit BasicDisplayTiming(Value value) : value_(value) {}
  Value value_;
};

/// The case, with the delay for `delayed`: `delayed(seconds: 3.0)`, `immediate`,
/// `onInteraction`, `onBlur` or `onFocus`.
template <class Tag>
std::string describe(const BasicDisplayTiming<Tag>& timing) {
  using Timing = BasicDisplayTiming<Tag>;
  if (auto delayed = timing.template getIf<typename Timing::Delayed>()) {
    return "delayed(seconds: " + describe(delayed->seconds) + ")";
  }
  if (timing.isImmediate()) return "immediate";
  if (timing.isOnInteraction()) return "onInteraction";
  if (timing.isOnBlur()) return "onBlur";
  return "onFocus";
}

}  // namespace corvane
