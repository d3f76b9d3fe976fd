#include "corvane/testing/file_permissions_enforced.hpp"

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace corvane::testing {
namespace {

// The C library wraps neither call; capset with pid 0 changes the calling thread only.
struct Capabilities {
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct data[_LINUX_CAPABILITY_U32S_3]{};
};

Capabilities current() {
  Capabilities caps;
  if (::syscall(SYS_capget, &caps.header, caps.data) != 0) {
    throw std::runtime_error(std::string("cannot read the thread's capabilities: ") + std::strerror(errno));
  }
  return caps;
}

void set(Capabilities& caps) {
  if (::syscall(SYS_capset, &caps.header, caps.data) != 0) {
    throw std::runtime_error(std::string("cannot change the thread's capabilities: ") + std::strerror(errno));
  }
}

// Both bits live in the first word of the sets.
constexpr std::uint32_t kFileOverrides = CAP_TO_MASK(CAP_DAC_OVERRIDE) | CAP_TO_MASK(CAP_DAC_READ_SEARCH);
static_assert(CAP_TO_INDEX(CAP_DAC_OVERRIDE) == 0 && CAP_TO_INDEX(CAP_DAC_READ_SEARCH) == 0);

}  // namespace

FilePermissionsEnforced::FilePermissionsEnforced() {
  if (::geteuid() != 0) return;
  Capabilities caps = current();
  effective_ = caps.data[0].effective;
  caps.data[0].effective &= ~kFileOverrides;
  set(caps);
  dropped_ = true;
}

FilePermissionsEnforced::~FilePermissionsEnforced() {
  if (!dropped_) return;
  try {
    Capabilities caps = current();
    // The dropped bits are still permitted, so the thread may take them back.
    caps.data[0].effective = (caps.data[0].effective & ~kFileOverrides) | (effective_ & kFileOverrides);
    set(caps);
  } catch (const std::runtime_error&) {
    // A destructor cannot throw; the test that follows meets the permissions and says so.
  }
}

}  // namespace corvane::testing
