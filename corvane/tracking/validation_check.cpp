#include "corvane/tracking/validation_check.hpp"

namespace corvane {

ValidationCheck ValidationCheck::tooLong(std::int64_t limit) {
  return ValidationCheck(TooLong{limit});
}

ValidationCheck ValidationCheck::tooShort(std::int64_t minimum) {
  return ValidationCheck(TooShort{minimum});
}

ValidationCheck ValidationCheck::custom(std::function<ValidationResult(const std::string&)> check) {
  return ValidationCheck(Custom{std::move(check)});
}

ValidationCheck ValidationCheck::empty() {
  return ValidationCheck(Empty{});
}

}  // namespace corvane
