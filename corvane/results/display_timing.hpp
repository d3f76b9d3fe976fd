#pragma once

#include "corvane/results/basic_display_timing.hpp"

namespace corvane {

namespace detail {
struct BusinessTimingTag;
}

/// The moment at which a business verdict appears, used by `BusinessValidationResult`. It
/// has the same cases as `DisplayBehavior::DisplayTiming` but is a type of its own.
using DisplayTiming = BasicDisplayTiming<detail::BusinessTimingTag>;

}  // namespace corvane
