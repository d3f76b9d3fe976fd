#include "corvane/store/listing_configuration.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <initializer_list>
#include <system_error>
#include <utility>

#include <toml++/toml.h>

#include "corvane/store/closest_match.hpp"
#include "corvane/store/rule_catalog.hpp"
#include "corvane/store/store_facts.hpp"
#include "corvane/text/characters.hpp"

namespace corvane::store {

std::optional<RuleLevel> ListingConfiguration::levelOf(std::string_view rule, std::string_view locale,
                                                       RuleLevel defaultLevel) const {
  if (const auto settings = locales.find(locale); settings != locales.end()) {
    if (const auto level = settings->second.levels.find(rule); level != settings->second.levels.end()) {
      return level->second;
    }
  }
  if (const auto level = global.levels.find(rule); level != global.levels.end()) return level->second;
  return defaultLevel;
}

WordSettings ListingConfiguration::wordsFor(std::string_view locale) const {
  WordSettings words = global.words;
  if (const auto settings = locales.find(locale); settings != locales.end()) {
    const WordSettings& own = settings->second.words;
    words.forbidden.insert(words.forbidden.end(), own.forbidden.begin(), own.forbidden.end());
    words.allowed.insert(words.allowed.end(), own.allowed.begin(), own.allowed.end());
  }
  return words;
}

namespace {

std::string locationMessage(const std::filesystem::path& file, std::size_t line, std::size_t column,
                            std::string_view problem) {
  std::string message = file.string();
  if (line > 0) message += ':' + std::to_string(line);
  if (line > 0 && column > 0) message += ':' + std::to_string(column);
  message += ": ";
  message += problem;
  // Keys, paths and the parser's descriptions may hold line breaks; the message stays one line.
  std::replace_if(
      message.begin(), message.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
  return message;
}

}  // namespace

ConfigurationError::ConfigurationError(std::filesystem::path file, std::size_t line, std::size_t column,
                                       std::string key, std::string_view problem)
    : std::runtime_error(locationMessage(file, line, column, problem)),
      file_(std::move(file)),
      line_(line),
      column_(line > 0 ? column : 0),
      key_(std::move(key)) {}

namespace {

constexpr std::string_view kLevelChoices = "off, blocker, rejection-risk, optimization or opportunity";

std::string singleQuoted(std::string_view name) {
  std::string quoted;
  quoted.reserve(name.size() + 2);
  quoted.append(1, '\'').append(name).append(1, '\'');
  return quoted;
}

// One segment of a dotted key path, quoted as TOML requires when it is not a bare key.
std::string keySegment(std::string_view name) {
  const bool bare = !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_';
  });
  if (bare) return std::string(name);
  std::string segment = "\"";
  for (const char c : name) {
    const auto code = static_cast<unsigned char>(c);
    if (code < 0x20 || code == 0x7F) {
      std::array<char, 7> escape{};
      std::snprintf(escape.data(), escape.size(), "\\u%04X", code);
      segment += escape.data();
    } else {
      if (c == '"' || c == '\\') segment += '\\';
      segment += c;
    }
  }
  return segment + '"';
}

std::string childKey(std::string_view parent, std::string_view name) {
  return parent.empty() ? keySegment(name) : std::string(parent) + '.' + keySegment(name);
}

std::string_view typeName(const toml::node& node) {
  switch (node.type()) {
    case toml::node_type::table:
      return "a table";
    case toml::node_type::array:
      return "an array";
    case toml::node_type::string:
      return "a string";
    case toml::node_type::integer:
      return "an integer";
    case toml::node_type::floating_point:
      return "a floating-point number";
    case toml::node_type::boolean:
      return "a boolean";
    case toml::node_type::date:
      return "a date";
    case toml::node_type::time:
      return "a time";
    case toml::node_type::date_time:
      return "a date-time";
    case toml::node_type::none:
      break;
  }
  return "nothing";
}

// "unknown <kind> '<name>'", with the closest candidate at most two edits away suggested.
// A candidate as far away as `name` is long shares nothing with it and is not suggested.
template <class Candidates>
std::string unknownMessage(std::string_view kind, std::string_view name, const Candidates& candidates) {
  std::string message = "unknown " + std::string(kind) + ' ' + singleQuoted(name);
  std::optional<std::string_view> best;
  std::size_t bestDistance = std::min<std::size_t>(3, name.size());
  for (const auto& candidate : candidates) {
    if (const std::size_t distance = editDistance(name, candidate); distance < bestDistance) {
      best = candidate;
      bestDistance = distance;
    }
  }
  if (best) message += "; did you mean " + singleQuoted(*best) + '?';
  return message;
}

class Reader {
 public:
  Reader(const std::filesystem::path& file, std::span<const std::string_view> knownRules,
         std::span<const std::string> knownLocales)
      : file_(file), knownRules_(knownRules), knownLocales_(knownLocales.begin(), knownLocales.end()) {}

