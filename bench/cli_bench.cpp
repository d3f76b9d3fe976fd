// Checking a metadata folder of 40 locales against the least any checker must do: read the
// files and count their characters. Both report bytes per second over the same files.
#include "checker.hpp"
#include "corvane/store/listing_field.hpp"
#include "corvane/store/listing_folder.hpp"
#include "corvane/store/store_facts.hpp"

#include "corvane/support/print_line.hpp"
#include "corvane/text/characters.hpp"

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <stdlib.h>

namespace {

namespace fs = std::filesystem;

// Every locale the store knows (39), as a team shipping everywhere would have.
const std::size_t kLocales = corvane::store::StoreFacts::appStore().locales().size();

void write(const fs::path& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text << '\n';
}

// Prose of about `characters` characters with some accented letters and emoji in it.
std::string prose(std::size_t characters) {
  const std::string words[] = {"notes", "stay", "tidy", "caf\u00E9", "\U0001F600", "across", "every", "device"};
  std::string text;
  for (std::size_t n = 0; corvane::characterCount(text) + 10 < characters; ++n) {
    text += words[n % std::size(words)];
    text += n % 11 == 10 ? "\n" : " ";
  }
  return text;
}

// A temporary folder, removed when the process ends.
struct BenchFolder {
  fs::path path;
  ~BenchFolder() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }
};

// The folder lives as long as the process: every benchmark reads the same files.
const fs::path& folder() {
  static const BenchFolder root{[] {
    std::string pattern = (fs::temp_directory_path() / "corvane-bench-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp");
    const fs::path path = pattern;
    const std::string description = prose(3800);
    const std::string notes = prose(1500);
    for (std::size_t i = 0; i < kLocales; ++i) {
      const fs::path locale = path / corvane::store::StoreFacts::appStore().locales()[i];
      fs::create_directories(locale);
      write(locale / "name.txt", i % 5 == 0 ? "A name that is a good deal longer than thirty" : "Corvane Notes");
      write(locale / "subtitle.txt", "Notes that check themselves");
      write(locale / "description.txt", description);
      write(locale / "keywords.txt", "notes,writing,checklist,drafts,editor,lists");
      write(locale / "support_url.txt", "https://larkspur-notes.app/support");
      write(locale / "marketing_url.txt", "https://larkspur-notes.app/");
      write(locale / "privacy_url.txt", i % 7 == 0 ? "http://larkspur-notes.app/privacy" : "https://larkspur-notes.app/privacy");
      write(locale / "promotional_text.txt", prose(150));
      write(locale / "release_notes.txt", notes);
    }
    fs::create_directories(path / "review_information");
    write(path / "review_information" / "email_address.txt", "review@example.com");
    return path;
  }()};
  return root.path;
}

// The floor: read every locale file and count its characters, nothing else.
void BM_ReadAndCountBaseline(benchmark::State& state) {
  std::int64_t bytes = 0;
  for (auto _ : state) {
    std::size_t characters = 0;
    for (const auto& locale : fs::directory_iterator(folder())) {
      if (!locale.is_directory()) continue;
      for (const auto field : corvane::store::kLocaleFields) {
        std::ifstream stream(locale.path() / corvane::store::fieldFile(field), std::ios::binary);
        const std::string text(std::istreambuf_iterator<char>(stream), {});
        bytes += static_cast<std::int64_t>(text.size());
        characters += corvane::characterCount(text);
      }
    }
    benchmark::DoNotOptimize(characters);
  }
  state.SetBytesProcessed(bytes);
}
BENCHMARK(BM_ReadAndCountBaseline)->Unit(benchmark::kMillisecond);

// Reading the folder as the check does (links checked, `default/` applied, every file
// validated as UTF-8), without judging it: the part of a check that reading alone costs.
void BM_ReadFolder(benchmark::State& state) {
  std::int64_t bytes = 0;
  for (auto _ : state) {
    const auto listing = corvane::store::readListingFolder(folder(), corvane::store::StoreFacts::appStore());
    bytes += static_cast<std::int64_t>(listing.bytesRead);
    benchmark::DoNotOptimize(listing);
  }
  state.SetBytesProcessed(bytes);
}
BENCHMARK(BM_ReadFolder)->Unit(benchmark::kMillisecond);

// The whole check as `corvane check` runs it, up to the report (not its printing).
void BM_CheckFolder(benchmark::State& state) {
  corvane::setLineOutput([](std::string_view) {});
  std::int64_t bytes = 0;
  for (auto _ : state) {
    corvane::cli::CheckOptions options;
    options.directory = folder();
    corvane::cli::Checker checker(options);
    auto report = checker.report();
    bytes += static_cast<std::int64_t>(checker.listing().folder().bytesRead);
    benchmark::DoNotOptimize(report);
  }
  state.SetBytesProcessed(bytes);
  corvane::setLineOutput({});
}
BENCHMARK(BM_CheckFolder)->Unit(benchmark::kMillisecond);

}  // namespace
