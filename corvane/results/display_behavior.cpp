#include "corvane/results/display_behavior.hpp"

#include "corvane/support/describe.hpp"
#include "corvane/support/precondition.hpp"

namespace corvane {

std::string describe(DisplayBehavior::DisplayStyle style) {
  switch (style) {
    case DisplayBehavior::DisplayStyle::critical:
      return "critical";
    case DisplayBehavior::DisplayStyle::error:
      return "error";
    case DisplayBehavior::DisplayStyle::warning:
      return "warning";
    case DisplayBehavior::DisplayStyle::suggestion:
      return "suggestion";
    case DisplayBehavior::DisplayStyle::info:
      return "info";
  }
  detail::preconditionFailure("not a DisplayBehavior::DisplayStyle");
}

}  // namespace corvane
