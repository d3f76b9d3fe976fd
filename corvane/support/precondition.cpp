#include "corvane/support/precondition.hpp"

#include <cstdio>
#include <cstdlib>

namespace corvane::detail {

void preconditionFailure(std::string_view message, SourceLocation where) {
  std::fprintf(stderr, "Corvane: precondition failed: %.*s (%s:%u)\n", static_cast<int>(message.size()), message.data(),
               where.file_name(), static_cast<unsigned>(where.line()));
  std::fflush(stderr);
  std::abort();
}

}  // namespace corvane::detail
