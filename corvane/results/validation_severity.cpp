#include "corvane/results/validation_severity.hpp"

#include "corvane/support/precondition.hpp"

namespace corvane {

std::string describe(ValidationSeverity severity) {
  switch (severity) {
    case ValidationSeverity::none:
      return "none";
    case ValidationSeverity::info:
      return "info";
    case ValidationSeverity::warning:
      return "warning";
    case ValidationSeverity::error:
      return "error";
    case ValidationSeverity::critical:
      return "critical";
  }
  detail::preconditionFailure("not a ValidationSeverity");
}

}  // namespace corvane
