#include "corvane/store/listing_field.hpp"

namespace corvane::store {
namespace {

struct FieldRow {
  std::string_view key;
  std::string_view file;
  FieldKind kind;
};

// Indexed by ListingField.
constexpr std::array<FieldRow, kFieldCount> kRows = {{
    {"name", "name.txt", FieldKind::text},
    {"subtitle", "subtitle.txt", FieldKind::text},
    {"description", "description.txt", FieldKind::text},
    {"keywords", "keywords.txt", FieldKind::keywords},
    {"promotional-text", "promotional_text.txt", FieldKind::text},
    {"release-notes", "release_notes.txt", FieldKind::text},
    {"support-url", "support_url.txt", FieldKind::url},
    {"marketing-url", "marketing_url.txt", FieldKind::url},
    {"privacy-url", "privacy_url.txt", FieldKind::url},
    {"tv-privacy-url", "apple_tv_privacy_policy.txt", FieldKind::url},
    {"copyright", "copyright.txt", FieldKind::copyright},
    {"primary-category", "primary_category.txt", FieldKind::category},
    {"secondary-category", "secondary_category.txt", FieldKind::category},
    {"primary-first-subcategory", "primary_first_sub_category.txt", FieldKind::category},
    {"primary-second-subcategory", "primary_second_sub_category.txt", FieldKind::category},
    {"secondary-first-subcategory", "secondary_first_sub_category.txt", FieldKind::category},
    {"secondary-second-subcategory", "secondary_second_sub_category.txt", FieldKind::category},
    {"review-first-name", "review_information/first_name.txt", FieldKind::name},
    {"review-last-name", "review_information/last_name.txt", FieldKind::name},
    {"review-phone", "review_information/phone_number.txt", FieldKind::phone},
    {"review-email", "review_information/email_address.txt", FieldKind::email},
    {"review-demo-user", "review_information/demo_user.txt", FieldKind::secret},
    {"review-demo-password", "review_information/demo_password.txt", FieldKind::secret},
    {"review-notes", "review_information/notes.txt", FieldKind::text},
}};

const FieldRow& row(ListingField field) noexcept {
  return kRows[fieldIndex(field)];
}

}  // namespace

std::string_view fieldKey(ListingField field) noexcept {
  return row(field).key;
}

std::optional<ListingField> fieldFromKey(std::string_view key) noexcept {
  for (std::size_t i = 0; i < kRows.size(); ++i) {
    if (kRows[i].key == key) return static_cast<ListingField>(i);
  }
  return std::nullopt;
}

std::string_view fieldFile(ListingField field) noexcept {
  return row(field).file;
}

bool isShared(ListingField field) noexcept {
  return fieldIndex(field) >= kLocaleFields.size();
}

FieldKind fieldKind(ListingField field) noexcept {
  return row(field).kind;
}

bool isStoreText(ListingField field) noexcept {
  return !isShared(field) && (row(field).kind == FieldKind::text || row(field).kind == FieldKind::keywords);
}

}  // namespace corvane::store
