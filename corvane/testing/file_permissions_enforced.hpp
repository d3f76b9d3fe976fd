#pragma once

#include <cstdint>

namespace corvane::testing {

/// While it lives, file permissions bind the calling thread even when the process runs as
/// root (as tests do in CI): it drops CAP_DAC_OVERRIDE and CAP_DAC_READ_SEARCH from the
/// thread's effective capabilities and puts them back when destroyed. Only the calling
/// thread is affected, so create and destroy it on the thread that makes the calls under
/// test. A process that is not root is bound by permissions already: then it does nothing.
/// Throws `std::runtime_error` when the capabilities cannot be read or changed.
class FilePermissionsEnforced {
 public:
  FilePermissionsEnforced();
  ~FilePermissionsEnforced();
  FilePermissionsEnforced(const FilePermissionsEnforced&) = delete;
  FilePermissionsEnforced& operator=(const FilePermissionsEnforced&) = delete;

 private:
  bool dropped_ = false;
  std::uint32_t effective_ = 0;  // the first word of the effective set before the drop
};

}  // namespace corvane::testing
