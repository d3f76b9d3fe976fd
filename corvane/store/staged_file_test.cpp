#include "corvane/store/staged_file.hpp"

#include "corvane/store/input_error.hpp"
#include "corvane/testing/temporary_folder.hpp"
#include "corvane/testing/thrown.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

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
  return corvane::testing::thrownMessage<InputError>(action);
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

TEST(ReplaceFilesTest, ATargetThatIsNoRegularFileChangesNothing) {
  TemporaryFolder folder;
  const fs::path first = folder.path() / "name.txt";
  const fs::path occupied = folder.path() / "keywords.txt";  // a folder: nothing can be renamed over it
  writeFile(first, "first");
  writeFile(occupied / "inside.txt", "kept");

  EXPECT_THAT(inputErrorOf([&] {
                replaceFiles({{first, "changed"}, {occupied, "changed"}});
              }),
              HasSubstr(occupied.string() + ": not a regular file"));
  EXPECT_EQ(readFile(first), "first");
  EXPECT_EQ(readFile(occupied / "inside.txt"), "kept");
  EXPECT_THAT(namesIn(folder.path()), UnorderedElementsAre("name.txt", "keywords.txt"));

  EXPECT_NO_THROW(replaceFiles({}));
}

// A rename step that fails, with EIO, on the calls whose numbers (from 1) are in `failing`
// and renames for real otherwise: a fault part-way through the replacements.
RenameFunction failingOn(std::vector<int> failing) {
  return [failing = std::move(failing), call = 0](const fs::path& from, const fs::path& to) mutable {
    if (std::ranges::find(failing, ++call) != failing.end()) {
      errno = EIO;
      return -1;
    }
    return ::rename(from.c_str(), to.c_str());
  };
}

TEST(ReplaceFilesTest, ARenameFailingPartWayPutsBackEveryFileReplacedBeforeIt) {
  TemporaryFolder folder;
  const fs::path name = folder.path() / "name.txt";
  const fs::path subtitle = folder.path() / "subtitle.txt";  // new: must be gone again
  const fs::path keywords = folder.path() / "keywords.txt";
  writeFile(name, "old name\r\n");
  writeFile(keywords, "old,keywords");
  struct stat before {};
  ASSERT_EQ(::stat(name.c_str(), &before), 0);

  // The third rename (keywords.txt) fails after name.txt and subtitle.txt were replaced.
  const std::string message = inputErrorOf([&] {
    replaceFiles({{name, "new"}, {subtitle, "new"}, {keywords, "new"}}, failingOn({3}));
  });
  EXPECT_THAT(message, HasSubstr(keywords.string() + ": cannot replace: "));
  EXPECT_THAT(message, HasSubstr("every file is as it was"));
  EXPECT_EQ(readFile(name), "old name\r\n");
  EXPECT_EQ(readFile(keywords), "old,keywords");
  struct stat after {};
  ASSERT_EQ(::stat(name.c_str(), &after), 0);
  EXPECT_EQ(after.st_ino, before.st_ino) << "the original itself is back, not a copy";
  EXPECT_THAT(namesIn(folder.path()), UnorderedElementsAre("name.txt", "keywords.txt"));
}

TEST(ReplaceFilesTest, AFileThatCannotBePutBackIsNamedWithWhereItsOldContentsAre) {
  TemporaryFolder folder;
  const fs::path name = folder.path() / "name.txt";
  const fs::path keywords = folder.path() / "keywords.txt";
  writeFile(name, "old name");
  writeFile(keywords, "old,keywords");

  // The second rename fails, and so does the third, which would put name.txt back.
  const std::string message = inputErrorOf([&] {
    replaceFiles({{name, "new"}, {keywords, "new"}}, failingOn({2, 3}));
  });
  EXPECT_THAT(message, HasSubstr(keywords.string() + ": cannot replace: "));
  EXPECT_THAT(message, HasSubstr(name.string() + " stays changed; its old contents are in "));
  EXPECT_EQ(readFile(name), "new");
  EXPECT_EQ(readFile(keywords), "old,keywords");
  const auto names = namesIn(folder.path());
  ASSERT_EQ(names.size(), 3u);
  const auto kept = std::ranges::find_if(names, [](const std::string& n) { return n.starts_with(".name.txt."); });
  ASSERT_NE(kept, names.end());
  EXPECT_THAT(message, HasSubstr((folder.path() / *kept).string()));
  EXPECT_EQ(readFile(folder.path() / *kept), "old name");
}

TEST(ReplaceFilesTest, OwnerAndGroupAreKeptWhereTheProcessMayKeepThem) {
  if (::geteuid() != 0) GTEST_SKIP() << "giving a file to another user takes root";
  TemporaryFolder folder;
  const fs::path file = folder.path() / "name.txt";
  writeFile(file, "old");
  ASSERT_EQ(::chown(file.c_str(), 4321, 5432), 0);
  replaceFiles({{file, "new"}});
  struct stat info {};
  ASSERT_EQ(::stat(file.c_str(), &info), 0);
  EXPECT_EQ(info.st_uid, 4321u);
  EXPECT_EQ(info.st_gid, 5432u);
  EXPECT_EQ(readFile(file), "new");
}

}  // namespace
}  // namespace corvane::store
