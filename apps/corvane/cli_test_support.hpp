#pragma once

#include "corvane/testing/temporary_folder.hpp"

#include <filesystem>
#include <functional>
#include <string>

namespace corvane::cli::testing {

using corvane::testing::readFile;
using corvane::testing::TemporaryFolder;
using corvane::testing::writeFile;

/// The bundled sample metadata in the source tree (tests copy it before changing anything).
std::filesystem::path sourceSample();

/// Copies the sample metadata into `destination` and returns `destination`.
std::filesystem::path copySample(const std::filesystem::path& destination);

/// Runs `action` and returns the message of the `InputError` it must throw; records a test
/// failure and returns an empty text when it throws none.
std::string inputErrorOf(const std::function<void()>& action);

}  // namespace corvane::cli::testing
