#include "store_listing_entity.hpp"

#include "corvane/support/url.hpp"
#include "corvane/text/characters.hpp"

#include <functional>

namespace corvane::cli {
namespace {

using Action = ActionGuidance::Action;
using ActionType = ActionGuidance::Action::ActionType;

// The store opens these links from the product page: they must be absolute, and plain
// http is accepted today but flagged by review, so it is a medium rejection risk.
ValidationResult webAddressCheck(const std::string& field, const std::string& value) {
  const std::string_view text = trimmed(value);
  if (text.empty()) return ValidationResult::valid();
  const auto url = Url::parse(text);
  // Schemes are case-insensitive; an address needs a host after the scheme ("https://" alone
  // parses, but leads nowhere).
  const auto separator = text.find("://");
  const bool hasSeparator = separator != std::string_view::npos;
  const std::string scheme = hasSeparator ? lowercased(text.substr(0, separator)) : std::string();
  const std::string_view rest = hasSeparator ? text.substr(separator + 3) : std::string_view();
  const bool https = scheme == "https";
  const bool hasHost = !rest.empty() && rest.find_first_of("/?#") != 0;
  if (!url || !(https || scheme == "http") || !hasHost) {
    return ValidationResult::invalidFormat(field, "an absolute https:// address");
  }
  if (https) return ValidationResult::valid();
  return ValidationResult(
      false, ValidationSeverity::error, field + " should use https://", "Replace http:// with https://",
      "App Review flags pages that are not served over a secure connection",
      BusinessImpact::rejectionRisk(BusinessImpact::RejectionSeverity::medium),
      ActionGuidance{.primaryAction = Action{.title = "Switch to https",
                                             .description = "Serve the page over https and update the address",
                                             .type = ActionType::manual({"Make the page available over https",
                                                                         "Replace http:// with https:// in the file"})},
                     .alternativeActions = {},
                     .helpURL = std::nullopt,
                     .estimatedTime = "5 minutes"},
      std::nullopt);
}

ValidationCheck webAddress(std::string field) {
  return ValidationCheck::custom(
      [field = std::move(field)](const std::string& value) { return webAddressCheck(field, value); });
}

Tracked<std::string> marketingUrlField() {
  // A custom check has the last word, so the empty case is answered here rather than by guidance.
  return Tracked<std::string>(
      "", {[](const std::string& value) {
        if (!trimmed(value).empty()) return webAddressCheck("Marketing URL", value);
        return ValidationResult::opportunity(
            "Add a marketing URL", "A marketing page tells users more than the listing can",
            Action{.title = "Add a marketing URL",
                   .description = "Link to a page that presents the app",
                   .type = ActionType::manual({"Write the page's address into marketing_url.txt"})});
      }});
}

}  // namespace

StoreListingEntity::StoreListingEntity(std::string locale)
    : locale_(std::move(locale)),
      supportUrl_(Tracked<std::string>::supportURLDSL("")),
      marketingUrl_(marketingUrlField()),
      privacyUrl_("", "Privacy policy URL", ValidationRequirement::required, {webAddress("Privacy policy URL")}),
      promotionalText_("", "Promotional text", ValidationRequirement::optional, {ValidationCheck::tooLong(170)},
                       ValidationGuidance::missingOptional(
                           "promotional text", "Promotional text can announce news without a new app version")),
      releaseNotes_("", "Release notes", ValidationRequirement::optional, {ValidationCheck::tooLong(4000)}) {}

std::string StoreListingEntity::entityId() const {
  return "store-listing-" + locale_;
}

std::string StoreListingEntity::entityName() const {
  return "Store listing (" + locale_ + ")";
}

bool StoreListingEntity::hasUnsavedChanges() const {
  for (const auto* property : properties()) {
    if (property->hasChanged()) return true;
  }
  return false;
}

std::string StoreListingEntity::changeDescription() const {
  std::string description;
  for (const auto* property : properties()) {
    if (!property->hasChanged()) continue;
    if (!description.empty()) description += "; ";
    description += property->changeDescription();
  }
  return description.empty() ? "No changes" : description;
}

ValidationResult StoreListingEntity::validationResult() const {
  std::vector<ValidationResult> verdicts;
  for (const auto* property : properties()) verdicts.push_back(property->validate());
  return ValidationResult::combine(verdicts);
}

boost::asio::awaitable<void> StoreListingEntity::saveChanges() {
  for (auto* property : properties()) property->markSaved();
  co_return;
}

void StoreListingEntity::discardChanges() {
  for (auto* property : properties()) property->discardChanges();
}

std::vector<TrackableEntity::StoredProperty> StoreListingEntity::storedProperties() {
  return {{"_supportUrl", &supportUrl_},
          {"_marketingUrl", &marketingUrl_},
          {"_privacyUrl", &privacyUrl_},
          {"_promotionalText", &promotionalText_},
          {"_releaseNotes", &releaseNotes_}};
}

std::array<Tracked<std::string>*, 5> StoreListingEntity::properties() {
  return {&supportUrl_, &marketingUrl_, &privacyUrl_, &promotionalText_, &releaseNotes_};
}

std::array<const Tracked<std::string>*, 5> StoreListingEntity::properties() const {
  return {&supportUrl_, &marketingUrl_, &privacyUrl_, &promotionalText_, &releaseNotes_};
}

}  // namespace corvane::cli
