#include "metadata_folder.hpp"

#include "cli_test_support.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include <unistd.h>

namespace corvane::cli {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::TemporaryFolder;
using testing::writeFile;

// Runs the reader and returns the message of the InputError it must throw.
std::string inputErrorOf(const fs::path& root) {
  return testing::inputErrorOf([&] { (void)readMetadataFolder(root); });
}

TEST(LocaleFolderNameTest, AcceptsLanguageTagsAndRejectsSharedFolders) {
  for (const char* name : {"en", "de-DE", "zh-Hans", "es-419", "pt-BR", "fil", "zh-Hant-TW"}) {
    EXPECT_TRUE(isLocaleFolderName(name)) << name;
  }
  for (const char* name : {"review_information", "default", "e", "EN-us", "en_US", "en-", "en-U", "screenshots", "abcd",
                           "en-toolongsubtag", ""}) {
    EXPECT_FALSE(isLocaleFolderName(name)) << name;
  }
}

TEST(MetadataFolderTest, ReadsLocalesInOrderAndSharesTheReviewAddress) {
  TemporaryFolder temporary;
  const auto root = temporary.path();
  writeFile(root / "fr-FR" / "name.txt", "Notes\r\n\n");
  writeFile(root / "en-US" / "name.txt", "Notes");
  writeFile(root / "en-US" / "keywords.txt", "a,b\n");
  writeFile(root / "en-US" / "unknown.txt", "ignored");
  writeFile(root / "review_information" / "email_address.txt", "review@example.com\n");
  writeFile(root / "review_information" / "name.txt", "never a locale");
  writeFile(root / "screenshots" / "name.txt", "never a locale");
  writeFile(root / "copyright.txt", "2026");

  const auto folder = readMetadataFolder(root);
  std::vector<std::string> names;
  for (const auto& locale : folder.locales) names.push_back(locale.locale);
  EXPECT_THAT(names, ElementsAre("en-US", "fr-FR"));
  EXPECT_EQ(folder.reviewEmail, "review@example.com");

  const auto& english = folder.locales[0];
  EXPECT_EQ(english.text(MetadataField::name), "Notes");
  EXPECT_EQ(english.frames[static_cast<std::size_t>(MetadataField::name)].finalLineBreaks, "");
  EXPECT_EQ(english.text(MetadataField::keywords), "a,b");
  EXPECT_EQ(english.frames[static_cast<std::size_t>(MetadataField::keywords)].finalLineBreaks, "\n");
  EXPECT_FALSE(english.texts[static_cast<std::size_t>(MetadataField::subtitle)].has_value());
  EXPECT_EQ(folder.locales[1].text(MetadataField::name), "Notes");
  EXPECT_EQ(folder.locales[1].frames[static_cast<std::size_t>(MetadataField::name)].finalLineBreaks, "\r\n\n");
  EXPECT_EQ(folder.bytesRead, 8u + 5u + 4u + 19u);
}

TEST(TextFrameTest, SetsAsideTheByteOrderMarkAndFinalLineBreaksAndPutsThemBack) {
  for (const std::string contents : {"", "\n", "\xEF\xBB\xBF", "\xEF\xBB\xBF\r\n", "a\r\nb\r\n\n", "\xEF\xBB\xBFName",
                                     "Name \xEF\xBB\xBF\n", "\xEF\xBB\xBF\xEF\xBB\xBFx"}) {
    std::string text = contents;
    const auto frame = unframe(text);
    EXPECT_EQ(frame.around(text), contents) << ::testing::PrintToString(contents);
    EXPECT_FALSE(text.ends_with('\n') || text.ends_with('\r')) << ::testing::PrintToString(contents);
  }
  std::string named = "\xEF\xBB\xBFName\r\n";
  const auto frame = unframe(named);
  EXPECT_EQ(named, "Name");
  EXPECT_TRUE(frame.byteOrderMark);
  EXPECT_EQ(frame.around("Other"), "\xEF\xBB\xBFOther\r\n");

  // Only the first mark is a mark; a second one is text (a zero-width no-break space).
  std::string doubled = "\xEF\xBB\xBF\xEF\xBB\xBFx";
  (void)unframe(doubled);
  EXPECT_EQ(doubled, "\xEF\xBB\xBFx");
}

TEST(MetadataFolderTest, FollowsLinksThatStayInsideTheFolder) {
  TemporaryFolder temporary;
  const auto root = temporary.path();
  writeFile(root / "en-US" / "name.txt", "Shared name\n");
  fs::create_directories(root / "en-GB");
  fs::create_symlink("../en-US/name.txt", root / "en-GB" / "name.txt");
  const auto folder = readMetadataFolder(root);
  ASSERT_EQ(folder.locales.size(), 2u);
  EXPECT_EQ(folder.locales[0].text(MetadataField::name), "Shared name");
}

TEST(MetadataFolderTest, RefusesBadInputWithOneLineNamingTheFile) {
  TemporaryFolder temporary;
  const auto base = temporary.path();

  EXPECT_THAT(inputErrorOf(base / "missing"), HasSubstr("missing: no such folder"));
  writeFile(base / "plain-file", "");
  EXPECT_THAT(inputErrorOf(base / "plain-file"), HasSubstr("plain-file: not a folder"));

  fs::create_directories(base / "empty");
  EXPECT_THAT(inputErrorOf(base / "empty"), HasSubstr("empty: no locale folders"));

  writeFile(base / "shared-only" / "review_information" / "email_address.txt", "a@b.c");
  EXPECT_THAT(inputErrorOf(base / "shared-only"), HasSubstr("no locale folders"));

  fs::create_directories(base / "empty-locale" / "en-US");
  EXPECT_THAT(inputErrorOf(base / "empty-locale"), HasSubstr("en-US: locale folder holds none of the metadata files"));

  writeFile(base / "latin1" / "en-US" / "name.txt", "Caf\xe9 Notes");
  EXPECT_THAT(inputErrorOf(base / "latin1"), HasSubstr("en-US/name.txt: not valid UTF-8 at byte offset 3"));

  writeFile(base / "large" / "en-US" / "description.txt", std::string(kMaxFileSize + 1, 'a'));
  EXPECT_THAT(inputErrorOf(base / "large"),
              HasSubstr("en-US/description.txt: file is 1048577 bytes, more than the 1 MiB"));
  writeFile(base / "at-limit" / "en-US" / "description.txt", std::string(kMaxFileSize, 'a'));
  EXPECT_EQ(readMetadataFolder(base / "at-limit").locales.size(), 1u);

  writeFile(base / "outside.txt", "secret");
  fs::create_directories(base / "escaping-file" / "en-US");
  fs::create_symlink(base / "outside.txt", base / "escaping-file" / "en-US" / "name.txt");
  EXPECT_THAT(inputErrorOf(base / "escaping-file"), HasSubstr("en-US/name.txt: symbolic link leads outside"));

  writeFile(base / "elsewhere" / "name.txt", "Name");
  fs::create_directories(base / "escaping-folder");
  fs::create_directory_symlink(base / "elsewhere", base / "escaping-folder" / "en-US");
  EXPECT_THAT(inputErrorOf(base / "escaping-folder"), HasSubstr("escaping-folder/en-US: symbolic link leads outside"));

  writeFile(base / "outside-review" / "en-US" / "name.txt", "Name");
  fs::create_directory_symlink(base / "elsewhere", base / "outside-review" / "review_information");
  writeFile(base / "elsewhere" / "email_address.txt", "a@b.c");
  EXPECT_THAT(inputErrorOf(base / "outside-review"), HasSubstr("email_address.txt: symbolic link leads outside"));

  // A locale hidden behind a dangling link would otherwise go unchecked.
  writeFile(base / "dangling" / "en-US" / "name.txt", "Name");
  fs::create_directory_symlink("nowhere", base / "dangling" / "fr");
  EXPECT_THAT(inputErrorOf(base / "dangling"), HasSubstr("dangling/fr: broken symbolic link"));
}

TEST(MetadataFolderTest, RefusesAnUnreadableFile) {
  if (::geteuid() == 0) GTEST_SKIP() << "root reads every file";
  TemporaryFolder temporary;
  const auto file = temporary.path() / "en-US" / "name.txt";
  writeFile(file, "Name");
  fs::permissions(file, fs::perms::none);
  EXPECT_THAT(inputErrorOf(temporary.path()), HasSubstr("en-US/name.txt: cannot open"));
}

}  // namespace
}  // namespace corvane::cli
