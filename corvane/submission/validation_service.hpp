#pragma once

namespace corvane {

/// A marker for validation services: no requirements and, for now, no implementers.
class ValidationService {
 public:
  virtual ~ValidationService() = default;

 protected:
  ValidationService() = default;
  ValidationService(const ValidationService&) = default;
  ValidationService& operator=(const ValidationService&) = default;
};

}  // namespace corvane
