#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::cli {

/// A small streaming JSON writer: objects, arrays, strings, numbers, booleans and null,
/// indented by two spaces. Commas and escaping are its job; nesting is the caller's.
class JsonWriter {
 public:
  /// Writes to `out`, which must outlive the writer.
  explicit JsonWriter(std::ostream& out);

  /// Opens an object or array; as a member of an object, call `key` first.
  void beginObject();
  void endObject();
  void beginArray();
  void endArray();
  /// The name of the next member of the enclosing object.
  void key(std::string_view name);
  /// Scalar values.
  void value(std::string_view text);
  void value(const char* text) { value(std::string_view(text)); }
  void value(std::int64_t number);
  void value(double number);
  void value(bool flag);
  void null();

  /// `key(name)` followed by the value; an absent optional is written as null.
  template <class Value>
  void member(std::string_view name, const Value& scalar) {
    key(name);
    value(scalar);
  }
  void member(std::string_view name, const std::optional<std::string>& text) {
    key(name);
    if (text) {
      value(*text);
    } else {
      null();
    }
  }

 private:
  void beforeValue();
  void newline();

  std::ostream& out_;
  std::vector<bool> hasMembers_;  // one entry per open container
  bool afterKey_ = false;
};

/// `text` as a JSON string literal, quotes included; control characters are escaped as
/// \uXXXX (or \n, \t, ...), everything else is passed through as UTF-8.
std::string jsonQuoted(std::string_view text);

}  // namespace corvane::cli
