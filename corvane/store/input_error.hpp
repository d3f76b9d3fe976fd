#pragma once

#include <stdexcept>
#include <string>

namespace corvane::store {

/// Input that cannot be read or written as a store listing (a missing folder, a file that
/// is not UTF-8, a write that failed, ...). The message is one line that names the file.
/// `ConflictError` is the one kind of it that carries more.
class InputError : public std::runtime_error {
 public:
  /// An error whose whole message is `message`.
  explicit InputError(const std::string& message) : std::runtime_error(message) {}
};

}  // namespace corvane::store
