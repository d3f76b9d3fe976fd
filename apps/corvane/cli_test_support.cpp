#include "cli_test_support.hpp"

#include <sstream>

namespace corvane::cli::testing {
namespace fs = std::filesystem;

fs::path sourceSample() {
  return CORVANE_SOURCE_SAMPLE;
}

fs::path copySample(const fs::path& destination) {
  fs::copy(sourceSample(), destination, fs::copy_options::recursive);
  return destination;
}

Run run(const std::vector<std::string>& arguments, Terminal terminal) {
  std::ostringstream out;
  std::ostringstream err;
  const int status = runCli(arguments, out, err, terminal);
  return {status, out.str(), err.str()};
}

}  // namespace corvane::cli::testing
