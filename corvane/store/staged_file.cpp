#include "corvane/store/staged_file.hpp"

#include "corvane/store/input_error.hpp"

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane::store {
namespace {

std::string failure(const std::filesystem::path& path, std::string_view step) {
  return path.string() + ": cannot " + std::string(step) + ": " + std::strerror(errno);
}

}  // namespace

StagedFile::StagedFile(std::filesystem::path path, std::string_view contents) : path_(std::move(path)) {
  // Built with append: "." + name trips a false -Wrestrict in GCC 12 at -O3.
  std::string leaf = ".";
  leaf.append(path_.filename().string()).append(".corvane-XXXXXX");
  std::string temporary = (path_.parent_path() / leaf).string();
  const int fd = ::mkstemp(temporary.data());
  if (fd < 0) throw InputError(failure(path_, "create a temporary file"));
  auto fail = [&](std::string_view step) {
    const std::string message = failure(path_, step);
    ::close(fd);
    ::unlink(temporary.c_str());
    throw InputError(message);
  };
  struct stat original {};
  if (::stat(path_.c_str(), &original) == 0 && ::fchmod(fd, original.st_mode & 07777) != 0) fail("copy permissions");
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
  if (temporary_.empty()) return;
  if (::rename(temporary_.c_str(), path_.c_str()) != 0) throw InputError(failure(path_, "replace"));
  temporary_.clear();
}

void replaceFiles(const std::vector<std::pair<std::filesystem::path, std::string>>& replacements) {
  std::vector<StagedFile> staged;
  staged.reserve(replacements.size());
  for (const auto& [path, contents] : replacements) staged.emplace_back(path, contents);
  for (auto& file : staged) file.commit();
}

}  // namespace corvane::store
