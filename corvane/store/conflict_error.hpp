#pragma once

#include "corvane/store/input_error.hpp"
#include "corvane/store/listing_conflict.hpp"

#include <vector>

namespace corvane::store {

/// Thrown by `StoreListing::writeChanges` when files it would replace changed on disk since
/// the listing read or last wrote them; nothing was written. `what()` names the files in a
/// plain sentence, `conflicts()` lists every such field for a screen to settle.
class ConflictError : public InputError {
 public:
  /// An error about `conflicts`, which must not be empty.
  explicit ConflictError(std::vector<ListingConflict> conflicts);

  /// Every field whose file changed, in the order the listing holds them.
  const std::vector<ListingConflict>& conflicts() const noexcept { return conflicts_; }

 private:
  std::vector<ListingConflict> conflicts_;
};

}  // namespace corvane::store
