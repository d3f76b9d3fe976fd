#pragma once

#include "corvane/support/tagged_variant.hpp"
#include "corvane/support/url.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace corvane {

namespace detail {
/// The cases of `ActionGuidance::Action::ActionType`, reached as `ActionGuidance::Action::ActionType::<Case>`.
struct ActionTypeCases {
  /// The library fixes the value itself by calling `handler`. Copies share the
  /// callable, and two auto-fixes always compare equal: callables are never compared.
  struct AutoFix {
    std::shared_ptr<const std::function<void()>> handler;
    /// Calls the handler, if there is one.
    void operator()() const;
    friend bool operator==(const AutoFix&, const AutoFix&) noexcept { return true; }
  };
  /// The user picks one of `options`.
  struct QuickFix {
    std::vector<std::string> options;
    friend bool operator==(const QuickFix&, const QuickFix&) = default;
  };
  /// The user follows `steps` by hand.
  struct Manual {
    std::vector<std::string> steps;
    friend bool operator==(const Manual&, const Manual&) = default;
  };
  /// The user continues at `url`.
  struct External {
    Url url;
    friend bool operator==(const External&, const External&) = default;
  };

  /// The cases, in their canonical order.
  using Value = std::variant<AutoFix, QuickFix, Manual, External>;
};
}  // namespace detail

/// What the user can do about a verdict: the action offered first, further actions, a
/// link to the store's guidance and an estimate of the effort.
struct ActionGuidance {
  /// One thing the user can do, shown as a titled button or list entry.
  struct Action {
    /// How an action is carried out.
    class ActionType : public TaggedVariant<detail::ActionTypeCases> {
     public:
      /// An `autoFix` action that runs `handler`.
      static ActionType autoFix(std::function<void()> handler);
      /// A `quickFix` action offering `options`.
      static ActionType quickFix(std::vector<std::string> options);
      /// A `manual` action made of `steps`.
      static ActionType manual(std::vector<std::string> steps);
      /// An `external` action leading to `url`.
      static ActionType external(Url url);

      /// Whether the case is `autoFix`.
      bool isAutoFix() const noexcept { return holds<AutoFix>(); }
      /// Whether the case is `quickFix`.
      bool isQuickFix() const noexcept { return holds<QuickFix>(); }
      /// Whether the case is `manual`.
      bool isManual() const noexcept { return holds<Manual>(); }
      /// Whether the case is `external`.
      bool isExternal() const noexcept { return holds<External>(); }

      /// Runs the handler when this is an `autoFix` that has one, and says whether it ran.
      bool runAutoFix() const;

      /// Same case and equal payload; auto-fix handlers are not compared.
      friend bool operator==(const ActionType&, const ActionType&) = default;

     private:
      using TaggedVariant::TaggedVariant;
    };

    /// The action's short label.
    std::string title;
    /// One sentence on what the action does.
    std::string description;
    /// How the action is carried out.
    ActionType type;

    friend bool operator==(const Action&, const Action&) = default;
  };

  /// The action offered first.
  Action primaryAction;
  /// Further actions, in display order.
  std::vector<Action> alternativeActions;
  /// Link to the store's guidance page; absent when there is none or it did not parse.
  std::optional<Url> helpURL;
  /// Human estimate of the effort, such as "1-2 minutes".
  std::optional<std::string> estimatedTime;

  /// Primary action, alternatives in order, help link and estimated time compared.
  friend bool operator==(const ActionGuidance&, const ActionGuidance&) = default;
};

/// The case with its payload: `autoFix(handler: (function))`, `quickFix(options: ["a"])`,
/// `manual(steps: ["a", "b"])` or `external(url: https://...)`.
std::string describe(const ActionGuidance::Action::ActionType& type);

}  // namespace corvane
