#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>

namespace corvane::testing {

/// Runs `action` and returns a copy of the `Error` it throws; records a test failure and
/// returns nothing when it throws none. Other exceptions pass through.
template <class Error, class Action>
std::optional<Error> thrown(Action&& action) {
  try {
    std::forward<Action>(action)();
  } catch (const Error& error) {
    return error;
  }
  ADD_FAILURE() << "nothing was thrown";
  return std::nullopt;
}

/// The `what()` of the `Error` that `action` throws, or an empty text (and a test failure)
/// when it throws none.
template <class Error, class Action>
std::string thrownMessage(Action&& action) {
  const auto error = thrown<Error>(std::forward<Action>(action));
  return error ? std::string(error->what()) : std::string();
}

}  // namespace corvane::testing
