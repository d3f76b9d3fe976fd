// Corvane: editing, validating and tracking app store metadata before submission.
// Including this header brings in the whole public interface.
#pragma once

#include "corvane/version.hpp"

#include "corvane/support/describe.hpp"
#include "corvane/support/logging.hpp"
#include "corvane/support/main_executor.hpp"
#include "corvane/support/main_queue.hpp"
#include "corvane/support/precondition.hpp"
#include "corvane/support/print_line.hpp"
#include "corvane/support/sleep.hpp"
#include "corvane/support/url.hpp"

#include "corvane/observation/observation_registrar.hpp"
#include "corvane/observation/observation_tracking.hpp"

#include "corvane/text/characters.hpp"

#include "corvane/results/action_guidance.hpp"
#include "corvane/results/business_impact.hpp"
#include "corvane/results/business_validation_result.hpp"
#include "corvane/results/display_behavior.hpp"
#include "corvane/results/display_timing.hpp"
#include "corvane/results/validation_color_scheme.hpp"
#include "corvane/results/validation_result.hpp"
#include "corvane/results/validation_severity.hpp"

