#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace corvane::cli {

/// One text file of a locale folder. The order is the order of the report and the checklist.
enum class MetadataField {
  name,
  subtitle,
  description,
  keywords,
  supportUrl,
  marketingUrl,
  privacyUrl,
  promotionalText,
  releaseNotes,
};

/// Every locale field, in report order.
inline constexpr std::array<MetadataField, 9> kLocaleFields = {
    MetadataField::name,       MetadataField::subtitle,        MetadataField::description,
    MetadataField::keywords,   MetadataField::supportUrl,      MetadataField::marketingUrl,
    MetadataField::privacyUrl, MetadataField::promotionalText, MetadataField::releaseNotes,
};

/// The file that holds the field inside a locale folder, e.g. "name.txt".
std::string_view fileName(MetadataField field) noexcept;

/// A short label for people and checklist titles, e.g. "App name".
std::string_view label(MetadataField field) noexcept;

/// The store's character limit for the field, counted in user-perceived characters;
/// nothing for fields without one (the URLs).
std::optional<std::int64_t> characterLimit(MetadataField field) noexcept;

}  // namespace corvane::cli
