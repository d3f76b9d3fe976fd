#pragma once

#include <concepts>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace corvane {

// `describe(value)` is the library's default textual rendering of a value, used wherever
// a value is shown in a change description or a printed line. Strings render verbatim,
// booleans as true/false, integers in decimal, floating-point numbers in their shortest
// round-trip form with at least one fractional digit ("0.5", "1.0"), lists as
// ["a", "b"] and optionals as the value or "nil". A type of your own takes part by
// providing `std::string describe(const T&)` in its namespace, found by argument-
// dependent lookup.

/// The text itself, unchanged.
std::string describe(std::string_view text);
inline std::string describe(const std::string& text) {
  return text;
}
inline std::string describe(const char* text) {
  return std::string(text);
}

/// "true" or "false".
std::string describe(bool value);

/// The decimal rendering of an integer, without grouping.
std::string describe(long long value);
std::string describe(unsigned long long value);

template <std::integral T>
requires(!std::same_as<T, bool> && !std::same_as<T, char>) std::string describe(T value) {
  if constexpr (std::is_signed_v<T>) {
    return describe(static_cast<long long>(value));
  } else {
    return describe(static_cast<unsigned long long>(value));
  }
}

/// The shortest text that reads back as the same double, with ".0" added to whole numbers.
std::string describe(double value);
inline std::string describe(float value) {
  return describe(static_cast<double>(value));
}

/// A string in double quotes with quotes, backslashes and control characters escaped,
/// the way list elements are shown.
std::string quoted(std::string_view text);

template <class T>
std::string describe(const std::vector<T>& values);
template <class T>
std::string describe(const std::optional<T>& value);

namespace detail {

template <class T>
std::string describeElement(const T& value) {
  if constexpr (std::is_convertible_v<const T&, std::string_view>) {
    return quoted(std::string_view(value));
  } else {
    return describe(value);
  }
}

}  // namespace detail

/// The elements in brackets, separated by ", ": ["a", "b"], [1, 2], [].
template <class T>
std::string describe(const std::vector<T>& values) {
  std::string text = "[";
  bool first = true;
  for (const auto& value : values) {
    if (!first) text += ", ";
    first = false;
    text += detail::describeElement(value);
  }
  text += "]";
  return text;
}

/// "nil" when empty, otherwise the contained value's rendering.
template <class T>
std::string describe(const std::optional<T>& value) {
  return value ? describe(*value) : std::string("nil");
}

/// The description of an error for people: `what()` of a standard exception (the library's
/// typed errors return their description there), "unknown error" for anything else or null.
std::string errorDescription(const std::exception_ptr& error);

/// Types that `describe` can render.
template <class T>
concept Describable = requires(const T& value) {
  { describe(value) } -> std::convertible_to<std::string>;
};

}  // namespace corvane
