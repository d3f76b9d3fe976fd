#pragma once

#include "metadata_field.hpp"

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::cli {

/// The UTF-8 byte-order mark some editors put at the start of a file.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// The bytes of a text file that are not part of its text: a UTF-8 byte-order mark before
/// it and the final line breaks after it, exactly as written ("\n", "\r\n\n", ...).
struct TextFrame {
  bool byteOrderMark = false;
  std::string finalLineBreaks;

  /// `text` as the file would hold it, framed the same way.
  std::string around(std::string_view text) const;
};

/// Removes the frame from a file's `contents`, leaving its text, and returns the frame.
TextFrame unframe(std::string& contents);

/// The text of one locale folder: each known file's contents, or nothing when the file is
/// absent. A byte-order mark and final line breaks are no part of a text: they are kept
/// aside, so that a rewrite puts them back.
struct LocaleMetadata {
  /// The folder's name, which is the locale tag ("en-US").
  std::string locale;
  /// The folder itself.
  std::filesystem::path folder;
  /// Indexed by `MetadataField`; nothing when the file does not exist.
  std::array<std::optional<std::string>, kLocaleFields.size()> texts;
  /// Indexed by `MetadataField`: what each file held around its text.
  std::array<TextFrame, kLocaleFields.size()> frames{};

  /// The field's text; empty when the file is absent.
  std::string_view text(MetadataField field) const;
};

/// A metadata folder as read from disk: its locales in name order and the shared review
/// contact address. `bytesRead` is the size of every file read, for the benchmark.
struct MetadataFolder {
  /// The folder that was read.
  std::filesystem::path root;
  /// Every locale folder, sorted by name.
  std::vector<LocaleMetadata> locales;
  /// review_information/email_address.txt, when present.
  std::optional<std::string> reviewEmail;
  /// The total size of the files read.
  std::uintmax_t bytesRead = 0;
};

/// Files larger than this are refused: store texts are a few kilobytes at most.
inline constexpr std::uintmax_t kMaxFileSize = 1024 * 1024;

/// Whether a folder name is a locale tag: a language of two or three lower-case letters,
/// then optional subtags of two to eight letters or digits after a "-" ("de", "en-US",
/// "zh-Hans", "es-419"). Anything else (review_information, screenshots) is shared data.
bool isLocaleFolderName(std::string_view name) noexcept;

/// Reads every locale folder under `root` and the shared review address. Throws `InputError`
/// when `root` is missing, unreadable or holds no locale folder, when a locale folder holds
/// none of the known files, when a file is larger than `kMaxFileSize` or not valid UTF-8, or
/// when a symbolic link leads outside `root`. Reads only; never writes.
MetadataFolder readMetadataFolder(const std::filesystem::path& root);

}  // namespace corvane::cli
