#include "corvane/completion/completion_status.hpp"

#include <fmt/format.h>

namespace corvane {

CompletionStatus CompletionStatus::inProgress(std::int64_t completed, std::int64_t total) {
  return CompletionStatus(InProgress{completed, total});
}
CompletionStatus CompletionStatus::hasBlockingIssues(std::int64_t count) {
  return CompletionStatus(HasBlockingIssues{count});
}
CompletionStatus CompletionStatus::hasOptionalItems(std::int64_t count) {
  return CompletionStatus(HasOptionalItems{count});
}
CompletionStatus CompletionStatus::notStarted() {
  return CompletionStatus(NotStarted{});
}
CompletionStatus CompletionStatus::readyForSubmission() {
  return CompletionStatus(ReadyForSubmission{});
}

bool CompletionStatus::canProceed() const noexcept {
  return isHasOptionalItems() || isReadyForSubmission();
}

namespace {

// Blocking and optional states both count as mostly done, whatever their counts.
constexpr double kMostlyDone = 0.8;

struct Percentage {
  double operator()(const CompletionStatus::InProgress& c) const noexcept {
    if (c.total < 1) return 0.0;
    return static_cast<double>(c.completed) / static_cast<double>(c.total);
  }
  double operator()(const CompletionStatus::HasBlockingIssues&) const noexcept { return kMostlyDone; }
  double operator()(const CompletionStatus::HasOptionalItems&) const noexcept { return kMostlyDone; }
  double operator()(const CompletionStatus::NotStarted&) const noexcept { return 0.0; }
  double operator()(const CompletionStatus::ReadyForSubmission&) const noexcept { return 1.0; }
};

struct Description {
  std::string operator()(const CompletionStatus::InProgress& c) const {
    return fmt::format("inProgress(completed: {}, total: {})", c.completed, c.total);
  }
  std::string operator()(const CompletionStatus::HasBlockingIssues& c) const {
    return fmt::format("hasBlockingIssues(count: {})", c.count);
  }
  std::string operator()(const CompletionStatus::HasOptionalItems& c) const {
    return fmt::format("hasOptionalItems(count: {})", c.count);
  }
  std::string operator()(const CompletionStatus::NotStarted&) const { return "notStarted"; }
  std::string operator()(const CompletionStatus::ReadyForSubmission&) const { return "readyForSubmission"; }
};

}  // namespace

double CompletionStatus::progressPercentage() const noexcept {
  return std::visit(Percentage{}, value());
}

std::string describe(const CompletionStatus& status) {
  return std::visit(Description{}, status.value());
}

}  // namespace corvane
