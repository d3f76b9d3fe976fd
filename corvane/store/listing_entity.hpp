#pragma once

#include "corvane/store/listing_finding.hpp"
#include "corvane/store/listing_rules.hpp"
#include "corvane/tracking/trackable_entity.hpp"
#include "corvane/tracking/tracked.hpp"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace corvane::store {

/// One locale's listing, or the shared files, as an entity of tracked text fields: each
/// field's value beside its saved value, judged by the catalog's rules as it changes. A
/// field's own verdict (`property(f).validationResult()`) is the combination of its
/// findings; `findings()` lists them all, including the rules that read two fields (keywords
/// against the name and subtitle, the demo account's two halves, Play's two changelogs).
///
/// Not synchronised: use it from one thread at a time, like `Tracked`.
class ListingEntity final : public TrackableEntity {
 public:
  /// A field's text and file as an entity starts out with them.
  struct InitialText {
    std::string text;
    std::string file;
  };

  /// An entity for `fields` (`kLocaleFields` for a locale, `kSharedFields` for the shared
  /// files), judged by `rules`. Field i starts with `initial[i]` as its saved text (each
  /// judged once); fields past the end of `initial` start empty, named by their usual file
  /// name. Its id is "listing:<scope>".
  ListingEntity(std::string scope, std::span<const ListingField> fields, std::shared_ptr<const ListingRules> rules,
                std::vector<InitialText> initial = {});
  ListingEntity(const ListingEntity&) = delete;
  ListingEntity& operator=(const ListingEntity&) = delete;

  /// "listing:<scope>", e.g. "listing:de-DE" or "listing:shared".
  std::string entityId() const override;
  /// "Store listing (de-DE)", or "Shared listing data".
  std::string entityName() const override;
  /// Whether any field differs from its saved value.
  bool hasUnsavedChanges() const override;
  /// The changed fields' own descriptions joined with "; ", or "No changes".
  std::string changeDescription() const override;
  /// `ValidationResult::combine` over the fields' verdicts.
  ValidationResult validationResult() const override;
  /// Marks every field saved. Writing the files is `StoreListing`'s part.
  boost::asio::awaitable<void> saveChanges() override;
  /// Restores every field's saved value.
  void discardChanges() override;
  /// The fields under "_<field key>", in field order.
  std::vector<StoredProperty> storedProperties() override;

  /// The scope: a locale code, or "shared".
  const std::string& scope() const { return scope_; }
  /// The fields this entity holds, in order.
  std::span<const ListingField> fields() const { return fields_; }
  /// Whether the entity holds `field`.
  bool holds(ListingField field) const;
  /// The rules the fields are judged by.
  const ListingRules& rules() const { return *rules_; }

  /// The tracked property of `field`, for binding screens. `field` must be held.
  Tracked<std::string>& property(ListingField field);
  const Tracked<std::string>& property(ListingField field) const;

  /// The current text of `field`.
  const std::string& text(ListingField field) const { return property(field).wrappedValue(); }

  /// Sets the current text of `field` as an edit (judged at once).
  void setText(ListingField field, std::string text);

  /// Sets where `field`'s text lives, relative to the metadata folder, as findings name it.
  void setFile(ListingField field, std::string file);
  /// The file findings on `field` name.
  const std::string& file(ListingField field) const;

  /// Every finding on the current texts, field by field in order, each field's in catalog
  /// order.
  std::vector<ListingFinding> findings() const;

  /// The findings of the single-field rules on `field`'s current text.
  const std::vector<ListingFinding>& fieldFindings(ListingField field) const;

 private:
  struct Slot {
    ListingField field;
    std::string file;
    // The findings on the text last judged: the property's rule writes them here, so the
    // report does not judge each text a second time.
    std::vector<ListingFinding> findings;
    std::unique_ptr<Tracked<std::string>> property;
  };

  Slot& slot(ListingField field);
  const Slot& slot(ListingField field) const;

  std::string scope_;
  std::vector<ListingField> fields_;
  std::shared_ptr<const ListingRules> rules_;
  std::vector<Slot> slots_;
};

}  // namespace corvane::store
