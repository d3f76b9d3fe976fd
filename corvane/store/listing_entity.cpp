#include "corvane/store/listing_entity.hpp"

#include "corvane/support/precondition.hpp"

#include <algorithm>

namespace corvane::store {

ListingEntity::ListingEntity(std::string scope, std::span<const ListingField> fields,
                             std::shared_ptr<const ListingRules> rules, std::vector<InitialText> initial)
    : scope_(std::move(scope)), fields_(fields.begin(), fields.end()), rules_(std::move(rules)) {
  slots_.reserve(fields_.size());
  initial.resize(std::max(initial.size(), fields_.size()));
  for (const auto field : fields_) {
    const std::size_t index = slots_.size();
    auto& start = initial[index];
    if (start.file.empty()) start.file = fieldFile(field);
    auto& entry = slots_.emplace_back(Slot{field, std::move(start.file), {}, nullptr});
    // The rule records its findings in the slot (never in its own property) and answers
    // with their combination, which screens show as the field's verdict.
    entry.property = std::make_unique<Tracked<std::string>>(
        std::move(start.text), std::vector<Tracked<std::string>::Rule>{[this, index](const std::string& value) {
          auto& judged = slots_[index];
          judged.findings = rules_->judge(judged.field, value, judged.file);
          std::vector<ValidationResult> verdicts;
          verdicts.reserve(judged.findings.size());
          for (const auto& finding : judged.findings) verdicts.push_back(finding.verdict);
          return verdicts.empty() ? ValidationResult::valid() : ValidationResult::combine(verdicts);
        }});
    entry.property->setPropertyName(std::string(fieldKey(field)));
  }
}

std::string ListingEntity::entityId() const {
  return "listing:" + scope_;
}

std::string ListingEntity::entityName() const {
  return scope_ == "shared" ? "Shared listing data" : "Store listing (" + scope_ + ")";
}

bool ListingEntity::hasUnsavedChanges() const {
  return std::ranges::any_of(slots_, [](const Slot& s) { return s.property->hasChanged(); });
}

std::string ListingEntity::changeDescription() const {
  std::string description;
  for (const auto& s : slots_) {
    if (!s.property->hasChanged()) continue;
    if (!description.empty()) description += "; ";
    description += s.property->changeDescription();
  }
  return description.empty() ? "No changes" : description;
}

ValidationResult ListingEntity::validationResult() const {
  std::vector<ValidationResult> verdicts;
  for (const auto& finding : findings()) verdicts.push_back(finding.verdict);
  return verdicts.empty() ? ValidationResult::valid() : ValidationResult::combine(verdicts);
}

boost::asio::awaitable<void> ListingEntity::saveChanges() {
  for (auto& s : slots_) s.property->markSaved();
  co_return;
}

void ListingEntity::discardChanges() {
  for (auto& s : slots_) s.property->discardChanges();
}

std::vector<TrackableEntity::StoredProperty> ListingEntity::storedProperties() {
  std::vector<StoredProperty> result;
  for (auto& s : slots_) result.push_back({std::string(1, '_').append(fieldKey(s.field)), s.property.get()});
  return result;
}

bool ListingEntity::holds(ListingField field) const {
  return std::ranges::find(fields_, field) != fields_.end();
}

ListingEntity::Slot& ListingEntity::slot(ListingField field) {
  const auto found = std::ranges::find(slots_, field, &Slot::field);
  CORVANE_PRECONDITION(found != slots_.end(), "the listing entity does not hold this field");
  return *found;
}

const ListingEntity::Slot& ListingEntity::slot(ListingField field) const {
  return const_cast<ListingEntity*>(this)->slot(field);
}

Tracked<std::string>& ListingEntity::property(ListingField field) {
  return *slot(field).property;
}

const Tracked<std::string>& ListingEntity::property(ListingField field) const {
  return *slot(field).property;
}

void ListingEntity::setText(ListingField field, std::string text) {
  property(field).setWrappedValue(std::move(text));
}

void ListingEntity::setFile(ListingField field, std::string file) {
  auto& s = slot(field);
  if (s.file == file) return;
  s.file = std::move(file);
  for (auto& finding : s.findings) finding.file = s.file;
}

const std::string& ListingEntity::file(ListingField field) const {
  return slot(field).file;
}

const std::vector<ListingFinding>& ListingEntity::fieldFindings(ListingField field) const {
  return slot(field).findings;
}

std::vector<ListingFinding> ListingEntity::findings() const {
  std::vector<ListingFinding> result;
  for (const auto& s : slots_) {
    result.insert(result.end(), s.findings.begin(), s.findings.end());
    if (s.field == ListingField::keywords && holds(ListingField::name) && holds(ListingField::subtitle)) {
      auto repeats = rules_->judgeKeywordRepeats(s.property->wrappedValue(), text(ListingField::name),
                                                 text(ListingField::subtitle), s.file);
      result.insert(result.end(), repeats.begin(), repeats.end());
    }
    if (s.field == ListingField::reviewDemoPassword && holds(ListingField::reviewDemoUser)) {
      auto demo = rules_->judgeDemoAccount(text(ListingField::reviewDemoUser), s.property->wrappedValue());
      result.insert(result.end(), demo.begin(), demo.end());
    }
    if (s.field == ListingField::defaultChangelog && holds(ListingField::changelog)) {
      // Without a changelog of any version the file is only a pattern; the notes then go
      // best into default.txt, which every version shows.
      const auto& newest = file(ListingField::changelog);
      const bool anyVersion = !newest.ends_with(fieldFile(ListingField::changelog));
      auto missing = rules_->judgeMissingChangelog(text(ListingField::changelog), s.property->wrappedValue(),
                                                   anyVersion ? newest : s.file);
      result.insert(result.end(), missing.begin(), missing.end());
    }
  }
  return result;
}

}  // namespace corvane::store
