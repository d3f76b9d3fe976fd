#pragma once

#include <string>
#include <string_view>

namespace corvane::store {

/// The UTF-8 byte-order mark some editors put at the start of a file.
inline constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

/// The bytes of a text file that are not part of its text: a UTF-8 byte-order mark before
/// it and the final line breaks after it, exactly as written ("\n", "\r\n\n", ...).
struct TextFrame {
  bool byteOrderMark = false;
  std::string finalLineBreaks;

  /// `text` as the file would hold it, framed the same way.
  std::string around(std::string_view text) const;

  friend bool operator==(const TextFrame&, const TextFrame&) = default;
};

/// Removes the frame from a file's `contents`, leaving its text, and returns the frame.
TextFrame unframe(std::string& contents);

}  // namespace corvane::store
