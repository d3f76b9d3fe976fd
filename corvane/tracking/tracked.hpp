#pragma once

#include "corvane/cache/validation_cache.hpp"
#include "corvane/observation/observation_registrar.hpp"
#include "corvane/results/stored_verdict.hpp"
#include "corvane/results/validation_result.hpp"
#include "corvane/support/describe.hpp"
#include "corvane/support/object_identity.hpp"
#include "corvane/support/precondition.hpp"
#include "corvane/tracking/empty_value_rule.hpp"
#include "corvane/tracking/support_url_check.hpp"
#include "corvane/tracking/tracked_validatable.hpp"
#include "corvane/tracking/validation_check.hpp"
#include "corvane/tracking/validation_guidance.hpp"
#include "corvane/tracking/validation_requirement.hpp"
#include "corvane/tracking/validation_rule.hpp"

#include <concepts>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace corvane {

/// An editable property: the current value beside the last saved value, the property's
/// rules and the verdict they last gave. Entities hold one `Tracked<T>` per field and hand
/// it out by reference, so screens and trackers share one object.
///
/// Observed keys: "storage" (the current value), "originalValue", "validationRules",
/// "cachedValidationResult" and "propertyName". Every write is announced, also when the
/// new value equals the old one. The verdict is recomputed at construction, when a write
/// really changes the value (by T's equality), and on every `discardChanges()`.
///
/// Not synchronised: use a property from one thread at a time.
template <class T>
  requires std::equality_comparable<T> && std::copy_constructible<T>
class Tracked final : public TrackedValidatable, public Observable {
 public:
  /// A rule: a verdict on a value.
  using Rule = std::function<ValidationResult(const T&)>;

  /// A property holding `initialValue` (current and saved) whose verdict is already that of
  /// `rules` on it.
  explicit Tracked(T initialValue, std::vector<Rule> rules = {})
      : storage_(initialValue), originalValue_(std::move(initialValue)) {
    setValidationRules(std::move(rules));
    setCachedValidationResult(validate());
  }

  /// A text property declared in the rule language: its one rule is
  /// `makeValidationRule(field, requirement, checks, guidance)`. The property name stays unset.
  Tracked(T initialValue, std::optional<std::string> field, ValidationRequirement requirement,
          std::vector<ValidationCheck> checks, std::optional<ValidationGuidance> guidance = std::nullopt)
    requires std::same_as<T, std::string>
      : Tracked(std::move(initialValue),
                {makeValidationRule(std::move(field), requirement, std::move(checks), std::move(guidance))}) {}

  /// A property whose one rule is `emptyValueRule(requirement, empty, field)`: a field of any
  /// type, such as a picker, that has a value meaning "nothing chosen".
  Tracked(ValidationRequirement requirement, T empty, T initialValue, std::optional<std::string> field = std::nullopt)
      : Tracked(std::move(initialValue), {emptyValueRule(requirement, std::move(empty), std::move(field))}) {}

  // The store's standard text fields, declared in the rule language.

  /// "App name": required, at most 30 characters.
  static Tracked appNameDSL(T initialValue)
    requires std::same_as<T, std::string>
  {
    return Tracked(std::move(initialValue), "App name", ValidationRequirement::required,
                   {ValidationCheck::tooLong(30)},
                   ValidationGuidance::missingOptional(
                       "descriptive app name", "Longer names (5-15 characters) perform better in App Store search"));
  }

  /// "Subtitle": required, at most 30 characters.
  static Tracked subtitleDSL(T initialValue)
    requires std::same_as<T, std::string>
  {
    return Tracked(std::move(initialValue), "Subtitle", ValidationRequirement::required,
                   {ValidationCheck::tooLong(30)});
  }

  /// "Description": optional, at most 4000 characters; suggested when empty.
  static Tracked descriptionDSL(T initialValue)
    requires std::same_as<T, std::string>
  {
    return Tracked(std::move(initialValue), "Description", ValidationRequirement::optional,
                   {ValidationCheck::tooLong(4000)},
                   ValidationGuidance::missingOptional("detailed description",
                                                       "Detailed descriptions help users understand your app better"));
  }

  /// "Keywords": optional, at most 100 characters; suggested when empty.
  static Tracked keywordsDSL(T initialValue)
    requires std::same_as<T, std::string>
  {
    return Tracked(std::move(initialValue), "Keywords", ValidationRequirement::optional,
                   {ValidationCheck::tooLong(100)},
                   ValidationGuidance::missingOptional("relevant keywords",
                                                       "Keywords help users discover your app in search"));
  }

  /// "Support URL": optional, judged by `supportURLCheck`. Being a custom check, it has the
  /// last word, so its missing-optional guidance never shows.
  static Tracked supportURLDSL(T initialValue)
    requires std::same_as<T, std::string>
  {
    return Tracked(std::move(initialValue), "Support URL", ValidationRequirement::optional,
                   {ValidationCheck::custom(supportURLCheck)},
                   ValidationGuidance::missingOptional("support URL",
                                                       "Support URLs help users get help and improve app ratings"));
  }

  /// The current value.
  const T& wrappedValue() const {
    observationRegistrar().access(kStorage);
    return storage_;
  }

