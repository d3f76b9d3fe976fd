#pragma once

#include <filesystem>

namespace corvane {

/// The library's own data files (the sample metadata folder and others), found from where
/// the loaded library file lies: next to an installed library under
/// `<prefix>/share/corvane`, in a build tree in `corvane-resources` beside the library.
class CorvaneResources {
 public:
  /// The resource folder. Throws `std::runtime_error` naming the places searched when
  /// neither exists (a library file copied away from its resources).
  static std::filesystem::path directory();

  /// The bundled sample metadata folder, `directory() / "sample-metadata"`: several locales
  /// whose check yields a blocker, a rejection risk, an optimization and an opportunity.
  static std::filesystem::path sampleMetadataDirectory();

  /// The bundled Google Play sample, `directory() / "sample-play-metadata"`: three locales
  /// in Play's layout whose check yields a blocker, a rejection risk, an optimization and an
  /// opportunity.
  static std::filesystem::path samplePlayMetadataDirectory();

  /// The file of the loaded Corvane library, as the dynamic loader reports it.
  static std::filesystem::path libraryFile();
};

}  // namespace corvane
