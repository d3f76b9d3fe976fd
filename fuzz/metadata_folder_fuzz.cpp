// The checker's folder reader (and the checks behind it) on arbitrary folders. The input
// is laid out as files of one locale folder in a private temporary folder:
//
//   byte 0-1   which of the eleven files exist (bit i: the i-th locale file, bit 10: the
//              review address in review_information/email_address.txt), and how the
//              fixes are written (bits 11-15, see `FixSetting`)
//   then       the locale folder's name, up to the first NUL byte
//   then       the contents of each existing file in turn, separated by NUL bytes
//
// The reader must either return exactly what was written (less trailing line breaks) or
// refuse the folder with an InputError for a documented reason. Then the fixes are written
// for real, through links, into read-only files and folders and with a rename failing
// part-way: afterwards each file must be wholly old or wholly new, never a mix, and no
// working file may be left behind.
#include "checker.hpp"

#include "corvane/store/input_error.hpp"
#include "corvane/store/listing_folder.hpp"
#include "corvane/store/staged_file.hpp"
#include "corvane/store/store_facts.hpp"
#include "corvane/store/store_listing.hpp"

#include "corvane/support/print_line.hpp"
#include "corvane/text/characters.hpp"
#include "fuzz_check.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;
using namespace corvane::cli;
using namespace corvane::store;

namespace {

// Inputs are cut here: store texts are small, and writing files is the slow part.
constexpr std::size_t kMaxInput = 64 * 1024;
constexpr std::size_t kFiles = kLocaleFields.size() + 1;

// A fresh folder per process, removed at exit.
const fs::path& workFolder() {
  static const fs::path folder = [] {
    std::string pattern = (fs::temp_directory_path() / "corvane-fuzz-XXXXXX").string();
    FUZZ_CHECK(mkdtemp(pattern.data()) != nullptr);
    std::atexit([] { fs::remove_all(workFolder()); });
    return fs::path(pattern);
  }();
  return folder;
}

// Takes the bytes up to the next NUL (or the end) off the front of `input`.
std::string_view takePart(std::string_view& input) {
  const std::size_t end = std::min(input.find('\0'), input.size());
  const std::string_view part = input.substr(0, end);
  input.remove_prefix(std::min(end + 1, input.size()));
  return part;
}

void writeFile(const fs::path& path, std::string_view contents) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary).write(contents.data(), static_cast<std::streamsize>(contents.size()));
}

std::string readFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// How the fixes are written, from the high bits of the file mask.
enum FixSetting : unsigned {
  kSymbolicLink = 1u << 11,  // promotional_text.txt, when not given, links to name.txt
  kHardLink = 1u << 12,      // subtitle.txt, when not given, is a hard link to name.txt
  kReadOnlyFiles = 1u << 13,
  kReadOnlyFolder = 1u << 14,  // the locale folder (root may write there all the same)
  kFailingRename = 1u << 15,   // one of the renames fails
};

// What one name in the folder is: a link's target, or a file's inode and contents.
struct Entry {
  std::string link;
  ino_t inode = 0;
  std::string contents;
  friend bool operator==(const Entry&, const Entry&) = default;
};

std::map<fs::path, Entry> snapshot(const fs::path& root) {
  std::map<fs::path, Entry> entries;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    struct stat info {};
    FUZZ_CHECK(::lstat(entry.path().c_str(), &info) == 0);
    if (S_ISLNK(info.st_mode)) {
      entries[entry.path()] = {.link = fs::read_symlink(entry.path()).string(), .inode = 0, .contents = {}};
    } else if (S_ISREG(info.st_mode)) {
      entries[entry.path()] = {.link = {}, .inode = info.st_ino, .contents = readFile(entry.path())};
    }
  }
  return entries;
}

