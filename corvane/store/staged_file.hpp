#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace corvane::store {

/// The new contents of one file, written to a temporary file beside it but not yet in
/// place. Readers of the file see the old contents until `commit()` renames the temporary
/// file over it, and then the new ones: never a partial file. A staged file that is not
/// committed removes its temporary file when destroyed.
class StagedFile {
 public:
  /// Writes `contents` to a temporary file in `path`'s folder, flushes it to disk and gives
  /// it the permissions of the file at `path` (if there is one). Throws `InputError` naming
  /// `path` when any step fails, leaving no temporary file behind.
  StagedFile(std::filesystem::path path, std::string_view contents);
  StagedFile(StagedFile&& other) noexcept;
  StagedFile& operator=(StagedFile&&) = delete;
  StagedFile(const StagedFile&) = delete;
  StagedFile& operator=(const StagedFile&) = delete;
  ~StagedFile();

  /// The file that `commit()` replaces.
  const std::filesystem::path& path() const { return path_; }

  /// Renames the temporary file over `path()`. Throws `InputError` naming the file when the
  /// rename fails (the temporary file is then removed when this object is destroyed, and
  /// the old file is left as it was). Does nothing once committed.
  void commit();

 private:
  std::filesystem::path path_;
  std::string temporary_;  // empty once committed or moved from
};

/// Replaces every file in `replacements` (path, new contents) as one step as far as a file
/// system allows: every new file is staged before any is renamed into place, so a failure
/// to write (a full disk, a folder without write permission) changes no file at all. Only a
/// rename failing part-way, which within one folder takes an unusual fault, leaves the
/// files renamed before it replaced. Throws `InputError` naming the file that failed.
void replaceFiles(const std::vector<std::pair<std::filesystem::path, std::string>>& replacements);

}  // namespace corvane::store
