#pragma once

#include "corvane/submission/submission_validation_result.hpp"

#include <boost/asio/awaitable.hpp>

#include <functional>
#include <string>

namespace corvane {

/// A validation rule over one entity type, as a feature creates it. The rule holds no
/// state: `validate` judges the entity it is handed, not the one that made the rule.
///
/// `validate` takes the entity by reference, which keeps rules plain to write; the caller
/// must keep the entity alive until the returned operation completes (awaiting it in the
/// same expression does). `AnySubmissionValidationRule` does so by owning a shared
/// reference to its entity.
template <class Entity>
struct SubmissionValidationRule {
  /// The rule's identity.
  std::string id;
  /// The check: an asynchronous verdict on the given entity.
  std::function<boost::asio::awaitable<SubmissionValidationResult>(const Entity&)> validate;
};

}  // namespace corvane
