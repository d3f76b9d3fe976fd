#pragma once

#include "check_report.hpp"

#include "corvane/store/listing_configuration.hpp"
#include "corvane/store/store_facts.hpp"
#include "corvane/store/store_listing.hpp"

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
  /// The configuration file; without one, `.corvane.toml` in the folder when there is one.
  std::optional<std::filesystem::path> configFile;
  /// Whether this is the app's first version (release notes are then not required).
  bool firstVersion = false;
  /// Whether to apply the auto-fixes.
  bool fix = false;
  /// With `fix`: report the fixes but write nothing.
  bool dryRun = false;
  /// The current year for the copyright rules; the system clock's when not given.
  std::optional<int> currentYear;
  /// The store whose layout and rules apply: "appstore", "play", or "auto" to tell by the
  /// folder's files (see `store::detectStore`).
  std::string store = "auto";
};

/// The facts of the store `options` choose, detecting it from the folder for "auto". Throws
/// `store::InputError` for any other value.
const store::StoreFacts& storeFactsFor(const CheckOptions& options);

/// One run of the checker over a metadata folder: reads it into a `store::StoreListing`,
/// applies auto-fixes on request and builds the report.
class Checker {
 public:
  /// Reads the configuration and the folder; throws `store::InputError` or
  /// `store::ConfigurationError` on bad input, before anything could be written.
  explicit Checker(CheckOptions options);
  Checker(const Checker&) = delete;
  Checker& operator=(const Checker&) = delete;

  /// The listing as loaded, with any fixes applied.
  const store::StoreListing& listing() const { return *listing_; }

  /// The store whose layout and rules the check follows.
  store::StoreId store() const { return listing_->facts().store(); }

  /// The auto-fixes the current findings offer.
  std::vector<store::ListingEdit> plannedFixes() const { return listing_->plannedFixes(); }

  /// Applies `fixes` as edits and, unless this is a dry run, writes the changed files; a dry
  /// run discards them again, so the report describes the files as they are. Nothing is
  /// written when any file cannot be (`store::InputError`), in a dry run the same checks run.
  /// A real run first removes what an interrupted earlier run left behind.
  void applyFixes(const std::vector<store::ListingEdit>& fixes);

  /// The files an interrupted earlier run left that `applyFixes` removed, relative to the
  /// folder.
  const std::vector<std::string>& removedLeftovers() const { return removedLeftovers_; }

  /// The report on the current state, with the checklist filed in an
  /// `AggregateCompletionGuide`.
  CheckReport report() const;

 private:
  CheckOptions options_;
  std::unique_ptr<store::StoreListing> listing_;
  std::vector<store::ListingEdit> appliedFixes_;
  std::vector<std::string> removedLeftovers_;
  bool fixesWritten_ = false;
};

}  // namespace corvane::cli
