#include "corvane/store/staged_file.hpp"

#include "corvane/store/input_error.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <random>
#include <set>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane::store {
namespace fs = std::filesystem;
namespace {

std::string failure(const fs::path& path, std::string_view step, int error = errno) {
  return path.string() + ": cannot " + std::string(step) + ": " + std::strerror(error);
}

// `.<file name><suffix>` beside `path`. Built with append: "." + name trips a false
// -Wrestrict in GCC 12 at -O3.
std::string besideAs(const fs::path& path, std::string_view suffix) {
  std::string leaf = ".";
  leaf.append(path.filename().string()).append(suffix);
  return (path.parent_path() / leaf).string();
}

int systemRename(const fs::path& from, const fs::path& to) {
  return ::rename(from.c_str(), to.c_str());
}

// The file at `path` under a second name beside it, a hard link, until the replacements
// are done: nothing is copied, and putting it back restores the very same file (its owner,
// its other links). The link is removed when the object goes, unless it was put back.
class KeptOriginal {
 public:
  // Keeps the file at `path`; keeps nothing when there is no file there yet.
  explicit KeptOriginal(const fs::path& path) {
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0 && errno == ENOENT) return;
    static constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    std::random_device device;
    std::uniform_int_distribution<std::size_t> pick(0, kLetters.size() - 1);
    // Like mkstemp's names, tried until one is free; link never replaces an existing name.
    for (int attempt = 0; attempt < 100; ++attempt) {
      std::string suffix = ".corvane-backup-";
      for (int i = 0; i < 6; ++i) suffix += kLetters[pick(device)];
      std::string name = besideAs(path, suffix);
      if (::link(path.c_str(), name.c_str()) == 0) {
        name_ = std::move(name);
        return;
      }
      if (errno != EEXIST) break;
    }
    throw InputError(failure(path, "keep the original until every file is written"));
  }
  KeptOriginal(KeptOriginal&& other) noexcept : name_(std::exchange(other.name_, {})) {}
  KeptOriginal& operator=(KeptOriginal&&) = delete;
  KeptOriginal(const KeptOriginal&) = delete;
  KeptOriginal& operator=(const KeptOriginal&) = delete;
  ~KeptOriginal() {
    if (!name_.empty()) ::unlink(name_.c_str());
  }

  // Where the original is kept; empty when there was none.
  const std::string& name() const { return name_; }

  // Puts the original back at `path`, or removes `path` when there was none. Returns 0 or
  // -1 with errno set, like the rename it does.
  int restore(const fs::path& path, const RenameFunction& rename) {
    if (name_.empty()) return ::unlink(path.c_str());
    if (rename(name_, path) != 0) return -1;
    name_.clear();
    return 0;
  }

  // Leaves the kept original in place for good: it is the only copy of the old contents.
  void keep() { name_.clear(); }

 private:
  std::string name_;
};

// Flushes the folder entries that the renames changed, so that they survive a power cut.
void syncFolders(const std::vector<StagedFile>& files) {
  std::set<fs::path> folders;
  for (const auto& file : files) folders.insert(file.path().parent_path());
  for (const auto& folder : folders) {
    const int fd = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) continue;  // the files are in place; only their durability is at stake
    (void)::fsync(fd);
    ::close(fd);
  }
}

}  // namespace

StagedFile::StagedFile(fs::path path, std::string_view contents) : path_(std::move(path)) {
  struct stat original {};
  const bool exists = ::stat(path_.c_str(), &original) == 0;
  if (exists && !S_ISREG(original.st_mode)) throw InputError(path_.string() + ": not a regular file");
  std::string temporary = besideAs(path_, ".corvane-XXXXXX");
  const int fd = ::mkstemp(temporary.data());
  if (fd < 0) throw InputError(failure(path_, "create a temporary file"));
  auto fail = [&](std::string_view step) {
    const std::string message = failure(path_, step);
    ::close(fd);
    ::unlink(temporary.c_str());
    throw InputError(message);
  };
  if (exists) {
    // The owner first: changing it may clear the set-id bits that the mode then restores.
    // Only a privileged process may give a file away (EPERM otherwise), and none can give
    // it to an owner unknown in its user namespace (EINVAL); then the file becomes ours.
    if (::fchown(fd, original.st_uid, original.st_gid) != 0 && errno != EPERM && errno != EINVAL) {
      fail("keep the owner");
    }
    if (::fchmod(fd, original.st_mode & 07777) != 0) fail("copy permissions");
  }
  for (std::size_t written = 0; written < contents.size();) {
    const auto n = ::write(fd, contents.data() + written, contents.size() - written);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) fail("write");
    written += static_cast<std::size_t>(n);
  }
  if (::fsync(fd) != 0) fail("flush");
  if (::close(fd) != 0) {
    const std::string message = failure(path_, "close");
    ::unlink(temporary.c_str());
    throw InputError(message);
  }
  temporary_ = std::move(temporary);
}

