#include "corvane/results/display_timing.hpp"

#include "corvane/support/describe.hpp"

namespace corvane {
namespace {

struct TimingDescription {
  std::string operator()(const DisplayTiming::Delayed& c) const {
    return "delayed(seconds: " + describe(c.seconds) + ")";
  }
  std::string operator()(const DisplayTiming::Immediate&) const { return "immediate"; }
  std::string operator()(const DisplayTiming::OnInteraction&) const { return "onInteraction"; }
  std::string operator()(const DisplayTiming::OnBlur&) const { return "onBlur"; }
  std::string operator()(const DisplayTiming::OnFocus&) const { return "onFocus"; }
};

}  // namespace

std::string describe(const DisplayTiming& timing) {
  return std::visit(TimingDescription{}, timing.value());
}

}  // namespace corvane
