#pragma once

#include <cstdint>

namespace corvane {

/// A number never handed out before in this process (counting from 1), safe to call from
/// any thread. Objects that name themselves in shared keys use it instead of their
/// address, which a later object may reuse.
std::uint64_t nextObjectIdentity() noexcept;

}  // namespace corvane