StagedFile::StagedFile(StagedFile&& other) noexcept
    : path_(std::move(other.path_)), temporary_(std::exchange(other.temporary_, {})) {}

StagedFile::~StagedFile() {
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

void StagedFile::commit() {
  commit(systemRename);
}

void StagedFile::commit(const RenameFunction& rename) {
  if (temporary_.empty()) return;
  if (rename(temporary_, path_) != 0) throw InputError(failure(path_, "replace"));
  temporary_.clear();
}

bool isLeftoverName(std::string_view name) noexcept {
  constexpr std::size_t kRandom = 6;  // as many as mkstemp's XXXXXX
  if (name.size() < kRandom || !name.starts_with('.')) return false;
  const std::string_view random = name.substr(name.size() - kRandom);
  const bool letters = std::ranges::all_of(
      random, [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); });
  if (!letters) return false;
  std::string_view rest = name.substr(1, name.size() - 1 - kRandom);
  for (const std::string_view suffix : {std::string_view(".corvane-backup-"), std::string_view(".corvane-")}) {
    if (rest.size() > suffix.size() && rest.ends_with(suffix)) return true;
  }
  return false;
}

std::vector<fs::path> removeLeftoverFiles(const fs::path& folder) {
  std::vector<fs::path> removed;
  std::error_code error;
  for (fs::directory_iterator entries(folder, error), end; !error && entries != end; entries.increment(error)) {
    const fs::path& path = entries->path();
    std::error_code entryError;
    if (!isLeftoverName(path.filename().string()) || !entries->is_regular_file(entryError) ||
        entries->is_symlink(entryError)) {
      continue;
    }
    if (::unlink(path.c_str()) == 0) removed.push_back(path);
  }
  return removed;
}

void replaceFiles(const std::vector<std::pair<fs::path, std::string>>& replacements) {
  replaceFiles(replacements, systemRename);
}

void replaceFiles(const std::vector<std::pair<fs::path, std::string>>& replacements, const RenameFunction& rename) {
  // Everything that can fail for want of space or permission happens before the first rename.
  std::vector<StagedFile> staged;
  std::vector<KeptOriginal> originals;
  staged.reserve(replacements.size());
  originals.reserve(replacements.size());
  for (const auto& [path, contents] : replacements) staged.emplace_back(path, contents);
  for (const auto& file : staged) originals.emplace_back(file.path());

  for (std::size_t done = 0; done < staged.size(); ++done) {
    try {
      staged[done].commit(rename);
    } catch (const InputError& error) {
      // Back to the old files, the latest first; one that cannot go back is named, with
      // where its old contents are, and they stay there.
      std::string message = error.what();
      std::string unrestored;
      for (std::size_t i = done; i-- > 0;) {
        const fs::path& path = staged[i].path();
        const std::string kept = originals[i].name();
        if (originals[i].restore(path, rename) == 0) continue;
        const int cause = errno;
        unrestored += "; " + path.string() +
                      (kept.empty() ? " stays created (cannot remove it: " + std::string(std::strerror(cause)) + ")"
                                    : " stays changed; its old contents are in " + kept +
                                          " (cannot put them back: " + std::strerror(cause) + ")");
        originals[i].keep();
      }
      message += unrestored.empty() ? "; every file is as it was" : unrestored;
      throw InputError(message);
    }
  }
  syncFolders(staged);
}

}  // namespace corvane::store