// Writes the fixes for real with the links and permissions that `mask` asks for, then checks
// that every file is wholly old or wholly new and that nothing else is left in the folder.
void writeFixesForReal(const fs::path& root, const fs::path& locale, unsigned mask, std::size_t seed) {
  const fs::path name = locale / "name.txt";
  if (fs::exists(name)) {
    if ((mask & kSymbolicLink) && !fs::exists(locale / "promotional_text.txt")) {
      fs::create_symlink("name.txt", locale / "promotional_text.txt");
    }
    if ((mask & kHardLink) && !fs::exists(locale / "subtitle.txt")) fs::create_hard_link(name, locale / "subtitle.txt");
  }
  if (mask & kReadOnlyFiles) {
    for (const auto& entry : fs::directory_iterator(locale)) {
      if (!entry.is_symlink()) fs::permissions(entry.path(), fs::perms::owner_read | fs::perms::group_read);
    }
  }
  if (mask & kReadOnlyFolder) fs::permissions(locale, fs::perms::owner_read | fs::perms::owner_exec);

  const auto before = snapshot(root);
  const int failingCall = (mask & kFailingRename) ? 1 + static_cast<int>(seed % 3) : 0;
  const RenameFunction rename = [failingCall, call = 0](const fs::path& from, const fs::path& to) mutable {
    if (++call == failingCall) {
      errno = EIO;
      return -1;
    }
    return ::rename(from.c_str(), to.c_str());
  };
  std::vector<std::pair<fs::path, std::string>> writes;
  bool written = false;
  try {
    StoreListing listing(root, StoreFacts::appStore(), {}, RuleContext{.firstVersion = false, .currentYear = 2026});
    for (const auto& edit : listing.plannedFixes()) listing.apply(edit);
    writes = listing.pendingWrites();
    replaceFiles(writes, rename);
    written = true;
  } catch (const InputError&) {
    // Refused (fields sharing a file disagree, a folder that cannot be written) or a
    // rename failed: nothing may have changed.
  }
  fs::permissions(locale, fs::perms::owner_all);

  const auto after = snapshot(root);
  for (const auto& [path, entry] : before) FUZZ_CHECK(after.contains(path));
  FUZZ_CHECK(after.size() == before.size());  // no working file left, no file lost
  for (const auto& item : before) {
    const fs::path& path = item.first;
    const Entry& entry = item.second;
    // A link is never replaced itself; its target is.
    const auto write = std::ranges::find_if(writes, [&](const auto& w) {
      std::error_code error;
      return entry.link.empty() && fs::equivalent(w.first, path, error);
    });
    const Entry& now = after.at(path);
    if (!written || write == writes.end()) {
      FUZZ_CHECK(now == entry);  // wholly old: the very same file
    } else {
      FUZZ_CHECK(now.link == entry.link && now.contents == write->second);  // wholly new
    }
  }
  // Without an injected fault, only a folder this process may not write to stops a write.
  if (!written && failingCall == 0 && !writes.empty()) FUZZ_CHECK((mask & kReadOnlyFolder) && ::geteuid() != 0);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // The entities' progress lines, two per input, would only fill the fuzzer's log.
  corvane::setLineOutput([](std::string_view) {});
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2 || size > kMaxInput) return 0;
  const unsigned mask = data[0] | (static_cast<unsigned>(data[1]) << 8);
  const std::size_t seed = size;
  std::string_view input(reinterpret_cast<const char*>(data) + 2, size - 2);

  // Folder names that the file system cannot hold fall back to a plain locale.
  std::string localeName(takePart(input));
  if (localeName.empty() || localeName.size() > 32 || localeName == "." || localeName == ".." ||
      localeName == "review_information" || localeName.find('/') != std::string::npos) {
    localeName = "en-US";
  }

  const fs::path root = workFolder() / "metadata";
  std::error_code ignored;
  fs::permissions(root / localeName, fs::perms::owner_all, ignored);  // a read-only folder of the last input
  fs::remove_all(root);
  fs::create_directories(root);
  std::array<std::optional<std::string>, kFiles> written;
  bool anyLocaleFile = false;
  bool allValid = true;
  for (std::size_t i = 0; i < kFiles; ++i) {
    if ((mask & (1u << i)) == 0) continue;
    written[i] = std::string(takePart(input));
    const fs::path path = i < kLocaleFields.size() ? root / localeName / fieldFile(kLocaleFields[i])
                                                   : root / "review_information" / "email_address.txt";
    writeFile(path, *written[i]);
    anyLocaleFile = anyLocaleFile || i < kLocaleFields.size();
    allValid = allValid && !corvane::firstInvalidUtf8Offset(*written[i]);
  }

  const bool isLocale = StoreFacts::appStore().isLocale(localeName);
  try {
    const ListingFolder folder = readListingFolder(root, StoreFacts::appStore());
    FUZZ_CHECK(isLocale && anyLocaleFile && allValid);
    FUZZ_CHECK(folder.locales.size() == 1 && folder.locales[0].locale == localeName);
    std::uintmax_t bytes = 0;
    for (std::size_t i = 0; i < kLocaleFields.size(); ++i) {
      const auto& text = folder.locales[0].texts[i].text;
      const auto& frame = folder.locales[0].texts[i].frame;
      FUZZ_CHECK(text.has_value() == written[i].has_value());
      if (!text) continue;
      bytes += written[i]->size();
      // The text and its frame give back the file byte for byte, and the frame holds no text.
      FUZZ_CHECK(frame.around(*text) == *written[i]);
      FUZZ_CHECK(!text->ends_with('\n') && !text->ends_with('\r'));
      FUZZ_CHECK(frame.byteOrderMark == written[i]->starts_with(kByteOrderMark));
    }
    const auto& email = written[kLocaleFields.size()];
    const auto& review = folder.sharedText(ListingField::reviewEmail).text;
    FUZZ_CHECK(review.has_value() == email.has_value());
    if (email) {
      bytes += email->size();
      std::string expected = *email;
      (void)unframe(expected);
      FUZZ_CHECK(*review == expected);
    }
    FUZZ_CHECK(folder.bytesRead == bytes);

    // The checks on what was read, and the fixes they offer, applied as a dry run.
    CheckOptions options;
    options.directory = root;
    options.fix = true;
    options.dryRun = true;
    Checker checker(options);
    checker.applyFixes(checker.plannedFixes());
    const CheckReport report = checker.report();
    FUZZ_CHECK(report.locales.size() == 1);
  } catch (const InputError&) {
    // Refusing is right only for a folder the reader documents as bad.
    FUZZ_CHECK(!isLocale || !anyLocaleFile || !allValid);
    return 0;
  }
  writeFixesForReal(root, root / localeName, mask, seed);
  return 0;
}
