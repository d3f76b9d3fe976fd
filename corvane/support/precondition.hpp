#pragma once

#include <concepts>
#include <source_location>
#include <string_view>

namespace corvane::detail {

/// Reports a broken precondition on standard error and aborts the process.
[[noreturn]] void preconditionFailure(std::string_view message,
                                      std::source_location where = std::source_location::current());

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
[[nodiscard]] T checkedAdd(T a, T b, std::source_location where = std::source_location::current()) {
  T result{};
  if (__builtin_add_overflow(a, b, &result)) [[unlikely]] {
    detail::preconditionFailure("integer overflow in addition", where);
  }
  return result;
}

/// `a - b`, aborting through the precondition failure when the result does not fit in T.
template <std::integral T>
[[nodiscard]] T checkedSubtract(T a, T b, std::source_location where = std::source_location::current()) {
  T result{};
  if (__builtin_sub_overflow(a, b, &result)) [[unlikely]] {
    detail::preconditionFailure("integer overflow in subtraction", where);
  }
  return result;
}

/// `a * b`, aborting through the precondition failure when the result does not fit in T.
template <std::integral T>
[[nodiscard]] T checkedMultiply(T a, T b, std::source_location where = std::source_location::current()) {
  T result{};
  if (__builtin_mul_overflow(a, b, &result)) [[unlikely]] {
    detail::preconditionFailure("integer overflow in multiplication", where);
  }
  return result;
}

}  // namespace corvane
