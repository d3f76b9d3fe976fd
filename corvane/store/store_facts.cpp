#include "corvane/store/store_facts.hpp"

#include "corvane/resources/corvane_resources.hpp"
#include "corvane/store/closest_match.hpp"
#include "corvane/text/characters.hpp"

#include <toml++/toml.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <stdexcept>

namespace corvane::store {
namespace fs = std::filesystem;
namespace {

// One entry a line; a line of "#" or starting with "# " is a comment (so "#1" is an entry);
// blank lines and surrounding spaces are ignored.
std::vector<std::string> readList(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  if (!stream) throw std::runtime_error(path.string() + ": cannot read the store's data file");
  std::vector<std::string> entries;
  std::string line;
  while (std::getline(stream, line)) {
    const auto entry = trimmed(line);
    if (entry.empty() || entry == "#" || entry.starts_with("# ")) continue;
    entries.emplace_back(entry);
  }
  return entries;
}

void readFields(const fs::path& path, std::span<const ListingField> storeFields,
                std::array<FieldFacts, kFieldCount>& fields) {
  toml::table table;
  try {
    table = toml::parse_file(path.string());
  } catch (const toml::parse_error& error) {
    throw std::runtime_error(path.string() + ": " + std::string(error.description()));
  }
  for (const auto field : storeFields) {
    const auto* entry = table[fieldKey(field)].as_table();
    if (entry == nullptr) throw std::runtime_error(path.string() + ": no entry for " + std::string(fieldKey(field)));
    auto& facts = fields[fieldIndex(field)];
    facts.label = (*entry)["label"].value_or(std::string(fieldKey(field)));
    if (auto limit = (*entry)["limit"].value<std::int64_t>()) facts.limit = *limit;
    facts.required = (*entry)["required"].value_or(false);
  }
}

// Reads word lists laid out as <family>/<language>.txt below `folder` into `words`.
void readWordLists(const fs::path& folder,
                   std::map<std::string, std::map<std::string, std::vector<std::string>>, std::less<>>& words) {
  std::error_code error;
  for (const auto& family : fs::directory_iterator(folder, error)) {
    if (!family.is_directory()) continue;
    for (const auto& list : fs::directory_iterator(family.path())) {
      if (list.path().extension() != ".txt") continue;
      auto entries = readList(list.path());
      for (auto& entry : entries) entry = lowercased(entry);
      auto& target = words[family.path().filename().string()][list.path().stem().string()];
      target.insert(target.end(), entries.begin(), entries.end());
    }
  }
  if (error) throw std::runtime_error(folder.string() + ": cannot read the word lists: " + error.message());
}

bool contains(const std::vector<std::string>& list, std::string_view value) {
  return std::ranges::find(list, value) != list.end();
}

}  // namespace

const StoreFacts& StoreFacts::appStore() {
  static const StoreFacts facts = load(CorvaneResources::directory() / "store", StoreId::appStore);
  return facts;
}

const StoreFacts& StoreFacts::googlePlay() {
  static const StoreFacts facts = load(CorvaneResources::directory() / "store", StoreId::googlePlay);
  return facts;
}

const StoreFacts& StoreFacts::of(StoreId store) {
  return store == StoreId::googlePlay ? googlePlay() : appStore();
}

StoreFacts StoreFacts::load(const fs::path& folder, StoreId store) {
  static std::atomic<std::uint64_t> loads{0};
  StoreFacts facts;
  facts.store_ = store;
  facts.identity_ = ++loads;
  const fs::path own = folder / (store == StoreId::googlePlay ? "google-play" : "app-store");
  readFields(own / "fields.toml", facts.localeFields(), facts.fields_);
  readFields(own / "fields.toml", facts.sharedFields(), facts.fields_);
  facts.locales_ = readList(own / "locales.txt");
  facts.sharedFolders_ = readList(own / "shared-folders.txt");
  // Lists only one store has are optional: Play has no categories, the App Store no
  // emoticon list.
  std::error_code error;
  if (fs::exists(own / "categories.txt", error)) facts.categories_ = readList(own / "categories.txt");
  if (fs::exists(own / "emoticons.txt", error)) facts.emoticons_ = readList(own / "emoticons.txt");
  facts.placeholderDomains_ = readList(folder / "placeholder-domains.txt");
  readWordLists(folder / "words", facts.words_);
  if (fs::is_directory(own / "words", error)) readWordLists(own / "words", facts.words_);
  return facts;
}

std::span<const ListingField> StoreFacts::localeFields() const {
  if (store_ == StoreId::googlePlay) return kPlayLocaleFields;
  return kLocaleFields;
}

std::span<const ListingField> StoreFacts::sharedFields() const {
  if (store_ == StoreId::googlePlay) return {};
  return kSharedFields;
}

bool StoreFacts::isLocale(std::string_view code) const {
  return contains(locales_, code);
}

std::optional<std::string> StoreFacts::closestLocale(std::string_view name) const {
  if (auto same = closestMatch(name, locales_, 0)) return same;  // a difference of case or '_' only
  // Among the codes of the same language the closest wins ("en-US-x1" is "en-US", "pt" is
  // "pt-BR"); only then any code that is close by spelling.
  const std::string language = lowercased(name.substr(0, name.find_first_of("-_")));
  std::vector<std::string> sameLanguage;
  std::ranges::copy_if(locales_, std::back_inserter(sameLanguage),
                       [&](const std::string& code) { return lowercased(languageOf(code)) == language; });
  if (auto close = closestMatch(name, sameLanguage, name.size() + 8)) return close;
  return closestMatch(name, locales_, 2);
}

bool StoreFacts::isSharedFolder(std::string_view name) const {
  return contains(sharedFolders_, name);
}

bool StoreFacts::isCategory(std::string_view value) const {
  constexpr std::string_view kGenrePrefix = "MZGenre.";
  if (value.starts_with(kGenrePrefix)) value.remove_prefix(kGenrePrefix.size());
  return !value.empty() && contains(categories_, value);
}

bool StoreFacts::isPlaceholderHost(std::string_view host) const {
  return std::ranges::any_of(placeholderDomains_, [&](const std::string& domain) {
    return host == domain ||
           (host.ends_with(domain) && host.size() > domain.size() && host[host.size() - domain.size() - 1] == '.');
  });
}

std::vector<std::string_view> StoreFacts::words(std::string_view family, std::string_view locale) const {
  std::vector<std::string_view> result;
  const auto lists = words_.find(family);
  if (lists == words_.end()) return result;
  const std::string_view language = languageOf(locale);
  std::vector<std::string_view> parts = {"all", language};
  if (language != "en") parts.push_back("en");
  for (const std::string_view part : parts) {
    const auto list = lists->second.find(std::string(part));
    if (list != lists->second.end()) result.insert(result.end(), list->second.begin(), list->second.end());
  }
  return result;
}

std::string_view StoreFacts::wordListLanguage(std::string_view locale) const {
  const std::string_view language = languageOf(locale);
  const std::string key(language);
  const bool hasOwn = std::ranges::any_of(words_, [&](const auto& family) { return family.second.contains(key); });
  return hasOwn ? language : "en";
}

std::string_view languageOf(std::string_view locale) noexcept {
  return locale.substr(0, locale.find('-'));
}

}  // namespace corvane::store
