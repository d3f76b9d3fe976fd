#pragma once

#include "metadata_field.hpp"

#include <cstdint>
#include <filesystem>
#include <string>

namespace corvane::cli {

/// One auto-fix the checker applies: a field trimmed to its limit.
struct FixChange {
  /// The locale folder's name.
  std::string locale;
  /// The field that changes.
  MetadataField field;
  /// The file written back.
  std::filesystem::path path;
  /// The title of the verdict's primary action, e.g. "Auto-trim to 30".
  std::string action;
  /// The text before and after, without the file's frame (byte-order mark, final line
  /// breaks).
  std::string before;
  std::string after;
  /// Their lengths in user-perceived characters, without surrounding white space, as the
  /// limits count them.
  std::int64_t charactersBefore;
  std::int64_t charactersAfter;
};

}  // namespace corvane::cli
