#pragma once

#include <stdexcept>
#include <string>

namespace corvane::cli {

/// Input the checker refuses (a missing folder, a file that is not UTF-8, ...). The message
/// is one line that names the file; the program prints it and exits with status 2.
class InputError final : public std::runtime_error {
 public:
  /// An error whose whole message is `message`.
  explicit InputError(const std::string& message) : std::runtime_error(message) {}
};

}  // namespace corvane::cli
