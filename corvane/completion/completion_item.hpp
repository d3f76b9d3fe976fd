#pragma once

#include "corvane/support/tagged_variant.hpp"

#include <array>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace corvane {

namespace detail {
/// The cases of `CompletionItem::CompletionStatus`, reached as `CompletionItem::CompletionStatus::<Case>`.
struct CompletionItemStatusCases {
  /// Cannot be done until something else is fixed; `reason` says what.
  struct Blocked {
    std::string reason;
    friend bool operator==(const Blocked&, const Blocked&) = default;
  };
  /// Done.
  struct Completed {
    friend bool operator==(const Completed&, const Completed&) = default;
  };
  /// Not yet provided.
  struct Missing {
    friend bool operator==(const Missing&, const Missing&) = default;
  };
  /// May be left undone.
  struct Optional {
    friend bool operator==(const Optional&, const Optional&) = default;
  };
  /// Started, not finished.
  struct InProgress {
    friend bool operator==(const InProgress&, const InProgress&) = default;
  };

  /// The cases, in their canonical order.
  using Value = std::variant<Blocked, Completed, Missing, Optional, InProgress>;
};
}  // namespace detail

/// One entry of the completion checklist: what still has to be done before submission,
/// how far it is and how much it matters. Items are values; `id` is their identity in lists.
struct CompletionItem {
  /// How far one item is. Only `completed` counts as done; every other case, `blocked`
  /// included, counts as not done.
  class CompletionStatus : public TaggedVariant<detail::CompletionItemStatusCases> {
   public:
    /// A `blocked` status with the given reason.
    static CompletionStatus blocked(std::string reason);
    /// The `completed` status.
    static CompletionStatus completed();
    /// The `missing` status.
    static CompletionStatus missing();
    /// The `optional` status.
    static CompletionStatus optional();
    /// The `inProgress` status.
    static CompletionStatus inProgress();

    /// Whether the case is `blocked`, whatever the reason.
    bool isBlocked() const noexcept { return holds<Blocked>(); }
    /// Whether the case is `completed`: the only status that counts as done.
    bool isCompleted() const noexcept { return holds<Completed>(); }
    /// Whether the case is `missing`.
    bool isMissing() const noexcept { return holds<Missing>(); }
    /// Whether the case is `optional`.
    bool isOptional() const noexcept { return holds<Optional>(); }
    /// Whether the case is `inProgress`.
    bool isInProgress() const noexcept { return holds<InProgress>(); }

    /// Same case and, for `blocked`, the same reason.
    friend bool operator==(const CompletionStatus&, const CompletionStatus&) = default;

   private:
    using TaggedVariant::TaggedVariant;
  };

  /// How much an item matters, ordered from least to most by declaration (`<` compares
  /// that order). The raw values are 1 to 4.
  enum class Priority : int { optional = 1, recommended = 2, required = 3, critical = 4 };

  /// The priority whose raw value is `rawValue`; nothing for values outside 1 to 4.
  static std::optional<Priority> priorityFromRawValue(int rawValue) noexcept;

  /// Every priority in declaration order: optional, recommended, required, critical.
  static constexpr std::array<Priority, 4> allPriorities() noexcept {
    return {Priority::optional, Priority::recommended, Priority::required, Priority::critical};
  }

  /// Builds an item from all six fields, in their order.
  CompletionItem(std::string id, std::string title, std::string description, CompletionStatus status, Priority priority,
                 std::optional<std::string> category);

  /// The item's stable identity.
  std::string id;
  /// The heading shown for the item.
  std::string title;
  /// The longer explanation.
  std::string description;
  /// How far the item is.
  CompletionStatus status;
  /// How much the item matters.
  Priority priority;
  /// The group the item is shown in; absent means the guide's default group.
  std::optional<std::string> category;

  /// All six fields equal.
  friend bool operator==(const CompletionItem&, const CompletionItem&) = default;
};

/// The priority's raw value: 1 (optional) to 4 (critical).
constexpr int rawValue(CompletionItem::Priority priority) noexcept {
  return static_cast<int>(priority);
}

/// Whether `priority` puts an item among the required ones (`required` or `critical`);
/// the others (`optional`, `recommended`) are the optional ones.
constexpr bool isRequired(CompletionItem::Priority priority) noexcept {
  return priority >= CompletionItem::Priority::required;
}

}  // namespace corvane
