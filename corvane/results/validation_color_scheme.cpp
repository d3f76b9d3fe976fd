#include "corvane/results/validation_color_scheme.hpp"

#include "corvane/support/precondition.hpp"

namespace corvane {

std::string describe(ValidationColorScheme scheme) {
  switch (scheme) {
    case ValidationColorScheme::critical:
      return "critical";
    case ValidationColorScheme::error:
      return "error";
    case ValidationColorScheme::warning:
      return "warning";
    case ValidationColorScheme::suggestion:
      return "suggestion";
    case ValidationColorScheme::opportunity:
      return "opportunity";
  }
  detail::preconditionFailure("not a ValidationColorScheme");
}

}  // namespace corvane