  ListingConfiguration read(const toml::table& root) {
    ListingConfiguration configuration;
    configuration.source = file_;
    // Locale sections are checked against extra-locales wherever it is written, so its codes
    // are gathered first; its types are checked with everything else below.
    if (const auto* extra = root.get_as<toml::array>("extra-locales")) {
      for (const auto& code : *extra) {
        if (const auto* text = code.as_string()) knownLocales_.push_back(text->get());
      }
    }
    for (const auto& [key, node] : root) {
      const std::string_view name = key.str();
      if (name == "first-version") {
        if (const auto* flag = node.as_boolean()) {
          configuration.firstVersion = flag->get();
        } else {
          reportValue(node, "first-version", "must be true or false, not " + std::string(typeName(node)));
        }
      } else if (name == "extra-locales") {
        configuration.extraLocales = readStrings(node, "extra-locales");
      } else if (name == "capital-brands") {
        configuration.capitalBrands = readStrings(node, "capital-brands");
      } else if (name == "locales") {
        readLocales(node, configuration);
      } else if (!readSetting(key, node, "", configuration.global)) {
        reportUnknownKey(key, "", {"first-version", "extra-locales", "capital-brands", "rules", "words", "locales"});
      }
    }
    return configuration;
  }

  // Throws the first problem in file order, if there is one.
  void throwFirstProblem() const {
    const auto first = std::min_element(problems_.begin(), problems_.end(),
                                        [](const Problem& a, const Problem& b) { return a.position < b.position; });
    if (first != problems_.end()) throw ConfigurationError(file_, first->position.line, 0, first->key, first->text);
  }

 private:
  struct Problem {
    toml::source_position position;
    std::string key;
    std::string text;
  };

  void report(const toml::source_region& where, std::string key, std::string text) {
    problems_.push_back({where.begin, std::move(key), std::move(text)});
  }

  // A problem with a key's value; the message starts with the key.
  void reportValue(const toml::node& value, const std::string& key, std::string_view problem) {
    report(value.source(), key, key + ": " + std::string(problem));
  }

  void reportUnknownKey(const toml::key& key, std::string_view parent, std::initializer_list<std::string_view> known) {
    report(key.source(), childKey(parent, key.str()), unknownMessage("key", key.str(), known));
  }

  const toml::table* tableAt(const toml::node& node, const std::string& path) {
    const auto* table = node.as_table();
    if (!table) reportValue(node, path, "must be a table, not " + std::string(typeName(node)));
    return table;
  }

  // Reads `rules` or `words` in a section whose own path is `parent`; false for other keys.
  bool readSetting(const toml::key& key, const toml::node& node, std::string_view parent, RuleSettings& settings) {
    if (key.str() == "rules") {
      readRules(node, childKey(parent, "rules"), settings);
    } else if (key.str() == "words") {
      readWords(node, childKey(parent, "words"), settings.words);
    } else {
      return false;
    }
    return true;
  }

  void readLocales(const toml::node& node, ListingConfiguration& configuration) {
    const auto* locales = tableAt(node, "locales");
    if (!locales) return;
    for (const auto& [key, value] : *locales) {
      const std::string path = childKey("locales", key.str());
      if (std::find(knownLocales_.begin(), knownLocales_.end(), key.str()) == knownLocales_.end()) {
        report(key.source(), path, unknownMessage("locale", key.str(), knownLocales_));
        continue;
      }
      const auto* section = tableAt(value, path);
      if (!section) continue;
      RuleSettings& settings = configuration.locales[std::string(key.str())];
      for (const auto& [settingKey, setting] : *section) {
        if (!readSetting(settingKey, setting, path, settings)) reportUnknownKey(settingKey, path, {"rules", "words"});
      }
    }
  }

  struct RuleEntry {
    std::string rule;
    const toml::key* key;
    const toml::node* value;
  };

  // An unquoted dotted key reaches us as nested tables; joining the names back gives the
  // rule identifier. A table stops the descent only where its name is already a rule.
  void flattenRules(const toml::table& table, const std::string& prefix, std::vector<RuleEntry>& entries) const {
    for (const auto& [key, value] : table) {
      std::string rule = prefix.empty() ? std::string(key.str()) : prefix + '.' + std::string(key.str());
      if (value.is_table() && !isKnownRule(rule)) {
        flattenRules(*value.as_table(), rule, entries);
      } else {
        entries.push_back({std::move(rule), &key, &value});
      }
    }
  }

  bool isKnownRule(std::string_view rule) const {
    return std::find(knownRules_.begin(), knownRules_.end(), rule) != knownRules_.end();
  }

