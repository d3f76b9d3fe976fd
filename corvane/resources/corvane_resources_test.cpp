#include "corvane/resources/corvane_resources.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace corvane {
namespace {

namespace fs = std::filesystem;

TEST(CorvaneResourcesTest, FindsTheLibraryAndItsResourcesFromTheBuildTree) {
  const fs::path library = CorvaneResources::libraryFile();
  EXPECT_TRUE(library.is_absolute());
  EXPECT_NE(library.filename().string().find("libcorvane.so"), std::string::npos) << library;
  EXPECT_TRUE(fs::exists(library));

  const fs::path resources = CorvaneResources::directory();
  EXPECT_EQ(resources, fs::canonical(library).parent_path() / "corvane-resources");
  const fs::path sample = CorvaneResources::sampleMetadataDirectory();
  EXPECT_TRUE(fs::is_regular_file(sample / "en-US" / "name.txt")) << sample;
  EXPECT_TRUE(fs::is_regular_file(sample / "review_information" / "email_address.txt")) << sample;
}

}  // namespace
}  // namespace corvane
