#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "corvane/store/rule_level.hpp"

namespace corvane::store {

class StoreFacts;

// A team's configuration file, usually `.corvane.toml` in the metadata folder, is TOML:
//
//   first-version = true            # optional boolean: this is the app's first version, so
//                                   # release notes are not required
//   extra-locales = ["sl", "en-IN"] # optional array of strings: locale codes the store has
//                                   # added that the built-in list lacks
//   capital-brands = ["NASA", "IKEA"]  # optional array of strings: names written in capitals
//                                   # as the brand is; Google Play's title.capitals rule
//                                   # ignores them, exactly as written
//
//   [rules]                         # rule identifier = level: "off", "blocker",
//   "name.length" = "optimization"  # "rejection-risk", "optimization" or "opportunity";
//   content.claim = "off"           # a quoted and an unquoted dotted key name the same rule
//
//   [words]
//   forbidden = ["beta", "early access"]  # extra forbidden words and phrases
//   allowed = ["Top Hat"]                 # a match inside one of these is never reported
//
//   [locales.de-DE.rules]           # per-locale settings: the keys of [rules] and [words],
//   "content.claim" = "opportunity"  # under [locales.<code>.rules] and [locales.<code>.words]
//   [locales.de-DE.words]
//   allowed = ["Best"]
//
// Every key is optional; any other key is an error.

/// Extra forbidden words and phrases, and allowed ones: a match that lies inside an
/// allowed phrase is never reported.
struct WordSettings {
  std::vector<std::string> forbidden;
  std::vector<std::string> allowed;

  friend bool operator==(const WordSettings&, const WordSettings&) = default;
};

/// The rule levels and words set in one scope: the whole file or one locale.
struct RuleSettings {
  /// Rule identifier → level; std::nullopt means the rule is off. Rules not listed keep
  /// the level of the enclosing scope.
  std::map<std::string, std::optional<RuleLevel>, std::less<>> levels;
  WordSettings words;

  friend bool operator==(const RuleSettings&, const RuleSettings&) = default;
};

/// A listing configuration. A default-constructed one is the built-in default: every rule
/// at its own level, no extra words, no extra locales.
struct ListingConfiguration {
  /// The file it was read from; nothing for the built-in default.
  std::optional<std::filesystem::path> source;
  /// `first-version`: whether this is the app's first version; nothing when not set.
  std::optional<bool> firstVersion;
  /// `extra-locales`, in file order.
  std::vector<std::string> extraLocales;
  /// `capital-brands`, in file order: names the brand writes in capitals, which do not make a
  /// title ALL CAPS.
  std::vector<std::string> capitalBrands;
  /// `[rules]` and `[words]`.
  RuleSettings global;
  /// `[locales.<code>]`, by locale code.
  std::map<std::string, RuleSettings, std::less<>> locales;

  /// The level of `rule` in `locale`: the locale's setting, else the global one, else
  /// `defaultLevel`; std::nullopt when the rule is off there.
  std::optional<RuleLevel> levelOf(std::string_view rule, std::string_view locale, RuleLevel defaultLevel) const;

  /// The global word settings followed by `locale`'s own (both lists are concatenated).
  WordSettings wordsFor(std::string_view locale) const;

  friend bool operator==(const ListingConfiguration&, const ListingConfiguration&) = default;
};

/// The largest configuration file `readListingConfiguration` reads, in bytes (1 MiB).
inline constexpr std::size_t kMaxListingConfigurationSize = std::size_t{1} << 20;

/// A configuration file that cannot be used. `what()` is one line,
/// "<file>:<line>: <problem>", with ":<column>" after the line where the position is
/// exact (syntax errors) and with neither for problems with the whole file (missing,
/// unreadable, too large). The file is named as it was given.
class ConfigurationError : public std::runtime_error {
 public:
  /// An error about `key` (a dotted TOML path, empty when none) at `line` and `column`
  /// (1-based; 0 when unknown) of `file`.
  ConfigurationError(std::filesystem::path file, std::size_t line, std::size_t column, std::string key,
                     std::string_view problem);

  /// The configuration file, as given to `readListingConfiguration`.
  const std::filesystem::path& file() const noexcept { return file_; }
  /// The 1-based line of the problem; 0 for a problem with the whole file.
  std::size_t line() const noexcept { return line_; }
  /// The 1-based column of the problem; 0 when only the line is known.
  std::size_t column() const noexcept { return column_; }
  /// The offending key as a dotted TOML path, e.g. `rules."name.length"` or
  /// `locales.de-DE.words.allowed[2]` (an array element); empty for problems that concern no key (syntax errors,
  /// a missing file).
  const std::string& key() const noexcept { return key_; }

 private:
  std::filesystem::path file_;
  std::size_t line_;
  std::size_t column_;
  std::string key_;
};

/// Reads and checks the configuration `file` (format above); it only reads. `knownRules`
/// are all rule identifiers; `knownLocales` the store's locale codes, to which the file's
/// `extra-locales` are added before its `[locales.<code>]` sections are checked. Throws
/// ConfigurationError for a missing, unreadable or oversized file, invalid UTF-8 or TOML,
/// an unknown key, rule, level or locale (suggesting a close known one), a value of the
/// wrong type, and an empty or blank word. The first problem in file order is reported.
ListingConfiguration readListingConfiguration(const std::filesystem::path& file,
                                              std::span<const std::string_view> knownRules,
                                              std::span<const std::string> knownLocales);

/// The configuration a listing at `root` follows: the given `file`, else `root/.corvane.toml`
/// when there is one, else the built-in default. Its rules are checked against `facts`' rule
/// catalog and its locales against `facts`' locale codes (see `readListingConfiguration`).
/// Throws ConfigurationError; only reads.
ListingConfiguration loadListingConfiguration(const std::filesystem::path& root,
                                              const std::optional<std::filesystem::path>& file,
                                              const StoreFacts& facts);

}  // namespace corvane::store
