#include "cli_test_support.hpp"

#include "corvane/store/input_error.hpp"

#include <gtest/gtest.h>

namespace corvane::cli::testing {
namespace fs = std::filesystem;

fs::path sourceSample() {
  return CORVANE_SOURCE_SAMPLE;
}

fs::path copySample(const fs::path& destination) {
  fs::copy(sourceSample(), destination, fs::copy_options::recursive);
  return destination;
}

std::string inputErrorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const store::InputError& error) {
    return error.what();
  }
  ADD_FAILURE() << "no InputError";
  return {};
}

}  // namespace corvane::cli::testing
