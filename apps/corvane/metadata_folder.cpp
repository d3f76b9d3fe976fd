#include "metadata_folder.hpp"

#include "input_error.hpp"

#include "corvane/text/characters.hpp"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <system_error>

#include <sys/stat.h>

namespace corvane::cli {
namespace fs = std::filesystem;
namespace {

bool isLower(char c) {
  return c >= 'a' && c <= 'z';
}
bool isAlnum(char c) {
  return isLower(c) || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

// A symbolic link may point anywhere inside the folder (teams share texts between
// locales), but never out of it: the checker and --fix must stay within what they were given.
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

std::string readTextFile(const fs::path& path, std::uintmax_t size, std::uintmax_t& bytesRead) {
  if (size > kMaxFileSize) {
    throw InputError(path.string() + ": file is " + std::to_string(size) + " bytes, more than the 1 MiB allowed");
  }
  std::ifstream stream(path, std::ios::binary);
  if (!stream) throw InputError(path.string() + ": cannot open for reading");
  std::string text(static_cast<std::size_t>(size), '\0');
  stream.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (stream.gcount() != static_cast<std::streamsize>(text.size())) {
    throw InputError(path.string() + ": cannot read the whole file");
  }
  bytesRead += text.size();
  if (auto offset = firstInvalidUtf8Offset(text)) {
    throw InputError(path.string() + ": not valid UTF-8 at byte offset " + std::to_string(*offset));
  }
  return text;
}

// Reads `path` if it exists as a regular file (or a link to one inside the root).
// `parentIsLink` says whether a folder between the root and the file is a link, in which
// case the path is resolved even when the file itself is not a link.
std::optional<std::string> readOptionalFile(const fs::path& path, bool parentIsLink, const fs::path& canonicalRoot,
                                            std::uintmax_t& bytesRead, TextFrame& frame) {
  // One lstat answers most files: present, not a link, regular, and its size.
  struct stat info {};
  if (::lstat(path.c_str(), &info) != 0) {
    if (errno == ENOENT || errno == ENOTDIR) return std::nullopt;
    throw InputError(path.string() + ": cannot read: " + std::strerror(errno));
  }
  if (S_ISLNK(info.st_mode) || parentIsLink) {
    requireInside(path, canonicalRoot);
    if (::stat(path.c_str(), &info) != 0) throw InputError(path.string() + ": cannot read: " + std::strerror(errno));
  }
  if (!S_ISREG(info.st_mode)) throw InputError(path.string() + ": not a regular file");
  std::string text = readTextFile(path, static_cast<std::uintmax_t>(info.st_size), bytesRead);
  frame = unframe(text);
  return text;
}

}  // namespace

std::string TextFrame::around(std::string_view text) const {
  std::string contents = byteOrderMark ? std::string(kByteOrderMark) : std::string();
  contents.append(text);
  return contents + finalLineBreaks;
}

// Editors add a final line break and some a byte-order mark; neither is store text, and
// counting them would make a fix cut a real character.
TextFrame unframe(std::string& contents) {
  TextFrame frame;
  if (contents.starts_with(kByteOrderMark)) {
    frame.byteOrderMark = true;
    contents.erase(0, kByteOrderMark.size());
  }
  const auto end = contents.find_last_not_of("\r\n");
  const auto keep = end == std::string::npos ? 0 : end + 1;
  frame.finalLineBreaks = contents.substr(keep);
  contents.resize(keep);
  return frame;
}

std::string_view LocaleMetadata::text(MetadataField field) const {
  const auto& value = texts[static_cast<std::size_t>(field)];
  return value ? std::string_view(*value) : std::string_view();
}

bool isLocaleFolderName(std::string_view name) noexcept {
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

MetadataFolder readMetadataFolder(const fs::path& root) {
  std::error_code error;
  if (!fs::is_directory(root, error)) {
    throw InputError(root.string() + (fs::exists(root, error) ? ": not a folder" : ": no such folder"));
  }
  const fs::path canonicalRoot = fs::canonical(root, error);
  if (error) throw InputError(root.string() + ": cannot open folder: " + error.message());

  MetadataFolder folder{.root = root, .locales = {}, .reviewEmail = std::nullopt, .bytesRead = 0};
  fs::directory_iterator entries(root, error);
  if (error) throw InputError(root.string() + ": cannot read folder: " + error.message());
  for (const auto& entry : entries) {
    const std::string name = entry.path().filename().string();
    if (!isLocaleFolderName(name)) continue;
    std::error_code entryError;
    const bool isLink = entry.is_symlink(entryError);
    if (isLink) {
      // A locale that a dangling link hides would silently go unchecked.
      if (!fs::exists(entry.path(), entryError)) throw InputError(entry.path().string() + ": broken symbolic link");
      requireInside(entry.path(), canonicalRoot);
    }
    if (!entry.is_directory(entryError)) continue;
    LocaleMetadata locale{.locale = name, .folder = entry.path(), .texts = {}, .frames = {}};
    bool anyFile = false;
    for (const auto field : kLocaleFields) {
      const auto index = static_cast<std::size_t>(field);
      locale.texts[index] = readOptionalFile(entry.path() / fileName(field), isLink, canonicalRoot, folder.bytesRead,
                                             locale.frames[index]);
      anyFile = anyFile || locale.texts[index].has_value();
    }
    if (!anyFile) throw InputError(entry.path().string() + ": locale folder holds none of the metadata files");
    folder.locales.push_back(std::move(locale));
  }
  if (error) throw InputError(root.string() + ": cannot read folder: " + error.message());
  if (folder.locales.empty()) throw InputError(root.string() + ": no locale folders (such as en-US) found");
  std::ranges::sort(folder.locales, {}, &LocaleMetadata::locale);

  TextFrame ignored;
  folder.reviewEmail = readOptionalFile(root / "review_information" / "email_address.txt",
                                        fs::is_symlink(fs::symlink_status(root / "review_information", error)),
                                        canonicalRoot, folder.bytesRead, ignored);
  return folder;
}

}  // namespace corvane::cli
