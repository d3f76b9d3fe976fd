#pragma once

#include <filesystem>
#include <string_view>

namespace corvane::cli {

/// Replaces the file at `path` with `contents` so that readers see either the old or the new
/// file, never a partial one: the text goes to a temporary file in the same folder, is
/// flushed to disk, takes over the old file's permissions and is renamed over it. Throws
/// `InputError` naming the file when any step fails, leaving no temporary file behind.
void writeFileAtomically(const std::filesystem::path& path, std::string_view contents);

}  // namespace corvane::cli
