#include "metadata_field.hpp"

namespace corvane::cli {

std::string_view fileName(MetadataField field) noexcept {
  switch (field) {
    case MetadataField::name:
      return "name.txt";
    case MetadataField::subtitle:
      return "subtitle.txt";
    case MetadataField::description:
      return "description.txt";
    case MetadataField::keywords:
      return "keywords.txt";
    case MetadataField::supportUrl:
      return "support_url.txt";
    case MetadataField::marketingUrl:
      return "marketing_url.txt";
    case MetadataField::privacyUrl:
      return "privacy_url.txt";
    case MetadataField::promotionalText:
      return "promotional_text.txt";
    case MetadataField::releaseNotes:
      return "release_notes.txt";
  }
  return {};
}

std::string_view label(MetadataField field) noexcept {
  switch (field) {
    case MetadataField::name:
      return "App name";
    case MetadataField::subtitle:
      return "Subtitle";
    case MetadataField::description:
      return "Description";
    case MetadataField::keywords:
      return "Keywords";
    case MetadataField::supportUrl:
      return "Support URL";
    case MetadataField::marketingUrl:
      return "Marketing URL";
    case MetadataField::privacyUrl:
      return "Privacy policy URL";
    case MetadataField::promotionalText:
      return "Promotional text";
    case MetadataField::releaseNotes:
      return "Release notes";
  }
  return {};
}

std::optional<std::int64_t> characterLimit(MetadataField field) noexcept {
  switch (field) {
    case MetadataField::name:
      return 30;
    case MetadataField::subtitle:
      return 30;
    case MetadataField::keywords:
      return 100;
    case MetadataField::promotionalText:
      return 170;
    case MetadataField::description:
      return 4000;
    case MetadataField::releaseNotes:
      return 4000;
    default:
      return std::nullopt;
  }
}

}  // namespace corvane::cli
