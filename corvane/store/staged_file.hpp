#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace corvane::store {

/// How a file is renamed over another: `rename(2)`'s contract, 0 on success or -1 with
/// `errno` set. `replaceFiles` takes one so that tests can make a rename fail part-way.
using RenameFunction = std::function<int(const std::filesystem::path& from, const std::filesystem::path& to)>;

/// The new contents of one file, written to a temporary file beside it but not yet in
/// place. Readers of the file see the old contents until `commit()` renames the temporary
/// file over it, and then the new ones: never a partial file. A staged file that is not
/// committed removes its temporary file when destroyed.
class StagedFile {
 public:
  /// Writes `contents` to a temporary file in `path`'s folder (named
  /// `.<file name>.corvane-XXXXXX`), flushes it to disk and gives it the permissions, and
  /// where the process may the owner and group, of the file at `path` (if there is one).
  /// Throws `InputError` naming `path` when any step fails or `path` is something other
  /// than a regular file, leaving no temporary file behind.
  StagedFile(std::filesystem::path path, std::string_view contents);
  StagedFile(StagedFile&& other) noexcept;
  StagedFile& operator=(StagedFile&&) = delete;
  StagedFile(const StagedFile&) = delete;
  StagedFile& operator=(const StagedFile&) = delete;
  ~StagedFile();

  /// The file that `commit()` replaces.
  const std::filesystem::path& path() const { return path_; }

  /// Renames the temporary file over `path()` with `rename` (`rename(2)` by default).
  /// Throws `InputError` naming the file when the rename fails (the temporary file is then
  /// removed when this object is destroyed, and the old file is left as it was). Does
  /// nothing once committed.
  void commit();
  void commit(const RenameFunction& rename);

 private:
  std::filesystem::path path_;
  std::string temporary_;  // empty once committed or moved from
};

/// Replaces every file in `replacements` (path, new contents) as one step: every new file
/// is staged (see `StagedFile`) and every old one kept under a second name (a hard link,
/// `.<file name>.corvane-backup-XXXXXX`) before any is renamed into place. A failure to
/// write (a full disk, a folder without write permission) changes no file; a rename
/// failing part-way puts back every file replaced before it, so each file ends wholly old
/// or, when all succeed, wholly new. Throws `InputError` naming the file that failed and
/// saying that every file is as it was; in the rare case that putting a file back fails
/// too, the message names each file left changed and where its old contents are kept.
/// `rename` does every rename, forwards and back.
void replaceFiles(const std::vector<std::pair<std::filesystem::path, std::string>>& replacements);
void replaceFiles(const std::vector<std::pair<std::filesystem::path, std::string>>& replacements,
                  const RenameFunction& rename);

/// Whether `name` is one that `StagedFile` or `replaceFiles` give their files:
/// `.<file name>.corvane-XXXXXX` or `.<file name>.corvane-backup-XXXXXX`, each X a letter
/// or a digit.
bool isLeftoverName(std::string_view name) noexcept;

/// Removes the regular files directly in `folder` whose names `isLeftoverName` knows, the
/// temporary files and kept originals of a write that was killed part-way, and returns
/// them. A folder that cannot be read, or a file that cannot be removed, is passed over.
std::vector<std::filesystem::path> removeLeftoverFiles(const std::filesystem::path& folder);

}  // namespace corvane::store
