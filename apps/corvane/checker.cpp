#include "checker.hpp"

#include "corvane/coordination/aggregate_completion_guide.hpp"
#include "corvane/store/input_error.hpp"
#include "corvane/store/listing_folder.hpp"
#include "corvane/store/listing_submission.hpp"
#include "corvane/store/store_facts.hpp"

#include <algorithm>
#include <chrono>

namespace corvane::cli {

const store::StoreFacts& storeFactsFor(const CheckOptions& options) {
  return store::chosenStoreFacts(options.store, options.directory);
}

namespace {

int thisYear() {
  const auto today =
      std::chrono::year_month_day(std::chrono::floor<std::chrono::days>(std::chrono::system_clock::now()));
  return static_cast<int>(today.year());
}

}  // namespace

Checker::Checker(CheckOptions options) : options_(std::move(options)) {
  const auto& facts = storeFactsFor(options_);
  auto configuration = store::loadListingConfiguration(options_.directory, options_.configFile, facts);
  const store::RuleContext context{.firstVersion = options_.firstVersion,
                                   .currentYear = options_.currentYear.value_or(thisYear())};
  listing_ = std::make_unique<store::StoreListing>(options_.directory, facts, std::move(configuration), context);
}

void Checker::applyFixes(const std::vector<store::ListingEdit>& fixes) {
  for (const auto& edit : fixes) listing_->apply(edit);
  appliedFixes_ = fixes;
  try {
    // Checked before anything is written, so that a dry run foresees a refusal too.
    (void)listing_->pendingWrites();
    if (!options_.dryRun) {
      removedLeftovers_ = listing_->removeLeftoverFiles();
      listing_->writeChanges();
    }
  } catch (...) {
    listing_->discardChanges();
    throw;
  }
  if (options_.dryRun) {
    listing_->discardChanges();
    return;
  }
  fixesWritten_ = !fixes.empty();
}

CheckReport Checker::report() const {
  CheckReport report;
  report.directory = options_.directory;
  report.store = listing_->facts().store();
  report.fixes = appliedFixes_;
  report.fixesWritten = fixesWritten_;
  report.removedFiles = removedLeftovers_;
  // Every field of every locale may have an item: room for all of them, so that the items
  // are not moved again as the list grows.
  std::vector<CompletionItem> checklist;
  std::size_t fields = listing_->shared().fields().size() + listing_->folderFindings().size();
  for (const auto& locale : listing_->locales()) fields += locale->fields().size();
  checklist.reserve(fields);
  auto fileReport = [&](const store::ListingEntity& entity, std::string name) {
    auto findings = entity.findings();
    auto items = listing_->checklist(entity, findings);
    checklist.insert(checklist.end(), items.begin(), items.end());
    if (&entity == &listing_->shared()) {
      const auto& folderFindings = listing_->folderFindings();
      findings.insert(findings.begin(), folderFindings.begin(), folderFindings.end());
    }
    std::ranges::stable_sort(findings, {}, &store::ListingFinding::level);
    std::vector<FieldText> texts;
    texts.reserve(entity.fields().size());
    for (const auto field : entity.fields()) {
      texts.push_back(FieldText{.field = field,
                                .file = entity.file(field),
                                .text = entity.text(field),
                                .source = listing_->source(entity.scope(), field)});
    }
    return LocaleReport{.locale = std::move(name),
                        .findings = std::move(findings),
                        .checklist = std::move(items),
                        .texts = std::move(texts)};
  };
  report.locales.reserve(listing_->locales().size());
  for (const auto& locale : listing_->locales()) report.locales.push_back(fileReport(*locale, locale->scope()));
  report.shared = fileReport(listing_->shared(), "shared");
  auto guide = AggregateCompletionGuide::create();
  guide->add(std::move(checklist), store::ListingSubmission(options_.directory.string(), {listing_->tracker()}));
  report.progress = guide->completionProgress();
  report.canComplete = guide->canComplete();
  report.nextAction = guide->nextActionItem();
  return report;
}

}  // namespace corvane::cli
