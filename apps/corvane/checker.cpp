#include "checker.hpp"

#include "metadata_submission.hpp"
#include "staged_file.hpp"

#include "corvane/completion/aggregate_completion_guide.hpp"

#include <algorithm>

namespace corvane::cli {

std::string fileContents(const FixChange& change, bool endsWithLineBreak) {
  return endsWithLineBreak ? change.after + "\n" : change.after;
}

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

void Checker::applyFixes(const std::vector<FixChange>& fixes) {
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
  std::vector<std::pair<std::filesystem::path, std::string>> replacements;
  for (const auto& change : fixes) {
    const auto& locale = **std::ranges::find_if(locales_, [&](const auto& l) { return l->locale() == change.locale; });
    const bool lineBreak = locale.metadata().endsWithLineBreak[static_cast<std::size_t>(change.field)];
    // Through a link inside the folder, the shared target is updated, not the link replaced.
    replacements.emplace_back(std::filesystem::canonical(change.path), fileContents(change, lineBreak));
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
