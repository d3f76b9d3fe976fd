// The checker's folder reader (and the checks behind it) on arbitrary folders. The input
// is laid out as files of one locale folder in a private temporary folder:
//
//   byte 0-1   which of the eleven files exist (bit i: the i-th locale file, bit 10: the
//              review address in review_information/email_address.txt)
//   then       the locale folder's name, up to the first NUL byte
//   then       the contents of each existing file in turn, separated by NUL bytes
//
// The reader must either return exactly what was written (less trailing line breaks) or
// refuse the folder with an InputError for a documented reason.
#include "checker.hpp"

#include "corvane/store/input_error.hpp"
#include "corvane/store/listing_folder.hpp"
#include "corvane/store/store_facts.hpp"

#include "corvane/support/print_line.hpp"
#include "corvane/text/characters.hpp"
#include "fuzz_check.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

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

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  // The entities' progress lines, two per input, would only fill the fuzzer's log.
  corvane::setLineOutput([](std::string_view) {});
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2 || size > kMaxInput) return 0;
  const unsigned mask = data[0] | (static_cast<unsigned>(data[1]) << 8);
  std::string_view input(reinterpret_cast<const char*>(data) + 2, size - 2);

  // Folder names that the file system cannot hold fall back to a plain locale.
  std::string localeName(takePart(input));
  if (localeName.empty() || localeName.size() > 32 || localeName == "." || localeName == ".." ||
      localeName == "review_information" || localeName.find('/') != std::string::npos) {
    localeName = "en-US";
  }

  const fs::path root = workFolder() / "metadata";
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
  }
  return 0;
}
