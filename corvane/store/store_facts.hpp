#pragma once

#include "corvane/store/listing_field.hpp"
#include "corvane/store/store_id.hpp"

#include <array>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::store {

/// What the store says about one field: the label people see, the limit in user-perceived
/// characters, and whether the store requires it.
struct FieldFacts {
  std::string label;
  std::optional<std::int64_t> limit;
  bool required = false;
};

/// One store's limits, locale codes, categories and word lists, read from the data files in
/// the library's resource folder (`store/app-store/` or `store/google-play/`, and the word
/// lists every store shares in `store/words/`), so that a change of the store's lists is an
/// edit of data. Immutable once loaded; safe to share between threads.
class StoreFacts {
 public:
  /// The App Store's facts in the installed resource folder, loaded on first use. Throws
  /// `std::runtime_error` naming the file when the data cannot be read.
  static const StoreFacts& appStore();

  /// Google Play's facts in the installed resource folder, loaded on first use. Throws
  /// `std::runtime_error` naming the file when the data cannot be read.
  static const StoreFacts& googlePlay();

  /// `appStore()` or `googlePlay()`.
  static const StoreFacts& of(StoreId store);

  /// Loads `store`'s facts from `folder` (a copy of the resource folder's `store/`). Throws
  /// `std::runtime_error` naming the file that is missing or malformed.
  static StoreFacts load(const std::filesystem::path& folder, StoreId store = StoreId::appStore);

  /// The store these facts describe.
  StoreId store() const { return store_; }

  /// A number that no other `load` in this process gives (copies keep it), so that what is
  /// built from the facts can be kept beyond them without being taken for another load's.
  std::uint64_t identity() const { return identity_; }

  /// The store's localized fields, in report order (`kLocaleFields` for the App Store,
  /// `kPlayLocaleFields` for Google Play).
  std::span<const ListingField> localeFields() const;

  /// The store's shared fields, in report order (`kSharedFields` for the App Store; Google
  /// Play has none).
  std::span<const ListingField> sharedFields() const;

  /// Whether the store's layout has a `default/` folder whose files stand in for every locale
  /// lacking them (the App Store's has; Google Play's has not).
  bool hasDefaultFolder() const { return store_ == StoreId::appStore; }

  /// The field's label, limit and requirement; an empty label, no limit and not required for
  /// a field of another store.
  const FieldFacts& field(ListingField field) const { return fields_[fieldIndex(field)]; }

  /// The store's locale codes ("en-US", "zh-Hans", ...), in the data file's order.
  const std::vector<std::string>& locales() const { return locales_; }

  /// Whether `code` is one of `locales()`, exactly as written there (letter case counts).
  bool isLocale(std::string_view code) const;

  /// The locale code a folder called `name` was most likely meant to be: the closest by
  /// spelling ("en_us" and "en-US-x1" give "en-US"), else the first code of the same
  /// language ("pt" gives "pt-BR"); nothing when no code is close.
  std::optional<std::string> closestLocale(std::string_view name) const;

  /// Whether a top-level folder called `name` holds shared data and never a locale
  /// ("review_information", "screenshots", "default", ...).
  bool isSharedFolder(std::string_view name) const;

  /// Whether `value` is a category the store accepts, in either notation, with or
  /// without the "MZGenre." prefix of the older one.
  bool isCategory(std::string_view value) const;

  /// Every category value of the data file, without prefix; empty for a store without
  /// category files.
  const std::vector<std::string>& categories() const { return categories_; }

  /// Hosts that mark an address as a placeholder ("example.com"); a subdomain of one is a
  /// placeholder too.
  const std::vector<std::string>& placeholderDomains() const { return placeholderDomains_; }

  /// Whether `host` (lower case) is a placeholder host or a subdomain of one.
  bool isPlaceholderHost(std::string_view host) const;

  /// Text emoticons (":)", "<3") the store refuses where it refuses emoji; empty for a store
  /// without such a list.
  const std::vector<std::string>& emoticons() const { return emoticons_; }

  /// The words and phrases of word list `family` ("other-platform", "placeholder",
  /// "future-feature", "claim", "profanity", and the store's own such as "title-claim") that
  /// apply to `locale`: the family's list for
  /// every language, then the locale's own language's, then English (English text turns up
  /// in every locale). Empty for an unknown family. The views point into these facts.
  std::vector<std::string_view> words(std::string_view family, std::string_view locale) const;

  /// The language whose word lists `words` takes for `locale`: its own language when any
  /// family has a list for it, else "en", as English is all such a locale gets. Two locales
  /// with the same answer get the same words.
  std::string_view wordListLanguage(std::string_view locale) const;

 private:
  StoreFacts() = default;

  StoreId store_ = StoreId::appStore;
  std::uint64_t identity_ = 0;
  std::array<FieldFacts, kFieldCount> fields_;
  std::vector<std::string> locales_;
  std::vector<std::string> sharedFolders_;
  std::vector<std::string> categories_;
  std::vector<std::string> placeholderDomains_;
  std::vector<std::string> emoticons_;
  // family -> language ("all", "en", "de", ...) -> entries
  std::map<std::string, std::map<std::string, std::vector<std::string>>, std::less<>> words_;
};

/// The language of a locale code: the part before the first '-' ("de" for "de-DE").
std::string_view languageOf(std::string_view locale) noexcept;

}  // namespace corvane::store
