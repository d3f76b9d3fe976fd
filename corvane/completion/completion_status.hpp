#pragma once

#include "corvane/support/tagged_variant.hpp"

#include <cstdint>
#include <string>
#include <utility>
#include <variant>

namespace corvane {

namespace detail {
/// The cases of `CompletionStatus`, reached as `CompletionStatus::InProgress` and so on.
struct CompletionStatusCases {
  /// Work remains: `completed` of `total` items are done.
  struct InProgress {
    std::int64_t completed;
    std::int64_t total;
    friend bool operator==(const InProgress&, const InProgress&) = default;
  };
  /// `count` items are blocked.
  struct HasBlockingIssues {
    std::int64_t count;
    friend bool operator==(const HasBlockingIssues&, const HasBlockingIssues&) = default;
  };
  /// Every required item is done; `count` optional items are not.
  struct HasOptionalItems {
    std::int64_t count;
    friend bool operator==(const HasOptionalItems&, const HasOptionalItems&) = default;
  };
  /// Nothing has been registered yet.
  struct NotStarted {
    friend bool operator==(const NotStarted&, const NotStarted&) = default;
  };
  /// Everything is done.
  struct ReadyForSubmission {
    friend bool operator==(const ReadyForSubmission&, const ReadyForSubmission&) = default;
  };

  /// The cases, in their canonical order.
  using Value = std::variant<InProgress, HasBlockingIssues, HasOptionalItems, NotStarted, ReadyForSubmission>;
};
}  // namespace detail

/// The verdict of a completion guide on the whole submission: one of the cases of
/// `detail::CompletionStatusCases`, read with `getIf`, `value()` and the `is...` queries.
class CompletionStatus : public TaggedVariant<detail::CompletionStatusCases> {
 public:
  /// An `inProgress` status with the given counts.
  static CompletionStatus inProgress(std::int64_t completed, std::int64_t total);
  /// A `hasBlockingIssues` status for `count` blocked items.
  static CompletionStatus hasBlockingIssues(std::int64_t count);
  /// A `hasOptionalItems` status for `count` optional items left undone.
  static CompletionStatus hasOptionalItems(std::int64_t count);
  /// The `notStarted` status.
  static CompletionStatus notStarted();
  /// The `readyForSubmission` status.
  static CompletionStatus readyForSubmission();

  /// Whether the case is `inProgress`.
  bool isInProgress() const noexcept { return holds<InProgress>(); }
  /// Whether the case is `hasBlockingIssues`.
  bool isHasBlockingIssues() const noexcept { return holds<HasBlockingIssues>(); }
  /// Whether the case is `hasOptionalItems`.
  bool isHasOptionalItems() const noexcept { return holds<HasOptionalItems>(); }
  /// Whether the case is `notStarted`.
  bool isNotStarted() const noexcept { return holds<NotStarted>(); }
  /// Whether the case is `readyForSubmission`.
  bool isReadyForSubmission() const noexcept { return holds<ReadyForSubmission>(); }

  /// Whether submission may go ahead: true for `hasOptionalItems` and `readyForSubmission`.
  bool canProceed() const noexcept;

  /// How far the submission is, as a fraction (not multiplied by 100): completed / total for
  /// `inProgress` (0.0 when total is below 1, unclamped above 1), a fixed 0.8 for the
  /// blocking and optional states (both count as mostly done), 0.0 when not started and
  /// 1.0 when ready.
  double progressPercentage() const noexcept;

  /// Same case and equal payload.
  friend bool operator==(const CompletionStatus&, const CompletionStatus&) = default;

 private:
  using TaggedVariant::TaggedVariant;
};

/// The case name with its payload: "inProgress(completed: 2, total: 5)",
/// "hasBlockingIssues(count: 1)", "hasOptionalItems(count: 3)", "notStarted",
/// "readyForSubmission".
std::string describe(const CompletionStatus& status);

}  // namespace corvane
