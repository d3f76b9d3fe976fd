#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace corvane::testing {

/// A fresh folder under the system's temporary folder, removed with everything in it when
/// the object goes away.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  /// The folder.
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

/// Writes `contents` to `path`, creating its folders; throws `std::runtime_error` on failure.
void writeFile(const std::filesystem::path& path, std::string_view contents);

/// The whole file at `path`; throws `std::runtime_error` when it cannot be read.
std::string readFile(const std::filesystem::path& path);

}  // namespace corvane::testing
