#pragma once

#include "corvane/store/listing_field.hpp"
#include "corvane/store/store_id.hpp"
#include "corvane/store/text_frame.hpp"

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::store {

class StoreFacts;

/// Where a locale's text came from: its own file, the `default/` folder's, or nowhere.
enum class TextSource { own, defaults, none };

/// One field's text as read, with the file it came from.
struct ListingText {
  /// The text without its frame; nothing when there is no file.
  std::optional<std::string> text;
  /// What the file held around the text, so a rewrite puts it back.
  TextFrame frame;
  /// The file read, or the one a write would create (in the locale's own folder).
  std::filesystem::path path;
  /// `path` relative to the metadata folder ("de-DE/name.txt", "default/description.txt").
  std::string file;
  /// Whether the text is the locale's own or `default/`'s.
  TextSource source = TextSource::none;

  /// The text, or an empty one when there is no file.
  std::string_view value() const { return text ? std::string_view(*text) : std::string_view(); }
};

/// A locale folder's texts, with `default/`'s standing in for the files it lacks where the
/// store's layout has one.
struct LocaleFolder {
  /// The folder's name, which is the locale code ("en-US").
  std::string locale;
  /// The folder itself.
  std::filesystem::path folder;
  /// Indexed by `fieldIndex`; only the store's localized fields are read, the others stay
  /// empty.
  std::array<ListingText, kFieldCount> texts;

  /// The text of localized field `field`.
  const ListingText& text(ListingField field) const { return texts[fieldIndex(field)]; }
  ListingText& text(ListingField field) { return texts[fieldIndex(field)]; }
};

/// A top-level folder that looks like a locale but is none the store knows, with the code
/// it was most likely meant to be.
struct UnknownLocaleFolder {
  std::string name;
  std::optional<std::string> suggestion;
};

/// A metadata folder as read from disk.
struct ListingFolder {
  /// The folder that was read.
  std::filesystem::path root;
  /// Every locale folder the store knows, sorted by name.
  std::vector<LocaleFolder> locales;
  /// Folders named like locales that the store does not know, sorted by name.
  std::vector<UnknownLocaleFolder> unknownLocales;
  /// `default/`'s own texts, when the store's layout has the folder and it exists.
  std::optional<LocaleFolder> defaults;
  /// The shared texts, indexed by `fieldIndex`; only the store's shared fields are read.
  std::array<ListingText, kFieldCount> shared;
  /// The total size of the files read.
  std::uintmax_t bytesRead = 0;

  /// The text of shared field `field`.
  const ListingText& sharedText(ListingField field) const { return shared[fieldIndex(field)]; }
  ListingText& sharedText(ListingField field) { return shared[fieldIndex(field)]; }
};

/// Files larger than this are refused: store texts are a few kilobytes at most.
inline constexpr std::uintmax_t kMaxFileSize = 1024 * 1024;

/// Whether a folder name has the shape of a language tag: two or three lower-case letters,
/// then optional subtags of two to eight letters or digits after a "-" ("de", "en-US",
/// "zh-Hans", "en-US-x1"). Whether the store knows the code is `StoreFacts`' to say.
bool looksLikeLocale(std::string_view name) noexcept;

/// Reads the metadata folder `root` in the layout of `facts`' store: every top-level folder
/// whose name is one of the store's locale codes (or of `extraLocales`) is a locale, holding
/// the store's localized fields (`StoreFacts::localeFields()`); in the App Store's layout
/// `default/`'s files stand in for those it lacks, and the shared files are read from the
/// top and `review_information/`. In Google Play's, a locale's `changelog` is the
/// `changelogs/<versionCode>.txt` with the highest version code. A folder that
/// looks like a locale (by `looksLikeLocale`, or because it holds a listing file) but is no
/// code the store knows is listed in `unknownLocales`; other folders and files are ignored.
///
/// Throws `InputError`, naming the file, when `root` is missing or unreadable, when it holds
/// no locale folder, when a locale folder holds none of the files and there is no
/// `default/`, when a file is larger than `kMaxFileSize`, not a regular file or not valid
/// UTF-8, or when a symbolic link leads outside `root` or nowhere. Reads only.
ListingFolder readListingFolder(const std::filesystem::path& root, const StoreFacts& facts,
                                std::span<const std::string> extraLocales = {});

/// The store whose layout the metadata folder `root` is written in: Google Play's when some
/// top-level folder holds one of its locale files (title.txt, short_description.txt,
/// full_description.txt, video.txt) and none holds an App Store locale file, nor does the
/// top hold the App Store's shared files; the App Store's otherwise, also for a folder that
/// cannot be read, whose reading then reports the problem. Looks at names only.
StoreId detectStore(const std::filesystem::path& root);

/// The facts of the store a person chose for the folder `root`: "appstore", "play", or
/// "auto" to tell by its files (`detectStore`). Throws `InputError` for any other choice.
const StoreFacts& chosenStoreFacts(std::string_view choice, const std::filesystem::path& root);

}  // namespace corvane::store
