#include "corvane/store/staged_file.hpp"

#include "corvane/store/input_error.hpp"
#include "corvane/testing/temporary_folder.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace corvane::store {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::UnorderedElementsAre;
using corvane::testing::readFile;
using corvane::testing::TemporaryFolder;
using corvane::testing::writeFile;

// The message of the InputError `action` throws; a test failure when it throws none.
std::string inputErrorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const InputError& error) {
    return error.what();
  }
  ADD_FAILURE() << "no InputError";
  return {};
}

// The names in `folder`, so that a test sees any temporary file left behind.
std::vector<std::string> namesIn(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
  return names;
}

TEST(StagedFileTest, OldContentsStayUntilCommitAndPermissionsCarryOver) {
  TemporaryFolder folder;
  const fs::path file = folder.path() / "name.txt";
  writeFile(file, "old\n");
  fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);

  StagedFile staged(file, "new\n");
  EXPECT_EQ(readFile(file), "old\n");
  EXPECT_EQ(namesIn(folder.path()).size(), 2u);
  staged.commit();
  staged.commit();  // a second commit has nothing left to do

  EXPECT_EQ(readFile(file), "new\n");
  EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
  EXPECT_THAT(namesIn(folder.path()), UnorderedElementsAre("name.txt"));
}

TEST(StagedFileTest, UncommittedStagingIsRemovedAndNewFilesCanBeStaged) {
  TemporaryFolder folder;
  const fs::path file = folder.path() / "name.txt";
  writeFile(file, "old");
  { StagedFile abandoned(file, "new"); }
  EXPECT_EQ(readFile(file), "old");
  EXPECT_THAT(namesIn(folder.path()), UnorderedElementsAre("name.txt"));

  // A file that does not exist yet is created; moving the staged file hands over the commit.
  StagedFile staged(folder.path() / "subtitle.txt", "fresh");
  StagedFile moved(std::move(staged));
  moved.commit();
  EXPECT_EQ(readFile(folder.path() / "subtitle.txt"), "fresh");
  EXPECT_THAT(namesIn(folder.path()), UnorderedElementsAre("name.txt", "subtitle.txt"));
}

TEST(ReplaceFilesTest, AFileThatCannotBeWrittenLeavesEveryFileAsItWas) {
  TemporaryFolder folder;
  const fs::path first = folder.path() / "a" / "name.txt";
  const fs::path missing = folder.path() / "gone" / "keywords.txt";
  writeFile(first, "first");

  EXPECT_THAT(inputErrorOf([&] { replaceFiles({{first, "changed"}, {missing, "changed"}}); }),
              HasSubstr(missing.string() + ": cannot create a temporary file"));
  EXPECT_EQ(readFile(first), "first");
  EXPECT_THAT(namesIn(first.parent_path()), UnorderedElementsAre("name.txt"));
}

TEST(ReplaceFilesTest, AFailedRenameNamesTheFileAndLeavesNoTemporaryFile) {
  TemporaryFolder folder;
  const fs::path first = folder.path() / "name.txt";
  const fs::path occupied = folder.path() / "keywords.txt";  // a folder: nothing can be renamed over it
  writeFile(first, "first");
  writeFile(occupied / "inside.txt", "kept");

  EXPECT_THAT(inputErrorOf([&] { replaceFiles({{first, "changed"}, {occupied, "changed"}}); }),
              HasSubstr(occupied.string() + ": cannot replace"));
  // Staging succeeded for both, so the rename before the failing one has happened.
  EXPECT_EQ(readFile(first), "changed");
  EXPECT_EQ(readFile(occupied / "inside.txt"), "kept");
  EXPECT_THAT(namesIn(folder.path()), UnorderedElementsAre("name.txt", "keywords.txt"));

  EXPECT_NO_THROW(replaceFiles({}));
}

}  // namespace
}  // namespace corvane::store
