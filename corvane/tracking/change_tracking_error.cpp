#include "corvane/tracking/change_tracking_error.hpp"

#include "corvane/support/describe.hpp"

#include <fmt/format.h>

namespace corvane {
namespace {

template <class... Handlers>
struct Overloaded : Handlers... {
  using Handlers::operator()...;
};
// Spelled out for clang 14, which does not deduce aggregate template arguments by itself.
template <class... Handlers>
Overloaded(Handlers...) -> Overloaded<Handlers...>;

std::string descriptionOf(const ChangeTrackingError::Case& value) {
  return std::visit(
      Overloaded{
          [](const ChangeTrackingError::SubmissionBlocked& blocked) {
            if (blocked.details.size() == 1) return "Cannot submit: " + blocked.details.front();
            return fmt::format("Cannot submit: {} ({} issues)", blocked.reason, blocked.details.size());
          },
          [](const ChangeTrackingError::EntityNotFound& missing) {
            return "Could not find entity '" + missing.entityId + "'";
          },
          [](const ChangeTrackingError::SubmissionFailed& failed) {
            return "Submission failed: " + errorDescription(failed.error);
          },
          [](const ChangeTrackingError::NothingToSubmit&) { return std::string("No changes to submit to App Store"); },
      },
      value);
}

}  // namespace

ChangeTrackingError::ChangeTrackingError(Case value)
    : TaggedVariant(std::move(value)), description_(descriptionOf(this->value())) {}

ChangeTrackingError ChangeTrackingError::submissionBlocked(std::string reason, std::vector<std::string> details) {
  return ChangeTrackingError(SubmissionBlocked{std::move(reason), std::move(details)});
}

ChangeTrackingError ChangeTrackingError::entityNotFound(std::string entityId) {
  return ChangeTrackingError(EntityNotFound{std::move(entityId)});
}

ChangeTrackingError ChangeTrackingError::submissionFailed(std::exception_ptr error) {
  return ChangeTrackingError(SubmissionFailed{std::move(error)});
}

ChangeTrackingError ChangeTrackingError::nothingToSubmit() { return ChangeTrackingError(NothingToSubmit{}); }

std::string describe(const ChangeTrackingError& error) {
  return std::visit(
      Overloaded{
          [](const ChangeTrackingError::SubmissionBlocked& blocked) {
            return "submissionBlocked(reason: " + quoted(blocked.reason) + ", details: " + describe(blocked.details) +
                   ")";
          },
          [](const ChangeTrackingError::EntityNotFound& missing) {
            return "entityNotFound(" + quoted(missing.entityId) + ")";
          },
          [](const ChangeTrackingError::SubmissionFailed& failed) {
            return "submissionFailed(" + errorDescription(failed.error) + ")";
          },
          [](const ChangeTrackingError::NothingToSubmit&) { return std::string("nothingToSubmit"); },
      },
      error.value());
}

}  // namespace corvane
