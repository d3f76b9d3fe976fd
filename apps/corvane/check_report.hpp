#pragma once

#include "corvane/completion/completion_item.hpp"
#include "corvane/completion/completion_progress.hpp"
#include "corvane/store/listing_finding.hpp"
#include "corvane/store/store_id.hpp"
#include "corvane/store/store_listing.hpp"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace corvane::cli {

/// The four groups a report sorts findings into, most urgent first: the rule levels.
using store::RuleLevel;

/// The group's name in JSON: "blockers", "rejectionRisks", "optimizations" or "opportunities".
std::string_view categoryKey(RuleLevel level) noexcept;

/// One field's text as the report shows it (the HTML report quotes it beside its findings).
struct FieldText {
  /// The field.
  store::ListingField field;
  /// Where the text lives, relative to the folder ("default/description.txt" for a locale
  /// that uses `default/`'s text; the usual file name when there is no file).
  std::string file;
  /// The current text without its file's frame (with any applied fixes).
  std::string text;
  /// Whether the text is the locale's own, `default/`'s, or there is no file.
  store::TextSource source = store::TextSource::none;
};

/// What the checker found in one locale, or in the shared files.
struct LocaleReport {
  /// The locale's code, or "shared".
  std::string locale;
  /// Its findings, most urgent level first, then by field.
  std::vector<store::ListingFinding> findings;
  /// Its checklist, one item per field worth one.
  std::vector<CompletionItem> checklist;
  /// Every field the locale (or the shared files) holds, in field order. The JSON report
  /// leaves the texts out: they are the folder's own files.
  std::vector<FieldText> texts;
};

/// Everything one run of `corvane check` reports; the writers render it.
struct CheckReport {
  /// The folder checked.
  std::filesystem::path directory;
  /// The store whose layout and rules the folder was judged by.
  store::StoreId store = store::StoreId::appStore;
  /// Every locale, in name order.
  std::vector<LocaleReport> locales;
  /// The shared files and the folder itself (unknown locale folders).
  LocaleReport shared;
  /// The auto-fixes applied (or, on a dry run, that would be).
  std::vector<store::ListingEdit> fixes;
  /// Whether the fixes were written to disk.
  bool fixesWritten = false;
  /// The files an interrupted earlier run left that this run removed, relative to the folder.
  std::vector<std::string> removedFiles;
  /// The completion guide's counts over every checklist.
  CompletionProgress progress{};
  /// Whether the completion guide would let the submission complete.
  bool canComplete = false;
  /// The most important item still open, if any.
  std::optional<CompletionItem> nextAction;

  /// The number of findings at `level`; a finding on a file that several locales share
  /// (a `default/` text) counts once.
  std::int64_t count(RuleLevel level) const;
  /// Whether anything blocks submission.
  bool blocked() const { return count(RuleLevel::blocker) > 0; }
  /// Whether a finding is at `threshold` or more urgent (`--fail-on`); the exit status is 1
  /// exactly then.
  bool failsAt(RuleLevel threshold) const;
  /// Every finding once, locales in order and then the shared files; a finding on a file
  /// that several locales share is listed under the first. Points into this report.
  std::vector<const store::ListingFinding*> distinctFindings() const;
};

/// The completion status in words, to follow a colon: "ready to submit", "3 items to finish",
/// "blocked by 2 items".
std::string completionSummary(const CheckReport& report);

}  // namespace corvane::cli
