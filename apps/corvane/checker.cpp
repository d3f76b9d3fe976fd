#include "checker.hpp"

#include "input_error.hpp"
#include "metadata_submission.hpp"
#include "staged_file.hpp"

#include "corvane/completion/aggregate_completion_guide.hpp"

#include <algorithm>

namespace corvane::cli {

Checker::Checker(CheckOptions options) : options_(std::move(options)), folder_(readMetadataFolder(options_.directory)) {
  for (auto& locale : folder_.locales) {
    locales_.push_back(std::make_unique<LocaleCheck>(std::move(locale), folder_.reviewEmail, options_.appVersion));
  }
}

std::vector<FixChange> Checker::plannedFixes() const {
  std::vector<FixChange> fixes;
  for (const auto& locale : locales_) {
    auto planned = locale->plannedFixes();
    fixes.insert(fixes.end(), planned.begin(), planned.end());
  }
  return fixes;
}

namespace {

// The files `fixes` write, by their resolved paths: a link inside the folder updates its
// target rather than being replaced. Fields that share one file through links must agree
// on its new contents, or whichever was written last would undo the others.
std::vector<std::pair<std::filesystem::path, std::string>> replacementsFor(
    const std::vector<FixChange>& fixes, const std::vector<std::unique_ptr<LocaleCheck>>& locales) {
  std::vector<std::pair<std::filesystem::path, std::string>> replacements;
  std::vector<const FixChange*> writers;
  for (const auto& change : fixes) {
    const auto& locale = **std::ranges::find_if(locales, [&](const auto& l) { return l->locale() == change.locale; });
    const auto& frame = locale.metadata().frames[static_cast<std::size_t>(change.field)];
    auto target = std::filesystem::canonical(change.path);
    auto contents = frame.around(change.after);
    const auto same = std::ranges::find(replacements, target, &std::pair<std::filesystem::path, std::string>::first);
    if (same == replacements.end()) {
      replacements.emplace_back(std::move(target), std::move(contents));
      writers.push_back(&change);
    } else if (same->second != contents) {
      const auto& other = *writers[static_cast<std::size_t>(same - replacements.begin())];
      throw InputError(change.path.string() + " and " + other.path.string() + " are the same file (" +
                       target.string() + ") and need different fixes; trim it by hand or stop sharing it");
    }
  }
  return replacements;
}

}  // namespace

void Checker::applyFixes(const std::vector<FixChange>& fixes) {
  // Checked before anything changes, so that a dry run foresees the refusal too.
  const auto replacements = replacementsFor(fixes, locales_);
  for (const auto& change : fixes) {
    for (auto& locale : locales_) {
      if (locale->locale() == change.locale) locale->apply(change);
    }
  }
  appliedFixes_ = fixes;
  if (options_.dryRun) {
    for (auto& locale : locales_) locale->discard();
    return;
  }
  replaceFiles(replacements);
  for (auto& locale : locales_) locale->markSaved();
  fixesWritten_ = !fixes.empty();
}

CheckReport Checker::report() const {
  CheckReport report;
  report.directory = options_.directory;
  report.fixes = appliedFixes_;
  report.fixesWritten = fixesWritten_;
  std::vector<CompletionItem> checklist;
  std::vector<std::shared_ptr<UnifiedChangeTracker>> trackers;
  for (const auto& locale : locales_) {
    auto findings = locale->findings();
    auto items = locale->checklistItems(findings);
    checklist.insert(checklist.end(), items.begin(), items.end());
    trackers.push_back(locale->tracker());
    LocaleReport entry{.locale = locale->locale(), .findings = std::move(findings), .checklist = std::move(items)};
    std::ranges::stable_sort(entry.findings, {}, &Finding::category);
    report.locales.push_back(std::move(entry));
  }
  auto guide = AggregateCompletionGuide::create();
  guide->add(std::move(checklist), MetadataSubmission(options_.directory.string(), std::move(trackers)));
  report.progress = guide->completionProgress();
  report.completionStatus = describe(guide->completionStatus());
  report.canComplete = guide->canComplete();
  report.nextAction = guide->nextActionItem();
  return report;
}

}  // namespace corvane::cli
