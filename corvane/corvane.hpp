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
#include "corvane/support/url.hpp"

#include "corvane/observation/observation_registrar.hpp"
#include "corvane/observation/observation_tracking.hpp"
