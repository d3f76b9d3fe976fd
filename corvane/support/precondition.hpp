#pragma once

#include <concepts>
#include <source_location>
#include <string_view>

namespace corvane::detail {

#if defined(__cpp_lib_source_location)
using SourceLocation = std::source_location;
#else
/// Where a call was made. clang 14 with libstdc++ 12 lacks `std::source_location` (the
/// library needs a builtin clang only gained later), so the fuzz build uses this stand-in.
struct SourceLocation {
  static constexpr SourceLocation current(const char* file = __builtin_FILE(),
                                          unsigned line = __builtin_LINE()) noexcept {
    return SourceLocation{file, line};
  }
  constexpr const char* file_name() const noexcept { return file_; }
  constexpr unsigned line() const noexcept { return line_; }

  const char* file_;
  unsigned line_;
};
#endif

/// Reports a broken precondition on standard error and aborts the process.
[[noreturn]] void preconditionFailure(std::string_view message,
                                      detail::SourceLocation where = detail::SourceLocation::current());

}  // namespace corvane::detail

/// Aborts the process with `message` when `condition` is false. Reserved for programming
/// errors that the library documents as fatal; everything a user can cause is reported
/// as a value or a typed error instead.
#define CORVANE_PRECONDITION(condition, message)         \
  do {                                                   \
    if (!(condition)) [[unlikely]] {                     \
      ::corvane::detail::preconditionFailure((message)); \
    }                                                    \
  } while (false)

namespace corvane {

/// `a + b`, aborting through the precondition failure when the result does not fit in T.
template <std::integral T>
[[nodiscard]] T checkedAdd(T a, T b, detail::SourceLocation where = detail::SourceLocation::current()) {
  T result{};
  if (__builtin_add_overflow(a, b, &result)) [[unlikely]] {
    detail::preconditionFailure("integer overflow in addition", where);
  }
  return result;
}

/// `a - b`, aborting through the precondition failure when the result does not fit in T.
template <std::integral T>
[[nodiscard]] T checkedSubtract(T a, T b, detail::SourceLocation where = detail::SourceLocation::current()) {
  T result{};
  if (__builtin_sub_overflow(a, b, &result)) [[unlikely]] {
    detail::preconditionFailure("integer overflow in subtraction", where);
  }
  return result;
}

/// `a * b`, aborting through the precondition failure when the result does not fit in T.
template <std::integral T>
[[nodiscard]] T checkedMultiply(T a, T b, detail::SourceLocation where = detail::SourceLocation::current()) {
  T result{};
  if (__builtin_mul_overflow(a, b, &result)) [[unlikely]] {
    detail::preconditionFailure("integer overflow in multiplication", where);
  }
  return result;
}

}  // namespace corvane
