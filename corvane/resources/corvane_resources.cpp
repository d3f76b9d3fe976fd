#include "corvane/resources/corvane_resources.hpp"

#include <stdexcept>
#include <string>

#include <dlfcn.h>

namespace corvane {
namespace {

// An object that only this library defines: its address tells the loader which file we are.
const char resourceMarker = 0;

}  // namespace

std::filesystem::path CorvaneResources::libraryFile() {
  Dl_info info{};
  if (::dladdr(&resourceMarker, &info) == 0 || info.dli_fname == nullptr) {
    throw std::runtime_error("Corvane: cannot tell where the library was loaded from");
  }
  return std::filesystem::absolute(info.dli_fname);
}

std::filesystem::path CorvaneResources::directory() {
  const auto libraryFolder = std::filesystem::canonical(libraryFile()).parent_path();
  const auto installed = (libraryFolder / CORVANE_RESOURCES_FROM_LIBDIR).lexically_normal();
  const auto buildTree = libraryFolder / "corvane-resources";
  std::error_code error;
  if (std::filesystem::is_directory(installed, error)) return installed;
  if (std::filesystem::is_directory(buildTree, error)) return buildTree;
  throw std::runtime_error("Corvane: resource folder not found at " + installed.string() + " or " + buildTree.string());
}

std::filesystem::path CorvaneResources::sampleMetadataDirectory() {
  return directory() / "sample-metadata";
}

std::filesystem::path CorvaneResources::samplePlayMetadataDirectory() {
  return directory() / "sample-play-metadata";
}

}  // namespace corvane
