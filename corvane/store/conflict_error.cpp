#include "corvane/store/conflict_error.hpp"

#include "corvane/support/precondition.hpp"

#include <algorithm>
#include <string>

namespace corvane::store {
namespace {

// "a, b and c changed on disk since they were read; nothing was written", each file once.
std::string describe(const std::vector<ListingConflict>& conflicts) {
  CORVANE_PRECONDITION(!conflicts.empty(), "a conflict error lists at least one conflict");
  std::vector<std::string> files;
  for (const auto& conflict : conflicts) {
    if (std::ranges::find(files, conflict.file) == files.end()) files.push_back(conflict.file);
  }
  std::string names;
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (i > 0) names += i + 1 == files.size() ? " and " : ", ";
    names += files[i];
  }
  const bool one = files.size() == 1;
  return names + (one ? " was" : " were") + " changed on disk since " + (one ? "it was" : "they were") +
         " read or written here; nothing was written";
}

}  // namespace

ConflictError::ConflictError(std::vector<ListingConflict> conflicts)
    : InputError(describe(conflicts)), conflicts_(std::move(conflicts)) {}

}  // namespace corvane::store
