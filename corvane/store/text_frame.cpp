#include "corvane/store/text_frame.hpp"

namespace corvane::store {

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

}  // namespace corvane::store
