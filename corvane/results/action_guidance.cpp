#include "corvane/results/action_guidance.hpp"

#include "corvane/support/describe.hpp"

namespace corvane {

using ActionType = ActionGuidance::Action::ActionType;

void ActionType::AutoFix::operator()() const {
  if (handler && *handler) (*handler)();
}

ActionType ActionType::autoFix(std::function<void()> handler) {
  return ActionType(AutoFix{std::make_shared<const std::function<void()>>(std::move(handler))});
}

ActionType ActionType::quickFix(std::vector<std::string> options) {
  return ActionType(QuickFix{std::move(options)});
}

ActionType ActionType::manual(std::vector<std::string> steps) {
  return ActionType(Manual{std::move(steps)});
}

ActionType ActionType::external(Url url) {
  return ActionType(External{std::move(url)});
}

bool ActionType::runAutoFix() const {
  const auto* fix = getIf<AutoFix>();
  if (fix == nullptr || !fix->handler || !*fix->handler) return false;
  (*fix)();
  return true;
}

namespace {

struct TypeDescription {
  std::string operator()(const ActionType::AutoFix&) const { return "autoFix(handler: (function))"; }
  std::string operator()(const ActionType::QuickFix& c) const {
    return "quickFix(options: " + describe(c.options) + ")";
  }
  std::string operator()(const ActionType::Manual& c) const { return "manual(steps: " + describe(c.steps) + ")"; }
  std::string operator()(const ActionType::External& c) const { return "external(url: " + describe(c.url) + ")"; }
};

}  // namespace

std::string describe(const ActionType& type) {
  return std::visit(TypeDescription{}, type.value());
}

}  // namespace corvane
