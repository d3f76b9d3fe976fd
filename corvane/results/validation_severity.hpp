#pragma once

#include <string>

namespace corvane {

/// How serious a verdict is, from least to most. Independent of whether the value passes:
/// a valid result may still warn, an invalid one may only inform.
enum class ValidationSeverity { none, info, warning, error, critical };

/// The severity's name: "none", "info", "warning", "error" or "critical".
std::string describe(ValidationSeverity severity);

}  // namespace corvane
