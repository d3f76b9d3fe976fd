#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace corvane::store {

/// One file of a store's metadata folder. The App Store's come first: ten localized ones (one
/// per locale folder, with `default/` standing in for a locale that lacks one), then those
/// shared by every locale at the top of the folder or in `review_information/`. Google
/// Play's follow, all localized. Each store's fields, in the order of reports and
/// checklists, are `StoreFacts::localeFields()` and `sharedFields()`.
enum class ListingField {
  name,
  subtitle,
  description,
  keywords,
  promotionalText,
  releaseNotes,
  supportUrl,
  marketingUrl,
  privacyUrl,
  tvPrivacyUrl,
  copyright,
  primaryCategory,
  secondaryCategory,
  primaryFirstSubcategory,
  primarySecondSubcategory,
  secondaryFirstSubcategory,
  secondarySecondSubcategory,
  reviewFirstName,
  reviewLastName,
  reviewPhone,
  reviewEmail,
  reviewDemoUser,
  reviewDemoPassword,
  reviewNotes,
  title,
  shortDescription,
  fullDescription,
  video,
  changelog,
  defaultChangelog,
};

/// What a field holds, which decides the rules that judge it.
enum class FieldKind { text, keywords, url, copyright, category, name, phone, email, secret };

/// The App Store's localized fields, in report order.
inline constexpr std::array<ListingField, 10> kLocaleFields = {
    ListingField::name,         ListingField::subtitle,        ListingField::description,
    ListingField::keywords,     ListingField::promotionalText, ListingField::releaseNotes,
    ListingField::supportUrl,   ListingField::marketingUrl,    ListingField::privacyUrl,
    ListingField::tvPrivacyUrl,
};

/// The App Store's shared fields, in report order.
inline constexpr std::array<ListingField, 14> kSharedFields = {
    ListingField::copyright,
    ListingField::primaryCategory,
    ListingField::secondaryCategory,
    ListingField::primaryFirstSubcategory,
    ListingField::primarySecondSubcategory,
    ListingField::secondaryFirstSubcategory,
    ListingField::secondarySecondSubcategory,
    ListingField::reviewFirstName,
    ListingField::reviewLastName,
    ListingField::reviewPhone,
    ListingField::reviewEmail,
    ListingField::reviewDemoUser,
    ListingField::reviewDemoPassword,
    ListingField::reviewNotes,
};

/// Google Play's fields, all localized, in report order. `changelog` is the newest
/// `changelogs/<versionCode>.txt`, the one an upload of that version sends.
inline constexpr std::array<ListingField, 6> kPlayLocaleFields = {
    ListingField::title, ListingField::shortDescription, ListingField::fullDescription,
    ListingField::video, ListingField::changelog,        ListingField::defaultChangelog,
};

/// Every field of every store.
inline constexpr std::size_t kFieldCount = static_cast<std::size_t>(ListingField::defaultChangelog) + 1;

/// The field's key in rule identifiers and data files: "name", "promotional-text",
/// "review-email", ...
std::string_view fieldKey(ListingField field) noexcept;

/// The field whose key is `key`; nothing for any other text.
std::optional<ListingField> fieldFromKey(std::string_view key) noexcept;

/// The file that holds the field, relative to its locale folder ("name.txt") or, for a
/// shared field, to the metadata folder ("review_information/email_address.txt"). For
/// `changelog`, whose file is named after a version code, "changelogs/<versionCode>.txt".
std::string_view fieldFile(ListingField field) noexcept;

/// Whether the field is shared by every locale rather than localized.
bool isShared(ListingField field) noexcept;

/// What the field holds.
FieldKind fieldKind(ListingField field) noexcept;

/// Whether the field is public store text that content rules read (name, subtitle,
/// description, keywords, promotional text, release notes; Play's title, descriptions and
/// changelogs).
bool isStoreText(ListingField field) noexcept;

/// The field's position in `ListingField` order, for arrays indexed by field.
constexpr std::size_t fieldIndex(ListingField field) noexcept {
  return static_cast<std::size_t>(field);
}

}  // namespace corvane::store
