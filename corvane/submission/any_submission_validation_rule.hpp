#pragma once

#include "corvane/submission/submission_entity.hpp"
#include "corvane/submission/submission_validation_result.hpp"
#include "corvane/submission/submission_validation_rule.hpp"
#include "corvane/support/precondition.hpp"

#include <boost/asio/awaitable.hpp>

#include <concepts>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace corvane {

/// A validation rule bound to one entity, with the entity type erased, so that rules over
/// different entity types can be kept in one list. It shares ownership of its entity, so
/// the entity lives at least as long as the rule and any validation it started.
class AnySubmissionValidationRule {
 public:
  /// Binds `rule` to `entity`. Neither `rule.validate` nor `entity` may be empty.
  template <std::derived_from<SubmissionEntity> E>
  AnySubmissionValidationRule(SubmissionValidationRule<E> rule, std::shared_ptr<E> entity) : id_(std::move(rule.id)) {
    CORVANE_PRECONDITION(rule.validate, "AnySubmissionValidationRule needs a rule with a check");
    CORVANE_PRECONDITION(entity, "AnySubmissionValidationRule needs an entity");
    validate_ = std::make_shared<const Check>(
        [validate = std::move(rule.validate), entity = std::move(entity)] { return validate(*entity); });
  }

  /// The bound rule's id.
  const std::string& id() const noexcept { return id_; }

  /// Runs the bound rule on the bound entity. The operation keeps the rule's state alive
  /// itself, so it may outlive this object.
  boost::asio::awaitable<SubmissionValidationResult> validate() const { return run(validate_); }

 private:
  using Check = std::function<boost::asio::awaitable<SubmissionValidationResult>()>;

  static boost::asio::awaitable<SubmissionValidationResult> run(std::shared_ptr<const Check> check) {
    co_return co_await (*check)();
  }

  std::string id_;
  std::shared_ptr<const Check> validate_;
};

}  // namespace corvane
