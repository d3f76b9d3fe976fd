#include "atomic_file.hpp"

#include "input_error.hpp"

#include <cerrno>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane::cli {
namespace {

std::string failure(const std::filesystem::path& path, std::string_view step) {
  return path.string() + ": cannot " + std::string(step) + ": " + std::strerror(errno);
}

}  // namespace

void writeFileAtomically(const std::filesystem::path& path, std::string_view contents) {
  // Built with append: "." + name trips a false -Wrestrict in GCC 12 at -O3.
  std::string leaf = ".";
  leaf.append(path.filename().string()).append(".corvane-XXXXXX");
  std::string temporary = (path.parent_path() / leaf).string();
  const int fd = ::mkstemp(temporary.data());
  if (fd < 0) throw InputError(failure(path, "create a temporary file"));
  auto fail = [&](std::string_view step) {
    const std::string message = failure(path, step);
    ::close(fd);
    ::unlink(temporary.c_str());
    throw InputError(message);
  };
  struct stat original {};
  if (::stat(path.c_str(), &original) == 0 && ::fchmod(fd, original.st_mode & 07777) != 0) fail("copy permissions");
  for (std::size_t written = 0; written < contents.size();) {
    const auto n = ::write(fd, contents.data() + written, contents.size() - written);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) fail("write");
    written += static_cast<std::size_t>(n);
  }
  if (::fsync(fd) != 0) fail("flush");
  if (::close(fd) != 0) {
    ::unlink(temporary.c_str());
    throw InputError(failure(path, "close"));
  }
  if (::rename(temporary.c_str(), path.c_str()) != 0) {
    const std::string message = failure(path, "replace");
    ::unlink(temporary.c_str());
    throw InputError(message);
  }
}

}  // namespace corvane::cli
