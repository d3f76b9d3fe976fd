#include "corvane/store/listing_submission.hpp"

#include <algorithm>

namespace corvane::store {

ListingSubmission::ListingSubmission(std::string name, std::vector<std::shared_ptr<UnifiedChangeTracker>> trackers)
    : name_(std::move(name)), trackers_(std::move(trackers)) {}

std::string ListingSubmission::entityId() const {
  return name_;
}

bool ListingSubmission::hasUnsavedChanges() const {
  return std::ranges::any_of(trackers_, [](const auto& tracker) { return tracker->hasUnsavedChanges(); });
}

std::string ListingSubmission::changeDescription() const {
  std::string description;
  for (const auto& tracker : trackers_) {
    if (!tracker->hasUnsavedChanges()) continue;
    if (!description.empty()) description += "; ";
    description += tracker->changeDescription();
  }
  return description.empty() ? "No changes to submit" : description;
}

boost::asio::awaitable<void> ListingSubmission::saveChanges() {
  for (const auto& tracker : trackers_) {
    if (tracker->hasUnsavedChanges()) co_await tracker->submitAll();
  }
}

void ListingSubmission::discardChanges() {
  for (const auto& tracker : trackers_) tracker->discardAll();
}

}  // namespace corvane::store
