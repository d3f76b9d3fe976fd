#include "corvane/results/display_behavior.hpp"

#include "corvane/support/describe.hpp"
#include "corvane/support/precondition.hpp"

namespace corvane {
namespace {

using Timing = DisplayBehavior::DisplayTiming;

struct TimingDescription {
  std::string operator()(const Timing::Delayed& c) const { return "delayed(seconds: " + describe(c.seconds) + ")"; }
  std::string operator()(const Timing::Immediate&) const { return "immediate"; }
  std::string operator()(const Timing::OnInteraction&) const { return "onInteraction"; }
  std::string operator()(const Timing::OnBlur&) const { return "onBlur"; }
  std::string operator()(const Timing::OnFocus&) const { return "onFocus"; }
};

}  // namespace

std::string describe(const DisplayBehavior::DisplayTiming& timing) {
  return std::visit(TimingDescription{}, timing.value());
}

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
