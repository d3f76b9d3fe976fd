#include "json_writer.hpp"

#include "corvane/text/characters.hpp"

#include <fmt/format.h>

#include <string>

namespace corvane::cli {

namespace {

// File contents are checked on reading, but a folder's name may hold any bytes; those that
// are not UTF-8 become U+FFFD, so that the report stays valid JSON.
std::string validUtf8(std::string_view text) {
  std::string result;
  while (const auto offset = firstInvalidUtf8Offset(text)) {
    result.append(text.substr(0, *offset));
    result += "\uFFFD";
    text.remove_prefix(*offset + 1);
  }
  result.append(text);
  return result;
}

}  // namespace

std::string jsonQuoted(std::string_view text) {
  std::string result = "\"";
  for (const char c : validUtf8(text)) {
    switch (c) {
      case '"':
        result += "\\\"";
        break;
      case '\\':
        result += "\\\\";
        break;
      case '\n':
        result += "\\n";
        break;
      case '\r':
        result += "\\r";
        break;
      case '\t':
        result += "\\t";
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          result += fmt::format("\\u{:04x}", static_cast<unsigned>(static_cast<unsigned char>(c)));
        } else {
          result += c;
        }
    }
  }
  return result + "\"";
}

JsonWriter::JsonWriter(std::ostream& out) : out_(out) {}

void JsonWriter::newline() {
  out_ << '\n' << std::string(hasMembers_.size() * 2, ' ');
}

void JsonWriter::beforeValue() {
  if (afterKey_) {
    afterKey_ = false;
    return;
  }
  if (hasMembers_.empty()) return;
  if (hasMembers_.back()) out_ << ',';
  hasMembers_.back() = true;
  newline();
}

void JsonWriter::key(std::string_view name) {
  beforeValue();
  out_ << jsonQuoted(name) << ": ";
  afterKey_ = true;
}

void JsonWriter::beginObject() {
  beforeValue();
  out_ << '{';
  hasMembers_.push_back(false);
}

void JsonWriter::endObject() {
  const bool any = hasMembers_.back();
  hasMembers_.pop_back();
  if (any) newline();
  out_ << '}';
  if (hasMembers_.empty()) out_ << '\n';
}

void JsonWriter::beginArray() {
  beforeValue();
  out_ << '[';
  hasMembers_.push_back(false);
}

void JsonWriter::endArray() {
  const bool any = hasMembers_.back();
  hasMembers_.pop_back();
  if (any) newline();
  out_ << ']';
}

void JsonWriter::value(std::string_view text) {
  beforeValue();
  out_ << jsonQuoted(text);
}

void JsonWriter::value(std::int64_t number) {
  beforeValue();
  out_ << number;
}

void JsonWriter::value(double number) {
  beforeValue();
  out_ << fmt::format("{}", number);
}

void JsonWriter::value(bool flag) {
  beforeValue();
  out_ << (flag ? "true" : "false");
}

void JsonWriter::null() {
  beforeValue();
  out_ << "null";
}

}  // namespace corvane::cli
