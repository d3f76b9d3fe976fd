#include "metadata_submission.hpp"

#include <algorithm>

namespace corvane::cli {

MetadataSubmission::MetadataSubmission(std::string name, std::vector<std::shared_ptr<UnifiedChangeTracker>> trackers)
    : name_(std::move(name)), trackers_(std::move(trackers)) {}

std::string MetadataSubmission::entityId() const { return name_; }

bool MetadataSubmission::hasUnsavedChanges() const {
  return std::ranges::any_of(trackers_, [](const auto& tracker) { return tracker->hasUnsavedChanges(); });
}

std::string MetadataSubmission::changeDescription() const {
  std::string description;
  for (const auto& tracker : trackers_) {
    if (!tracker->hasUnsavedChanges()) continue;
    if (!description.empty()) description += "; ";
    description += tracker->changeDescription();
  }
  return description.empty() ? "No changes to submit" : description;
}

boost::asio::awaitable<void> MetadataSubmission::saveChanges() {
  for (const auto& tracker : trackers_) {
    if (tracker->hasUnsavedChanges()) co_await tracker->submitAll();
  }
}

void MetadataSubmission::discardChanges() {
  for (const auto& tracker : trackers_) tracker->discardAll();
}

}  // namespace corvane::cli
