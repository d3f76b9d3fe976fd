#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// An absolute URI (scheme and the rest) that has been checked to parse, kept as text.
/// Text that does not parse never becomes a `Url`, so holders keep such links absent.
class Url {
 public:
  /// The URL for `text`, or nothing when `text` is not a valid absolute URI.
  static std::optional<Url> parse(std::string_view text);

  /// The URL as it was given.
  const std::string& text() const noexcept { return text_; }

  friend bool operator==(const Url&, const Url&) = default;

 private:
  explicit Url(std::string text) : text_(std::move(text)) {}
  std::string text_;
};

/// The URL's text.
inline std::string describe(const Url& url) {
  return url.text();
}

}  // namespace corvane
