#include "corvane/support/object_identity.hpp"

#include <atomic>

namespace corvane {

std::uint64_t nextObjectIdentity() noexcept {
  // 64 bits do not run out: a billion identities a second would take centuries.
  static std::atomic<std::uint64_t> last{0};
  return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

}  // namespace corvane
