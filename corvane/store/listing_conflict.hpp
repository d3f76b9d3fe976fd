#pragma once

#include "corvane/store/listing_field.hpp"

#include <optional>
#include <string>

namespace corvane::store {

/// A field whose file changed on disk since the listing read or last wrote it while the
/// field holds an unsaved edit: writing the edit would overwrite someone else's change.
struct ListingConflict {
  /// The field's scope: a locale code, or "shared".
  std::string scope;
  /// The field.
  ListingField field;
  /// The file the edit would be written to, relative to the metadata folder.
  std::string file;
  /// The field's text as the listing last read or wrote it.
  std::string savedText;
  /// The file's text on disk now, without its frame; nothing when there is no file.
  std::optional<std::string> diskText;
  /// The unsaved edit.
  std::string editedText;

  friend bool operator==(const ListingConflict&, const ListingConflict&) = default;
};

}  // namespace corvane::store
