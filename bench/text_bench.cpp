// Character counting against its limits: a plain byte scan for ASCII, a bare utf8proc
// grapheme loop for everything else, and ICU's character break iterator for comparison.
#include "corvane/text/characters.hpp"

#include <benchmark/benchmark.h>
#include <unicode/brkiter.h>
#include <unicode/utext.h>
#include <utf8proc.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t kDescriptionCharacters = 4000;

// A description of exactly `kDescriptionCharacters` characters: words of prose, and with
// `sprinkled`, about one token in five an emoji, a ZWJ sequence, a flag or a combining mark.
std::string description(bool sprinkled) {
  struct Token {
    std::string text;
    std::size_t characters;
  };
  const std::vector<Token> words = {{"the", 3},     {"app", 3},     {"keeps", 5},    {"your", 4},  {"notes", 5},
                                    {"in", 2},      {"sync", 4},    {"across", 6},   {"every", 5}, {"device,", 7},
                                    {"offline", 7}, {"and", 3},     {"private.", 8}, {"Share", 5}, {"lists", 5},
                                    {"with", 4},    {"friends", 7}, {"today!", 6}};
  // An emoji, a ZWJ family, a skin tone with ZWJ, a skin tone, two flags, a combining acute,
  // precomposed letters, an emoji presentation selector and stacked marks.
  const std::vector<Token> extras = {{"\U0001F600", 1},
                                     {"\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466", 1},
                                     {"\U0001F469\U0001F3FD\u200D\U0001F4BB", 1},
                                     {"\U0001F44D\U0001F3FD", 1},
                                     {"\U0001F1EB\U0001F1F7\U0001F1E9\U0001F1EA", 2},
                                     {"cafe\u0301", 4},
                                     {"Gr\u00FC\u00DFe", 5},
                                     {"\u2764\uFE0F", 1},
                                     {"n\u0303a\u0308\u0323", 2}};
  std::mt19937 random(4000);
  std::string text;
  std::size_t characters = 0;
  for (std::size_t n = 0;; ++n) {
    const bool extra = sprinkled && random() % 5 == 0;
    const Token& token = extra ? extras[random() % extras.size()] : words[random() % words.size()];
    const char separator = n % 12 == 11 ? '\n' : ' ';
    if (characters + token.characters + 1 > kDescriptionCharacters) break;
    text += token.text;
    text += separator;
    characters += token.characters + 1;
  }
  text.append(kDescriptionCharacters - characters, '.');
  return text;
}

const std::string& asciiDescription() {
  static const std::string text = description(false);
  return text;
}

const std::string& mixedDescription() {
  static const std::string text = description(true);
  return text;
}

bool checkInput(benchmark::State& state, const std::string& text) {
  if (corvane::characterCount(text) == kDescriptionCharacters) return true;
  state.SkipWithError("the generated description does not have the intended length");
  return false;
}

void setProcessed(benchmark::State& state, const std::string& text) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

// The fastest conceivable ASCII count: one per byte that does not continue a sequence.
std::size_t byteScan(std::string_view text) {
  std::size_t count = 0;
  for (const char c : text) count += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  return count;
}

// What every code point costs when utf8proc is asked about every pair.
std::size_t bareUtf8procLoop(std::string_view text) {
  const auto* data = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
  const auto size = static_cast<utf8proc_ssize_t>(text.size());
  std::size_t count = 0;
  std::int32_t previous = -1;
  std::int32_t state = 0;
  for (utf8proc_ssize_t i = 0; i < size;) {
    std::int32_t current = -1;
    const auto length = utf8proc_iterate(data + i, size - i, &current);
    if (length < 0) {
      ++count;
      previous = -1;
      state = 0;
      ++i;
      continue;
    }
    count += previous < 0 || utf8proc_grapheme_break_stateful(previous, current, &state);
    previous = current;
    i += length;
  }
  return count;
}

void characterCount(benchmark::State& state, const std::string& text) {
  if (!checkInput(state, text)) return;
  for (auto _ : state) benchmark::DoNotOptimize(corvane::characterCount(text));
  setProcessed(state, text);
}

void utf8procLoop(benchmark::State& state, const std::string& text) {
  if (!checkInput(state, text)) return;
  for (auto _ : state) benchmark::DoNotOptimize(bareUtf8procLoop(text));
  setProcessed(state, text);
}

void icuBreakIterator(benchmark::State& state, const std::string& text) {
  if (!checkInput(state, text)) return;
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::BreakIterator> characters(
      icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
  UText utext = UTEXT_INITIALIZER;
  std::size_t count = 0;
  for (auto _ : state) {
    utext_openUTF8(&utext, text.data(), static_cast<std::int64_t>(text.size()), &status);
    characters->setText(&utext, status);
    count = 0;
    for (auto at = characters->next(); at != icu::BreakIterator::DONE; at = characters->next()) ++count;
    benchmark::DoNotOptimize(count);
  }
  utext_close(&utext);
  if (U_FAILURE(status) || count != kDescriptionCharacters) state.SkipWithError("ICU disagrees or failed");
  setProcessed(state, text);
}

void byteScanBaseline(benchmark::State& state, const std::string& text) {
  if (!checkInput(state, text)) return;
  for (auto _ : state) benchmark::DoNotOptimize(byteScan(text));
  setProcessed(state, text);
}

void trimmedPadded(benchmark::State& state) {
  const std::string text = " \t\u3000\r\n\u00A0 " + mixedDescription() + "\r\n\u2028  \t";
  for (auto _ : state) benchmark::DoNotOptimize(corvane::trimmed(text));
  setProcessed(state, text);
}

BENCHMARK_CAPTURE(characterCount, ascii, asciiDescription());
BENCHMARK_CAPTURE(characterCount, mixed, mixedDescription());
BENCHMARK_CAPTURE(utf8procLoop, ascii, asciiDescription());
BENCHMARK_CAPTURE(utf8procLoop, mixed, mixedDescription());
BENCHMARK_CAPTURE(icuBreakIterator, ascii, asciiDescription());
BENCHMARK_CAPTURE(icuBreakIterator, mixed, mixedDescription());
BENCHMARK_CAPTURE(byteScanBaseline, ascii, asciiDescription());
BENCHMARK(trimmedPadded);

// The floor under trimming: ASCII white space only, on the same text.
void asciiTrimBaseline(benchmark::State& state) {
  const std::string text = " \t\u3000\r\n\u00A0 " + mixedDescription() + "\r\n\u2028  \t";
  for (auto _ : state) {
    std::string_view view(text);
    view.remove_prefix(std::min(view.find_first_not_of(" \t\r\n"), view.size()));
    view.remove_suffix(view.size() - std::min(view.find_last_not_of(" \t\r\n") + 1, view.size()));
    benchmark::DoNotOptimize(view);
  }
  setProcessed(state, text);
}
BENCHMARK(asciiTrimBaseline);

}  // namespace
