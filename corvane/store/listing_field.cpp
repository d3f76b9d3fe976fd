#include "corvane/store/listing_field.hpp"

namespace corvane::store {
namespace {

struct FieldRow {
  std::string_view key;
  std::string_view file;
  FieldKind kind;
  bool shared = false;
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
    {"copyright", "copyright.txt", FieldKind::copyright, true},
    {"primary-category", "primary_category.txt", FieldKind::category, true},
    {"secondary-category", "secondary_category.txt", FieldKind::category, true},
    {"primary-first-subcategory", "primary_first_sub_category.txt", FieldKind::category, true},
    {"primary-second-subcategory", "primary_second_sub_category.txt", FieldKind::category, true},
    {"secondary-first-subcategory", "secondary_first_sub_category.txt", FieldKind::category, true},
    {"secondary-second-subcategory", "secondary_second_sub_category.txt", FieldKind::category, true},
    {"review-first-name", "review_information/first_name.txt", FieldKind::name, true},
    {"review-last-name", "review_information/last_name.txt", FieldKind::name, true},
    {"review-phone", "review_information/phone_number.txt", FieldKind::phone, true},
    {"review-email", "review_information/email_address.txt", FieldKind::email, true},
    {"review-demo-user", "review_information/demo_user.txt", FieldKind::secret, true},
    {"review-demo-password", "review_information/demo_password.txt", FieldKind::secret, true},
    {"review-notes", "review_information/notes.txt", FieldKind::text, true},
    {"title", "title.txt", FieldKind::text},
    {"short-description", "short_description.txt", FieldKind::text},
    {"full-description", "full_description.txt", FieldKind::text},
    {"video", "video.txt", FieldKind::url},
    {"changelog", "changelogs/<versionCode>.txt", FieldKind::text},
    {"default-changelog", "changelogs/default.txt", FieldKind::text},
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
  return row(field).shared;
}

FieldKind fieldKind(ListingField field) noexcept {
  return row(field).kind;
}

bool isStoreText(ListingField field) noexcept {
  return !isShared(field) && (row(field).kind == FieldKind::text || row(field).kind == FieldKind::keywords);
}

}  // namespace corvane::store
