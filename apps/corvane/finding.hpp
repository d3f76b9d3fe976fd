#pragma once

#include "corvane/results/validation_result.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace corvane::cli {

/// The four groups a report sorts verdicts into, from most to least urgent.
enum class FindingCategory { blocker, rejectionRisk, optimization, opportunity };

/// The group's name in JSON and text headings: "blockers", "rejectionRisks",
/// "optimizations" or "opportunities".
std::string_view categoryKey(FindingCategory category) noexcept;

/// The group a field verdict belongs to, by the change tracker's own rules (critical
/// failures, blocker impacts and high rejection risks block; medium and low risks and
/// impact-less errors risk rejection; suboptimal impacts and passing warnings are
/// optimisations; opportunity impacts and passing infos are opportunities), except that a
/// passing verdict never blocks or risks rejection: a filled-in required field carries a
/// "Required field" blocker impact only to mark it required. Nothing for a plain pass.
std::optional<FindingCategory> categorize(const ValidationResult& verdict);

/// One verdict worth reporting, with the file it is about.
struct Finding {
  /// The group it is reported in.
  FindingCategory category;
  /// The file, relative to the checked folder ("de-DE/name.txt"), or "--app-version".
  std::string file;
  /// The property that gave the verdict, as property discovery names it ("appName").
  std::string property;
  /// The verdict itself.
  ValidationResult verdict;
};

}  // namespace corvane::cli
