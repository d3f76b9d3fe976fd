#pragma once

#include "check_report.hpp"
#include "locale_check.hpp"
#include "metadata_folder.hpp"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace corvane::cli {

/// What `corvane check` was asked to do.
struct CheckOptions {
  /// The metadata folder.
  std::filesystem::path directory;
  /// The version to check, when the folder does not give it.
  std::optional<std::string> appVersion;
  /// Whether to apply the verdicts' auto-fixes.
  bool fix = false;
  /// With `fix`: report the fixes but write nothing.
  bool dryRun = false;
};

/// One run of the checker over a metadata folder: reads it, loads every locale into the
/// library, applies auto-fixes on request and builds the report.
class Checker {
 public:
  /// Reads the folder and loads every locale; throws `InputError` on bad input, before
  /// anything could be written.
  explicit Checker(CheckOptions options);
  Checker(const Checker&) = delete;
  Checker& operator=(const Checker&) = delete;

  /// The folder as read; its locales' texts have moved into the checks.
  const MetadataFolder& folder() const { return folder_; }

  /// The auto-fixes the current verdicts offer, over all locales.
  std::vector<FixChange> plannedFixes() const;

  /// Applies `fixes` as edits and, unless this is a dry run, writes the changed files and
  /// marks the edits saved; a dry run discards them again, so the report describes the
  /// files as they are. Every new file is written beside its old one before any replaces
  /// it, so when one cannot be written (`InputError`), no file has changed. Fixes of fields
  /// that share one file through links must agree on its contents, or nothing is applied
  /// (`InputError`), in a dry run too.
  void applyFixes(const std::vector<FixChange>& fixes);

  /// The report on the current state, with the checklist filed in an
  /// `AggregateCompletionGuide`.
  CheckReport report() const;

 private:
  CheckOptions options_;
  MetadataFolder folder_;
  std::vector<std::unique_ptr<LocaleCheck>> locales_;
  std::vector<FixChange> appliedFixes_;
  bool fixesWritten_ = false;
};

}  // namespace corvane::cli
