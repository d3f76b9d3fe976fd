#pragma once

#include "corvane/results/validation_result.hpp"

#include <string_view>

namespace corvane {

/// The custom check of the support URL preset, on the untrimmed value: a non-empty value that
/// starts with neither "https://" nor "http://" warns "Support URL should start with
/// https://" (a suboptimal "URL format"); anything else, the empty value included, is
/// `ValidationResult::valid()`. Plain http passes although the message asks for https.
ValidationResult supportURLCheck(std::string_view url);

}  // namespace corvane
