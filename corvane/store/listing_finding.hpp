#pragma once

#include "corvane/results/validation_result.hpp"
#include "corvane/store/listing_field.hpp"
#include "corvane/store/phrase_matcher.hpp"
#include "corvane/store/rule_level.hpp"

#include <optional>
#include <string>

namespace corvane::store {

/// One rule's verdict on one field: which rule, at what level, where in the text, and the
/// library's own verdict (message, business reason and impact, guidance, display advice),
/// whose severity and impact follow the level.
struct ListingFinding {
  /// The rule's stable identifier ("name.length", "content.other-platform").
  std::string rule;
  /// The level the rule has here (its default or the configuration's).
  RuleLevel level;
  /// The field judged; nothing for a finding about the folder itself (`locale.unknown`).
  std::optional<ListingField> field;
  /// The file the text came from, relative to the metadata folder ("de-DE/name.txt",
  /// "default/description.txt", "copyright.txt"; a folder name for `locale.unknown`).
  std::string file;
  /// Where in the text the finding is, when it is about a place in it.
  std::optional<TextPosition> position;
  /// The verdict.
  ValidationResult verdict;
  /// The field's text once this finding's auto-fix is applied, when it offers one.
  std::optional<std::string> fixedText;
};

}  // namespace corvane::store
