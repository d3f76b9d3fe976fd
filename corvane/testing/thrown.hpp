#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>

namespace corvane::testing {

/// Runs `action` and returns a copy of the `Error` it throws; records a test failure and
/// returns nothing when it throws none. Other exceptions pass through. The copy is an
/// `Error`: for a base class such as `std::exception` it loses the derived part, so use
/// `thrownMessage` for the message.
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

/// The `what()` of the `Error` that `action` throws, read from the thrown object itself (so a
/// base class gives the derived message), or an empty text (and a test failure) when it
/// throws none.
template <class Error, class Action>
std::string thrownMessage(Action&& action) {
  try {
    std::forward<Action>(action)();
  } catch (const Error& error) {
    return error.what();
  }
  ADD_FAILURE() << "nothing was thrown";
  return {};
}

}  // namespace corvane::testing
