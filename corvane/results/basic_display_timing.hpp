#pragma once

#include "corvane/support/describe.hpp"
#include "corvane/support/tagged_variant.hpp"

#include <string>
#include <variant>

namespace corvane {

namespace detail {
/// The cases of `BasicDisplayTiming<Tag>`, reached as `BasicDisplayTiming<Tag>::<Case>`;
/// one set per `Tag`, so that the two timings' cases are types of their own too.
template <class Tag>
struct BasicDisplayTimingCases {
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
};
}  // namespace detail

/// The moment at which a verdict appears. `Tag` only tells apart the timing of a display
/// behaviour from the timing of a business verdict: the two have the same cases but are
/// types of their own.
template <class Tag>
class BasicDisplayTiming : public TaggedVariant<detail::BasicDisplayTimingCases<Tag>> {
  using Base = TaggedVariant<detail::BasicDisplayTimingCases<Tag>>;

 public:
  using typename Base::Delayed;
  using typename Base::Immediate;
  using typename Base::OnBlur;
  using typename Base::OnFocus;
  using typename Base::OnInteraction;

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
  bool isDelayed() const noexcept { return this->template holds<Delayed>(); }
  /// Whether the case is `immediate`.
  bool isImmediate() const noexcept { return this->template holds<Immediate>(); }
  /// Whether the case is `onInteraction`.
  bool isOnInteraction() const noexcept { return this->template holds<OnInteraction>(); }
  /// Whether the case is `onBlur`.
  bool isOnBlur() const noexcept { return this->template holds<OnBlur>(); }
  /// Whether the case is `onFocus`.
  bool isOnFocus() const noexcept { return this->template holds<OnFocus>(); }

  /// Same case; `delayed` timings also compare their seconds.
  friend bool operator==(const BasicDisplayTiming&, const BasicDisplayTiming&) = default;

 private:
  using Base::Base;
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
