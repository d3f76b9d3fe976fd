#pragma once

#include <string>

namespace corvane {

/// The colour family a screen uses for a business verdict, from most to least alarming.
enum class ValidationColorScheme { critical, error, warning, suggestion, opportunity };

/// The scheme's name, e.g. "suggestion".
std::string describe(ValidationColorScheme scheme);

}  // namespace corvane