  void readRules(const toml::node& node, const std::string& path, RuleSettings& settings) {
    const auto* table = tableAt(node, path);
    if (!table) return;
    std::vector<RuleEntry> entries;
    flattenRules(*table, "", entries);
    std::sort(entries.begin(), entries.end(),
              [](const RuleEntry& a, const RuleEntry& b) { return a.key->source().begin < b.key->source().begin; });
    std::map<std::string_view, toml::source_index> lines;  // where each rule was set
    for (const auto& [rule, key, value] : entries) {
      const std::string rulePath = path + '.' + keySegment(rule);
      if (!isKnownRule(rule)) {
        report(key->source(), rulePath, unknownMessage("rule", rule, knownRules_));
        continue;
      }
      // "content.claims" and content.claims are different TOML keys but the same rule.
      if (const auto [first, added] = lines.emplace(rule, key->source().begin.line); !added) {
        report(key->source(), rulePath,
               "rule " + singleQuoted(rule) + " is already set on line " + std::to_string(first->second));
        continue;
      }
      const auto* text = value->as_string();
      if (text && text->get() == "off") {
        settings.levels[rule] = std::nullopt;
      } else if (const auto level = text ? parseRuleLevel(text->get()) : std::nullopt) {
        settings.levels[rule] = level;
      } else {
        reportValue(*value, rulePath,
                    "level must be " + std::string(kLevelChoices) + ", not " +
                        (text ? singleQuoted(text->get()) : std::string(typeName(*value))));
      }
    }
  }

  void readWords(const toml::node& node, const std::string& path, WordSettings& words) {
    const auto* table = tableAt(node, path);
    if (!table) return;
    for (const auto& [key, value] : *table) {
      if (key.str() == "forbidden") {
        words.forbidden = readStrings(value, childKey(path, "forbidden"));
      } else if (key.str() == "allowed") {
        words.allowed = readStrings(value, childKey(path, "allowed"));
      } else {
        reportUnknownKey(key, path, {"forbidden", "allowed"});
      }
    }
  }

  // An array of non-blank strings.
  std::vector<std::string> readStrings(const toml::node& node, const std::string& path) {
    std::vector<std::string> strings;
    const auto* array = node.as_array();
    if (!array) {
      reportValue(node, path, "must be an array of strings, not " + std::string(typeName(node)));
      return strings;
    }
    for (std::size_t index = 0; index < array->size(); ++index) {
      const toml::node& element = *array->get(index);
      const std::string elementPath = path + '[' + std::to_string(index) + ']';
      if (const auto* text = element.as_string(); !text) {
        reportValue(element, elementPath, "must be a string, not " + std::string(typeName(element)));
      } else if (trimmed(text->get()).empty()) {
        reportValue(element, elementPath, "must not be empty or blank");
      } else {
        strings.push_back(text->get());
      }
    }
    return strings;
  }

  const std::filesystem::path& file_;
  std::span<const std::string_view> knownRules_;
  std::vector<std::string> knownLocales_;
  // toml++ keeps a table's keys sorted by name, so problems are gathered and the first one
  // in the file is reported: the one a reader meets first.
  std::vector<Problem> problems_;
};

[[noreturn]] void failToRead(const std::filesystem::path& file, std::string_view problem) {
  throw ConfigurationError(file, 0, 0, {}, problem);
}

// The file's text, at most kMaxListingConfigurationSize bytes of it.
std::string readText(const std::filesystem::path& file) {
  std::error_code ignored;
  if (std::filesystem::is_directory(file, ignored)) failToRead(file, "cannot read the file: it is a folder");
  std::ifstream stream(file, std::ios::binary);
  if (!stream) failToRead(file, "cannot read the file: " + std::generic_category().message(errno));
  // One byte past the limit tells an oversized file apart without trusting its reported size.
  std::string text(kMaxListingConfigurationSize + 1, '\0');
  stream.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (stream.bad()) failToRead(file, "cannot read the file: " + std::generic_category().message(errno));
  text.resize(static_cast<std::size_t>(stream.gcount()));
  if (text.size() > kMaxListingConfigurationSize) failToRead(file, "the file is larger than 1 MiB");
  return text;
}

}  // namespace

ListingConfiguration readListingConfiguration(const std::filesystem::path& file,
                                              std::span<const std::string_view> knownRules,
                                              std::span<const std::string> knownLocales) {
  const std::string text = readText(file);
  toml::table root;
  try {
    root = toml::parse(text, file.string());
  } catch (const toml::parse_error& error) {
    const toml::source_position where = error.source().begin;
    throw ConfigurationError(file, where.line, where.column, {}, error.description());
  }
  Reader reader(file, knownRules, knownLocales);
  ListingConfiguration configuration = reader.read(root);
  reader.throwFirstProblem();
  return configuration;
}

ListingConfiguration loadListingConfiguration(const std::filesystem::path& root,
                                              const std::optional<std::filesystem::path>& file,
                                              const StoreFacts& facts) {
  auto chosen = file;
  std::error_code error;
  if (!chosen && std::filesystem::is_regular_file(root / ".corvane.toml", error)) chosen = root / ".corvane.toml";
  if (!chosen) return {};
  const auto catalog = ruleCatalog(facts);
  std::vector<std::string_view> rules;
  rules.reserve(catalog.size());
  for (const auto& rule : catalog) rules.push_back(rule.id);
  return readListingConfiguration(*chosen, rules, facts.locales());
}

}  // namespace corvane::store
