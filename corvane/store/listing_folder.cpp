#include "corvane/store/listing_folder.hpp"

#include "corvane/store/input_error.hpp"
#include "corvane/store/store_facts.hpp"
#include "corvane/text/characters.hpp"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane::store {
namespace fs = std::filesystem;
namespace {

bool isLower(char c) {
  return c >= 'a' && c <= 'z';
}
bool isAlnum(char c) {
  return isLower(c) || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

// A symbolic link may point anywhere inside the folder (teams share texts between
// locales), but never out of it: reading and fixing must stay within what they were given.
// Resolving the whole path also catches a linked parent folder.
void requireInside(const fs::path& path, const fs::path& canonicalRoot) {
  std::error_code error;
  const fs::path target = fs::weakly_canonical(path, error);
  if (error) throw InputError(path.string() + ": cannot resolve symbolic link: " + error.message());
  const auto [rootEnd, targetIt] = std::ranges::mismatch(canonicalRoot, target);
  if (rootEnd != canonicalRoot.end()) {
    throw InputError(path.string() + ": symbolic link leads outside " + canonicalRoot.string());
  }
}

// `folder / relative` for a relative `relative`, made from one string: appending to a copy
// of `folder` would copy and split its parts again, for every file read.
fs::path joined(const fs::path& folder, std::string_view relative) {
  std::string path;
  path.reserve(folder.native().size() + 1 + relative.size());
  path = folder.native();
  if (!path.empty() && path.back() != '/') path += '/';
  path += relative;
  return fs::path(std::move(path));
}

// An open file, closed when the handle goes.
class FileHandle {
 public:
  explicit FileHandle(int descriptor) noexcept : descriptor_(descriptor) {}
  FileHandle(const FileHandle&) = delete;
  FileHandle(FileHandle&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  FileHandle& operator=(const FileHandle&) = delete;
  FileHandle& operator=(FileHandle&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~FileHandle() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }

  explicit operator bool() const noexcept { return descriptor_ >= 0; }
  int get() const noexcept { return descriptor_; }

 private:
  int descriptor_;
};

class Reader {
 public:
  explicit Reader(const fs::path& canonicalRoot) : canonicalRoot_(canonicalRoot) {}

  std::uintmax_t bytesRead() const { return bytesRead_; }

  // Reads `relative` below the root if it exists as a regular file (or a link to one inside
  // the root). `parentIsLink` says whether a folder between the root and the file is a
  // link, in which case the path is resolved even when the file itself is not a link.
  // Opens `folder` (below the root, already checked with checkLink) for `read`.
  FileHandle openFolder(const fs::path& folder) const {
    FileHandle handle(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!handle) throw InputError(folder.string() + ": cannot open folder: " + std::strerror(errno));
    return handle;
  }

  // Opens `folder`, the folder `name` in the one `parent` holds open, as openFolder does:
  // looked up from there, only its own name is walked rather than the whole path.
  FileHandle openFolder(const FileHandle& parent, const std::string& name, const fs::path& folder) const {
    FileHandle handle(::openat(parent.get(), name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!handle) throw InputError(folder.string() + ": cannot open folder: " + std::strerror(errno));
    return handle;
  }

  // Reads `relative` in `folder`, which `directory` holds open (see openFolder); `file` names
  // it for the listing.
  ListingText read(const FileHandle& directory, const fs::path& folder, std::string_view relative, std::string file,
                   bool parentIsLink) {
    ListingText result{.text = std::nullopt,
                       .frame = {},
                       .path = joined(folder, relative),
                       .file = std::move(file),
                       .source = TextSource::none};
    const fs::path& path = result.path;
    // Opened relative to the open folder, so that only the file's own name is looked up
    // (the path ends in it, so it needs no string of its own); without following a final
    // link, so that one open answers most files (a link is followed only once it is known
    // to stay inside the root); non-blocking, so that a named pipe is refused rather than
    // waited on.
    const char* const name = path.c_str() + (path.native().size() - relative.size());
    constexpr int kFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK;
    FileHandle handle(::openat(directory.get(), name, kFlags | O_NOFOLLOW));
    if (!handle) {
      if (errno == ENOENT || errno == ENOTDIR) return result;
      if (errno != ELOOP) throw InputError(path.string() + ": cannot read: " + std::strerror(errno));
      requireInside(path, canonicalRoot_);
      handle = FileHandle(::openat(directory.get(), name, kFlags));
      if (!handle) throw InputError(path.string() + ": cannot read: " + std::strerror(errno));
    } else if (parentIsLink) {
      requireInside(path, canonicalRoot_);
    }
    struct stat info {};
    if (::fstat(handle.get(), &info) != 0) throw InputError(path.string() + ": cannot read: " + std::strerror(errno));
    if (!S_ISREG(info.st_mode)) throw InputError(path.string() + ": not a regular file");
    std::string text = contents(handle, path, static_cast<std::uintmax_t>(info.st_size));
    result.frame = unframe(text);
    result.text = std::move(text);
    result.source = TextSource::own;
    return result;
  }

  // Whether `folder` (below the root) is reached through a symbolic link; a link must stay
  // inside the root and lead somewhere, or a locale would go unchecked without a word.
  bool checkLink(const fs::path& folder) const {
    std::error_code error;
    if (!fs::is_symlink(fs::symlink_status(folder, error))) return false;
    if (!fs::exists(folder, error)) throw InputError(folder.string() + ": broken symbolic link");
    requireInside(folder, canonicalRoot_);
    return true;
  }

 private:
  std::string contents(const FileHandle& file, const fs::path& path, std::uintmax_t size) {
    if (size > kMaxFileSize) {
      throw InputError(path.string() + ": file is " + std::to_string(size) + " bytes, more than the 1 MiB allowed");
    }
    std::string text(static_cast<std::size_t>(size), '\0');
    std::size_t done = 0;
    while (done < text.size()) {
      const auto got = ::read(file.get(), text.data() + done, text.size() - done);
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) throw InputError(path.string() + ": cannot read: " + std::strerror(errno));
      if (got == 0) throw InputError(path.string() + ": cannot read the whole file");
      done += static_cast<std::size_t>(got);
    }
    bytesRead_ += text.size();
    if (auto offset = firstInvalidUtf8Offset(text)) {
      throw InputError(path.string() + ": not valid UTF-8 at byte offset " + std::to_string(*offset));
    }
    return text;
  }

  const fs::path& canonicalRoot_;
  std::uintmax_t bytesRead_ = 0;
};

// The newest "changelogs/<versionCode>.txt" in `folder`: the highest version code, compared
// as a number; nothing when there is none. default.txt and other names are no version code.
std::optional<std::string> newestChangelog(const fs::path& folder) {
  std::error_code error;
  std::optional<std::pair<std::uint64_t, std::string>> newest;
  for (const auto& entry : fs::directory_iterator(folder / "changelogs", error)) {
    const std::string name = entry.path().filename().string();
    if (!name.ends_with(".txt")) continue;
    const std::string_view digits = std::string_view(name).substr(0, name.size() - 4);
    std::uint64_t code = 0;
    const auto [end, problem] = std::from_chars(digits.data(), digits.data() + digits.size(), code);
    if (digits.empty() || problem != std::errc() || end != digits.data() + digits.size()) continue;
    if (!newest || code > newest->first) newest = std::pair(code, name);
  }
  if (!newest) return std::nullopt;
  return "changelogs/" + newest->second;
}

// Reads the locale folder `name` of the root, which `root` holds open, into `locale`;
// `isLink` says whether it is reached through a (checked) link. Filled in place: a
// LocaleFolder holds a text for every field of every store, and moving one costs as much
// as filling it.
void readLocale(Reader& reader, const FileHandle& root, const std::string& name, const fs::path& folder,
                std::span<const ListingField> fields, bool isLink, LocaleFolder& locale) {
  const FileHandle directory = reader.openFolder(root, name, folder);
  locale.locale = name;
  locale.folder = folder;
  for (const auto field : fields) {
    std::string_view relative = fieldFile(field);
    std::optional<std::string> newest;
    if (field == ListingField::changelog) {
      newest = newestChangelog(folder);
      if (!newest) continue;  // nothing to read; the text stays empty with no file
      relative = *newest;
    }
    const bool inLinkedFolder = relative.starts_with("changelogs/") && reader.checkLink(folder / "changelogs");
    std::string file;
    file.reserve(name.size() + 1 + relative.size());
    file.append(name).append(1, '/').append(relative);
    locale.text(field) = reader.read(directory, folder, relative, std::move(file), isLink || inLinkedFolder);
  }
}

bool holdsListingFile(const fs::path& folder, std::span<const ListingField> fields) {
  std::error_code error;
  return std::ranges::any_of(fields, [&](ListingField field) {
    return field != ListingField::changelog && fs::exists(folder / fieldFile(field), error);
  });
}

}  // namespace

bool looksLikeLocale(std::string_view name) noexcept {
  std::size_t position = 0;
  while (position < name.size() && isLower(name[position])) ++position;
  if (position < 2 || position > 3) return false;
  while (position < name.size()) {
    if (name[position] != '-') return false;
    const std::size_t start = ++position;
    while (position < name.size() && isAlnum(name[position])) ++position;
    const std::size_t length = position - start;
    if (length < 2 || length > 8) return false;
  }
  return true;
}

ListingFolder readListingFolder(const fs::path& root, const StoreFacts& facts,
                                std::span<const std::string> extraLocales) {
  std::error_code error;
  if (!fs::is_directory(root, error)) {
    throw InputError(root.string() + (fs::exists(root, error) ? ": not a folder" : ": no such folder"));
  }
  const fs::path canonicalRoot = fs::canonical(root, error);
  if (error) throw InputError(root.string() + ": cannot open folder: " + error.message());
  Reader reader(canonicalRoot);

  ListingFolder listing{
      .root = root, .locales = {}, .unknownLocales = {}, .defaults = {}, .shared = {}, .bytesRead = 0};
  struct LocaleEntry {
    std::string name;
    bool isLink;  // reached through a symbolic link (checked: it stays inside the root)
  };
  std::vector<LocaleEntry> localeNames;
  fs::directory_iterator entries(root, error);
  if (error) throw InputError(root.string() + ": cannot read folder: " + error.message());
  for (const auto& entry : entries) {
    const std::string name = entry.path().filename().string();
    std::error_code entryError;
    if (name.starts_with('.') || facts.isSharedFolder(name)) continue;
    const bool known = facts.isLocale(name) || std::ranges::find(extraLocales, name) != extraLocales.end();
    if (known) {
      // The entry knows its own type from the listing, so a plain folder costs no lstat.
      const bool isLink = entry.is_symlink(entryError) && reader.checkLink(entry.path());
      if (entry.is_directory(entryError)) localeNames.push_back({name, isLink});
    } else if (entry.is_directory(entryError) &&
               (looksLikeLocale(name) || holdsListingFile(entry.path(), facts.localeFields()))) {
      listing.unknownLocales.push_back({name, facts.closestLocale(name)});
    }
  }
  std::ranges::sort(localeNames, {}, &LocaleEntry::name);
  std::ranges::sort(listing.unknownLocales, {}, &UnknownLocaleFolder::name);
  if (localeNames.empty()) {
    std::string message = root.string() + ": no locale folders (such as en-US) found";
    if (!listing.unknownLocales.empty()) {
      const auto& unknown = listing.unknownLocales.front();
      message += "; '" + unknown.name + "' is not a locale code the store knows";
      if (unknown.suggestion) message += " (did you mean '" + *unknown.suggestion + "'?)";
    }
    throw InputError(message);
  }

  const FileHandle rootFolder = reader.openFolder(root);
  std::optional<LocaleFolder> defaults;
  if (facts.hasDefaultFolder() && fs::is_directory(root / "default", error)) {
    readLocale(reader, rootFolder, "default", root / "default", facts.localeFields(),
               reader.checkLink(root / "default"), defaults.emplace());
  }
  listing.locales.reserve(localeNames.size());
  for (const auto& [name, isLink] : localeNames) {
    LocaleFolder& locale = listing.locales.emplace_back();
    readLocale(reader, rootFolder, name, root / name, facts.localeFields(), isLink, locale);
    const bool anyFile = std::ranges::any_of(locale.texts, [](const ListingText& t) { return t.text.has_value(); });
    if (!anyFile && !defaults) {
      throw InputError(locale.folder.string() + ": locale folder holds none of the metadata files");
    }
    if (defaults) {
      for (const auto field : facts.localeFields()) {
        auto& text = locale.text(field);
        const auto& fallback = defaults->text(field);
        if (text.text || !fallback.text) continue;
        text = fallback;
        text.source = TextSource::defaults;
      }
    }
  }
  listing.defaults = std::move(defaults);

  const bool reviewIsLink = !facts.sharedFields().empty() && reader.checkLink(root / "review_information");
  for (const auto field : facts.sharedFields()) {
    const std::string_view file = fieldFile(field);
    listing.sharedText(field) =
        reader.read(rootFolder, root, file, std::string(file), file.starts_with("review_information/") && reviewIsLink);
  }
  listing.bytesRead = reader.bytesRead();
  return listing;
}

const StoreFacts& chosenStoreFacts(std::string_view choice, const fs::path& root) {
  if (choice == "auto") return StoreFacts::of(detectStore(root));
  if (const auto chosen = storeFromKey(choice)) return StoreFacts::of(*chosen);
  throw InputError("'" + std::string(choice) + "' is not a store: choose appstore, play or auto");
}

StoreId detectStore(const fs::path& root) {
  std::error_code error;
  auto holdsAny = [&](const fs::path& folder, std::span<const ListingField> fields) {
    return std::ranges::any_of(fields, [&](ListingField field) {
      return field != ListingField::changelog && fs::exists(folder / fieldFile(field), error);
    });
  };
  if (holdsAny(root, kSharedFields)) return StoreId::appStore;
  bool play = false;
  for (const auto& entry : fs::directory_iterator(root, error)) {
    std::error_code entryError;
    if (!entry.is_directory(entryError) || entry.path().filename().string().starts_with('.')) continue;
    if (holdsAny(entry.path(), kLocaleFields)) return StoreId::appStore;
    play = play || holdsAny(entry.path(), kPlayLocaleFields);
  }
  return play ? StoreId::googlePlay : StoreId::appStore;
}

}  // namespace corvane::store
