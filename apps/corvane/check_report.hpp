#pragma once

#include "finding.hpp"
#include "fix_change.hpp"

#include "corvane/completion/completion_item.hpp"
#include "corvane/completion/completion_progress.hpp"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace corvane::cli {

/// What the checker found in one locale.
struct LocaleReport {
  /// The locale's name.
  std::string locale;
  /// Its verdicts, blockers first, then by file.
  std::vector<Finding> findings;
  /// Its checklist, one item per file.
  std::vector<CompletionItem> checklist;
};

/// Everything one run of `corvane check` reports; the text and JSON writers render it.
struct CheckReport {
  /// The folder checked.
  std::filesystem::path directory;
  /// Every locale, in name order.
  std::vector<LocaleReport> locales;
  /// The auto-fixes applied (or, on a dry run, that would be).
  std::vector<FixChange> fixes;
  /// Whether the fixes were written to disk.
  bool fixesWritten = false;
  /// The completion guide's counts over every locale's checklist.
  CompletionProgress progress{};
  /// The completion guide's status, as the library describes it ("hasBlockingIssues(count: 1)").
  std::string completionStatus;
  /// Whether the completion guide would let the submission complete.
  bool canComplete = false;
  /// The most important item still open, if any.
  std::optional<CompletionItem> nextAction;

  /// The number of findings of `category` over all locales; a finding on shared data that
  /// every locale lists (the review address, the version) counts once.
  std::int64_t count(FindingCategory category) const;
  /// Whether anything blocks submission; the exit status is 1 exactly then.
  bool blocked() const { return count(FindingCategory::blocker) > 0; }
};

}  // namespace corvane::cli
