#include "locale_check.hpp"

#include "corvane/text/characters.hpp"

#include <algorithm>
#include <array>
#include <map>

namespace corvane::cli {
namespace {

using Priority = CompletionItem::Priority;
using ItemStatus = CompletionItem::CompletionStatus;

const std::string kReviewEmailFile = "review_information/email_address.txt";

Priority priorityOf(MetadataField field) {
  switch (field) {
    case MetadataField::name:
      return Priority::critical;
    case MetadataField::subtitle:
    case MetadataField::privacyUrl:
      return Priority::required;
    case MetadataField::description:
    case MetadataField::keywords:
    case MetadataField::supportUrl:
      return Priority::recommended;
    default:
      return Priority::optional;
  }
}

}  // namespace

std::vector<std::string> splitKeywords(std::string_view text) {
  std::vector<std::string> keywords;
  while (!text.empty()) {
    const auto comma = text.find(',');
    const auto keyword = trimmed(text.substr(0, comma));
    if (!keyword.empty()) keywords.emplace_back(keyword);
    if (comma == std::string_view::npos) break;
    text.remove_prefix(comma + 1);
  }
  return keywords;
}

std::string trimToLimit(std::string_view text, std::int64_t limit) {
  return std::string(
      trimmed(prefixCharacters(trimmed(text), static_cast<std::size_t>(std::max<std::int64_t>(limit, 0)))));
}

std::string trimKeywordsToLimit(std::string_view text, std::int64_t limit) {
  std::string cut = trimToLimit(text, limit);
  // `cut` is a prefix of the trimmed text; it ends between keywords when a comma or
  // nothing follows it.
  const std::string_view rest = trimmed(text).substr(cut.size());
  const auto lastComma = cut.rfind(',');
  if (!trimmed(rest).empty() && !trimmed(rest).starts_with(',') && lastComma != std::string::npos) {
    cut.resize(lastComma);
  }
  // No comma or white space dangles at the end ("notes,lists, " is "notes,lists"). `cut`
  // starts with no white space, so trimming only shortens it.
  for (;;) {
    const std::size_t kept = trimmed(cut).size();
    const bool comma = kept > 0 && cut[kept - 1] == ',';
    cut.resize(comma ? kept - 1 : kept);
    if (!comma) return cut;
  }
}

LocaleCheck::LocaleCheck(LocaleMetadata locale, const std::optional<std::string>& reviewEmail,
                         const std::optional<std::string>& appVersion)
    : metadata_(std::move(locale)),
      hasReviewEmail_(reviewEmail.has_value()),
      hasAppVersion_(appVersion.has_value()),
      tracker_(std::make_shared<UnifiedChangeTracker>()),
      // A report shows verdicts out of their screen, so the fields are named.
      essentials_(std::make_shared<AppEssentialsWithDSL>(
          AppEssentialsWithDSL::FieldNames{"App name", "Subtitle", "Description", "Review contact e-mail", "Keywords"})),
      showcase_(std::make_shared<ShowcaseAppEntity>()),
      listing_(std::make_shared<StoreListingEntity>(metadata_.locale)) {
  for (const auto field : kLocaleFields) setText(field, std::string(metadata_.text(field)));
  if (reviewEmail) essentials_->setSupportEmail(*reviewEmail);
  if (appVersion) showcase_->setVersion(*appVersion);
  tracker_->register_(essentials_);
  tracker_->register_(showcase_);
  tracker_->register_(listing_);
  showcase_->setChangeTracker(tracker_);
  markSaved();
}

void LocaleCheck::setText(MetadataField field, const std::string& text) {
  metadata_.texts[static_cast<std::size_t>(field)] = text;
  switch (field) {
    case MetadataField::name:
      essentials_->setAppName(text);
      showcase_->setAppName(text);
      break;
    case MetadataField::subtitle:
      essentials_->setSubtitle(text);
      showcase_->setSubtitle(text);
      break;
    case MetadataField::description:
      essentials_->setDescription(text);
      showcase_->setAppDescription(text);
      break;
    case MetadataField::keywords:
      essentials_->setKeywords(text);
      showcase_->setKeywords(splitKeywords(text));
      break;
    case MetadataField::supportUrl:
      listing_->supportUrlProperty().setWrappedValue(text);
      break;
    case MetadataField::marketingUrl:
      listing_->marketingUrlProperty().setWrappedValue(text);
      break;
    case MetadataField::privacyUrl:
      listing_->privacyUrlProperty().setWrappedValue(text);
      break;
    case MetadataField::promotionalText:
      listing_->promotionalTextProperty().setWrappedValue(text);
      break;
    case MetadataField::releaseNotes:
      listing_->releaseNotesProperty().setWrappedValue(text);
      break;
  }
  tracker_->notifyChange();
}

std::string LocaleCheck::relativeFile(MetadataField field) const {
  return metadata_.locale + "/" + std::string(fileName(field));
}

// The rule-language properties revalidate on every change, so their stored verdicts are
// current and reading them saves counting long texts again. The showcase entity's rules are
// attached after construction and its stored verdicts lag behind, so those run afresh.
std::vector<LocaleCheck::Source> LocaleCheck::sources() const {
  const auto& e = *essentials_;
  const auto& s = *showcase_;
  auto& l = *listing_;
  std::vector<Source> result = {
      {relativeFile(MetadataField::name), "appName", [&s] { return s.appNameProperty().validate(); }},
      {relativeFile(MetadataField::name), "appName", [&e] { return e.appNameProperty().validationResult(); }},
      {relativeFile(MetadataField::subtitle), "subtitle", [&s] { return s.subtitleProperty().validate(); }},
      {relativeFile(MetadataField::subtitle), "subtitle", [&e] { return e.subtitleProperty().validationResult(); }},
      {relativeFile(MetadataField::description), "description",
       [&e] { return e.descriptionProperty().validationResult(); }},
      {relativeFile(MetadataField::keywords), "keywords", [&s] { return s.keywordsProperty().validate(); }},
      {relativeFile(MetadataField::keywords), "keywords", [&e] { return e.keywordsProperty().validationResult(); }},
      {relativeFile(MetadataField::supportUrl), "supportUrl",
       [&l] { return l.supportUrlProperty().validationResult(); }},
      {relativeFile(MetadataField::marketingUrl), "marketingUrl",
       [&l] { return l.marketingUrlProperty().validationResult(); }},
      {relativeFile(MetadataField::privacyUrl), "privacyUrl",
       [&l] { return l.privacyUrlProperty().validationResult(); }},
      {relativeFile(MetadataField::promotionalText), "promotionalText",
       [&l] { return l.promotionalTextProperty().validationResult(); }},
      {relativeFile(MetadataField::releaseNotes), "releaseNotes",
       [&l] { return l.releaseNotesProperty().validationResult(); }},
  };
  if (hasReviewEmail_) {
    result.push_back({kReviewEmailFile, "supportEmail", [&e] { return e.supportEmailProperty().validationResult(); }});
  }
  if (hasAppVersion_) {
    result.push_back({"--app-version", "version", [&s] { return s.versionProperty().validate(); }});
  }
  return result;
}

std::vector<Finding> LocaleCheck::findings() const {
  std::vector<Finding> result;
  for (const auto& source : sources()) {
    auto verdict = source.verdict();
    const auto category = categorize(verdict);
    if (!category) continue;
    const bool seen =
        std::ranges::any_of(result, [&](const Finding& f) { return f.file == source.file && f.category == *category; });
    if (seen) continue;
    result.push_back(Finding{*category, source.file, source.property, std::move(verdict)});
  }
  // Two entities judge the name, subtitle and keywords. When both find a text wrong, the
  // more severe verdict says so; the milder one would only repeat it in another group.
  std::map<std::string, FindingCategory> mostSevere;  // owned keys: the erase moves findings
  for (const auto& finding : result) {
    if (finding.verdict.isValid) continue;
    const auto [entry, added] = mostSevere.emplace(finding.file, finding.category);
    if (!added) entry->second = std::min(entry->second, finding.category);
  }
  std::erase_if(result, [&](const Finding& finding) {
    return !finding.verdict.isValid && finding.category != mostSevere.at(finding.file);
  });
  return result;
}

std::vector<FixChange> LocaleCheck::plannedFixes() const {
  std::vector<FixChange> result;
  const auto all = findings();
  for (const auto field : kLocaleFields) {
    const auto limit = characterLimit(field);
    if (!limit) continue;
    const auto file = relativeFile(field);
    const auto fixable = std::ranges::find_if(all, [&](const Finding& f) {
      return f.file == file && f.verdict.actionGuidance && f.verdict.actionGuidance->primaryAction.type.isAutoFix();
    });
    if (fixable == all.end()) continue;
    const std::string before(metadata_.text(field));
    // A keyword cut in half would be a new, wrong keyword: keywords lose whole ones.
    std::string after = field == MetadataField::keywords ? trimKeywordsToLimit(before, *limit)
                                                         : trimToLimit(before, *limit);
    if (after == before) continue;
    // Counted as the limits count: without surrounding white space.
    const auto beforeCount = static_cast<std::int64_t>(characterCount(trimmed(before)));
    const auto afterCount = static_cast<std::int64_t>(characterCount(after));
    result.push_back(FixChange{.locale = metadata_.locale,
                               .field = field,
                               .path = metadata_.folder / fileName(field),
                               .action = fixable->verdict.actionGuidance->primaryAction.title,
                               .before = before,
                               .after = std::move(after),
                               .charactersBefore = beforeCount,
                               .charactersAfter = afterCount});
  }
  return result;
}

void LocaleCheck::apply(const FixChange& change) {
  if (!saved_) saved_ = metadata_;
  setText(change.field, change.after);
}

void LocaleCheck::markSaved() {
  for (const auto& entity : tracker_->registeredEntities()) {
    for (const auto& stored : entity->storedProperties()) {
      if (stored.property) stored.property->markSaved();
    }
  }
  saved_.reset();
  tracker_->notifyChange();
}

void LocaleCheck::discard() {
  tracker_->discardAll();
  if (saved_) metadata_ = *std::move(saved_);
  saved_.reset();
}

std::vector<CompletionItem> LocaleCheck::checklistItems() const {
  return checklistItems(findings());
}

std::vector<CompletionItem> LocaleCheck::checklistItems(const std::vector<Finding>& all) const {
  auto itemFor = [&](const std::string& file, std::string title, Priority priority, bool empty) {
    auto firstOf = [&](FindingCategory category) {
      return std::ranges::find_if(all, [&](const Finding& f) { return f.file == file && f.category == category; });
    };
    const auto blocker = firstOf(FindingCategory::blocker);
    const auto risk = firstOf(FindingCategory::rejectionRisk);
    ItemStatus status = ItemStatus::completed();
    std::string description = "Ready";
    if (blocker != all.end()) {
      status = ItemStatus::blocked(blocker->verdict.message);
      description = blocker->verdict.message;
    } else if (risk != all.end()) {
      status = ItemStatus::inProgress();
      description = risk->verdict.message;
    } else if (empty) {
      status = isRequired(priority) ? ItemStatus::missing() : ItemStatus::optional();
      description = "Not filled in";
    }
    return CompletionItem(file, std::move(title), std::move(description), std::move(status), priority,
                          metadata_.locale);
  };
  std::vector<CompletionItem> items;
  for (const auto field : kLocaleFields) {
    items.push_back(itemFor(relativeFile(field), std::string(label(field)), priorityOf(field),
                            trimmed(metadata_.text(field)).empty()));
  }
  if (hasReviewEmail_) {
    items.push_back(itemFor(kReviewEmailFile, "Review contact e-mail", Priority::recommended,
                            trimmed(essentials_->supportEmail()).empty()));
  }
  return items;
}

}  // namespace corvane::cli
