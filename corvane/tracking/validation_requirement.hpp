#pragma once

namespace corvane {

/// Whether a declared text field must be filled in. A `required` field that is blank fails;
/// an `optional` one may instead earn a gentle suggestion from its guidance.
enum class ValidationRequirement { required, optional };

}  // namespace corvane
