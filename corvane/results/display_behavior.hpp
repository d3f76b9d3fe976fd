#pragma once

#include "corvane/results/basic_display_timing.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace corvane {

namespace detail {
struct BehaviorTimingTag;
}

/// When and how urgently an interface should show a verdict.
struct DisplayBehavior {
  /// The moment at which a verdict appears.
  using DisplayTiming = BasicDisplayTiming<detail::BehaviorTimingTag>;

  /// The visual weight of a verdict.
  enum class DisplayStyle { critical, error, warning, suggestion, info };

  /// When the verdict appears.
  DisplayTiming timing;
  /// How urgent the verdict is; larger wins.
  std::int64_t priority;
  /// The visual weight, when the verdict asks for one.
  std::optional<DisplayStyle> style;

  /// Timing, priority and style compared.
  friend bool operator==(const DisplayBehavior&, const DisplayBehavior&) = default;
};

/// The style's name, e.g. "suggestion".
std::string describe(DisplayBehavior::DisplayStyle style);

}  // namespace corvane
