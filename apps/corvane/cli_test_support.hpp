#pragma once

#include "cli.hpp"
#include "corvane/testing/temporary_folder.hpp"

#include <filesystem>
#include <string>
#include <vector>

namespace corvane::cli::testing {

using corvane::testing::readFile;
using corvane::testing::TemporaryFolder;
using corvane::testing::writeFile;

/// The bundled sample metadata in the source tree (tests copy it before changing anything).
std::filesystem::path sourceSample();

/// Copies the sample metadata into `destination` and returns `destination`.
std::filesystem::path copySample(const std::filesystem::path& destination);

/// What one run of the command line printed, and the status it ended with.
struct Run {
  int status;
  std::string out;
  std::string err;
};

/// Runs the command line with `arguments` on `terminal`, capturing what it prints.
Run run(const std::vector<std::string>& arguments, Terminal terminal = {});

}  // namespace corvane::cli::testing