  /// Stores `newValue` (announced) and, when it differs from the previous value, reruns
  /// the rules and stores their verdict (announced).
  void setWrappedValue(T newValue) {
    T old = storage_;
    observationRegistrar().withMutation(kStorage, [&] { storage_ = std::move(newValue); });
    if (!(old == storage_)) setCachedValidationResult(validate());
  }

  /// Changes the value in place: `mutation` edits a copy, which is then set as by
  /// `setWrappedValue`.
  template <class Mutation>
    requires std::invocable<Mutation&, T&>
  void mutateWrappedValue(Mutation&& mutation) {
    T copy = wrappedValue();
    mutation(copy);
    setWrappedValue(std::move(copy));
  }

  /// The property itself, for code that reaches a field through its entity.
  Tracked& projectedValue() noexcept { return *this; }

  /// The value as last saved (or as constructed).
  const T& originalValue() const {
    observationRegistrar().access(kOriginalValue);
    return originalValue_;
  }

  /// The rules, in the order they run.
  const std::vector<Rule>& validationRules() const {
    observationRegistrar().access(kValidationRules);
    return validationRules_;
  }

  bool hasChanged() const override { return !(wrappedValue() == originalValue()); }

  /// Empty when unchanged; otherwise "<name>: '<old>' → '<new>'", or
  /// "Changed from '<old>' to '<new>'" without a property name.
  std::string changeDescription() const override {
    if (!hasChanged()) return {};
    const std::string oldText = render(originalValue());
    const std::string newText = render(wrappedValue());
    if (auto name = propertyName()) return *name + ": '" + oldText + "' \u2192 '" + newText + "'";
    return "Changed from '" + oldText + "' to '" + newText + "'";
  }

  std::optional<std::string> propertyName() const override {
    observationRegistrar().access(kPropertyName);
    return propertyName_;
  }

  void setPropertyName(std::optional<std::string> name) override {
    observationRegistrar().withMutation(kPropertyName, [&] { propertyName_ = std::move(name); });
  }

  /// Makes the current value the saved value. The verdict stays as it is.
  void markSaved() override {
    observationRegistrar().withMutation(kOriginalValue, [&] { originalValue_ = storage_; });
  }

  /// Restores the saved value (announced even when nothing changed) and reruns the rules.
  void discardChanges() override {
    observationRegistrar().withMutation(kStorage, [&] { storage_ = originalValue_; });
    setCachedValidationResult(validate());
  }

  /// The verdict stored at the last revalidation.
  ValidationResult validationResult() const override {
    observationRegistrar().access(kCachedValidationResult);
    return cachedValidationResult_.get();
  }

  /// Runs every rule on the current value and returns the last rule's verdict (`valid()`
  /// without rules). Rules are not combined: a field that needs several checks gets one
  /// rule that combines them. Stores nothing. Rules see the stored value itself, not a
  /// copy (a field may hold megabytes), so a rule must not write its own property or
  /// change its rules.
  ValidationResult validate() const {
    ValidationResult result = ValidationResult::valid();
    for (const auto& rule : validationRules_) result = rule(storage_);
    return result;
  }

  /// The verdict through the shared validation cache, under `identityKey()` + ":" + the
  /// rendering of the current value, refreshed by age only. A rule may call this on another
  /// property; calling it on the property whose rules are running is a fatal precondition
  /// failure (it would recurse forever).
  ValidationResult validateCached() const
    requires Describable<T>
  {
    const std::string key = identityKey() + ":" + describe(wrappedValue());
    return ValidationCache::shared().validate(key, storage_, [this](const T&) { return validate(); });
  }

  /// Appends `rule`. The stored verdict is not recomputed until the value next changes,
  /// `discardChanges()` runs, or a caller revalidates. Not to be called from one of this
  /// property's own rules.
  void addValidation(Rule rule) {
    observationRegistrar().withMutation(kValidationRules, [&] { validationRules_.push_back(std::move(rule)); });
  }

  /// "Tracked#<n>", where no other property of this process, live or destroyed, has the same
  /// n: a property built where a destroyed one lived does not meet that one's cached verdicts.
  std::string identityKey() const { return "Tracked#" + describe(identity_); }

 private:
  static constexpr std::string_view kStorage = "storage";
  static constexpr std::string_view kOriginalValue = "originalValue";
  static constexpr std::string_view kValidationRules = "validationRules";
  static constexpr std::string_view kCachedValidationResult = "cachedValidationResult";
  static constexpr std::string_view kPropertyName = "propertyName";

  static std::string render(const T& value) {
    if constexpr (Describable<T>) {
      return describe(value);
    } else {
      return "<value>";
    }
  }

  void setValidationRules(std::vector<Rule> rules) {
    observationRegistrar().withMutation(kValidationRules, [&] { validationRules_ = std::move(rules); });
  }

  void setCachedValidationResult(ValidationResult result) {
    observationRegistrar().withMutation(kCachedValidationResult,
                                        [&] { cachedValidationResult_.set(std::move(result)); });
  }

  std::uint64_t identity_ = nextObjectIdentity();  // never changes
  T storage_;
  T originalValue_;
  std::vector<Rule> validationRules_;
  // Thousands of properties hold valid() verdicts: those cost no more than a pointer.
  StoredVerdict cachedValidationResult_;
  std::optional<std::string> propertyName_;
};

}  // namespace corvane
