#pragma once

#include "corvane/submission/default_change_tracker.hpp"

#include <memory>
#include <utility>
#include <vector>

namespace corvane::testing {

/// Lets tests create a `DefaultChangeTracker`, which otherwise only the coordinator does.
struct DefaultChangeTrackerAccess {
  /// A tracker over `entities` (none of them null).
  static std::shared_ptr<DefaultChangeTracker> make(std::vector<std::shared_ptr<SubmissionFeature>> entities) {
    return std::shared_ptr<DefaultChangeTracker>(new DefaultChangeTracker(std::move(entities)));
  }
};

}  // namespace corvane::testing
