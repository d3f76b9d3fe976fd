#pragma once

#include "corvane/store/listing_field.hpp"

#include <array>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
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

/// The App Store's limits, locale codes, categories and word lists, read from the data files
/// in the library's resource folder (`store/`), so that a change of the store's lists is an
/// edit of data. Immutable once loaded; safe to share between threads.
class StoreFacts {
 public:
  /// The facts in the installed resource folder, loaded on first use. Throws
  /// `std::runtime_error` naming the file when the data cannot be read.
  static const StoreFacts& appStore();

  /// Loads the facts from `folder` (a copy of the resource folder's `store/`). Throws
  /// `std::runtime_error` naming the file that is missing or malformed.
  static StoreFacts load(const std::filesystem::path& folder);

  /// The field's label, limit and requirement.
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

  /// Every category value of the data file, without prefix.
  const std::vector<std::string>& categories() const { return categories_; }

  /// Hosts that mark an address as a placeholder ("example.com"); a subdomain of one is a
  /// placeholder too.
  const std::vector<std::string>& placeholderDomains() const { return placeholderDomains_; }

  /// Whether `host` (lower case) is a placeholder host or a subdomain of one.
  bool isPlaceholderHost(std::string_view host) const;

  /// The words and phrases of word list `family` ("other-platform", "placeholder",
  /// "future-feature", "claim", "profanity") that apply to `locale`: the family's list for
  /// every language, then the locale's own language's, then English (English text turns up
  /// in every locale). Empty for an unknown family. The views point into these facts.
  std::vector<std::string_view> words(std::string_view family, std::string_view locale) const;

  /// The language whose word lists `words` takes for `locale`: its own language when any
  /// family has a list for it, else "en", as English is all such a locale gets. Two locales
  /// with the same answer get the same words.
  std::string_view wordListLanguage(std::string_view locale) const;

 private:
  StoreFacts() = default;

  std::array<FieldFacts, kFieldCount> fields_;
  std::vector<std::string> locales_;
  std::vector<std::string> sharedFolders_;
  std::vector<std::string> categories_;
  std::vector<std::string> placeholderDomains_;
  // family -> language ("all", "en", "de", ...) -> entries
  std::map<std::string, std::map<std::string, std::vector<std::string>>, std::less<>> words_;
};

/// The language of a locale code: the part before the first '-' ("de" for "de-DE").
std::string_view languageOf(std::string_view locale) noexcept;

}  // namespace corvane::store
