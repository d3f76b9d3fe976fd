#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace corvane::cli::testing {

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

/// The bundled sample metadata in the source tree (tests copy it before changing anything).
std::filesystem::path sourceSample();

/// Copies the sample metadata into `destination` and returns `destination`.
std::filesystem::path copySample(const std::filesystem::path& destination);

/// Writes `contents` to `path`, creating its folders.
void writeFile(const std::filesystem::path& path, std::string_view contents);

/// Runs `action` and returns the message of the `InputError` it must throw; records a test
/// failure and returns an empty text when it throws none.
std::string inputErrorOf(const std::function<void()>& action);

/// The whole file at `path`.
std::string readFile(const std::filesystem::path& path);

}  // namespace corvane::cli::testing
