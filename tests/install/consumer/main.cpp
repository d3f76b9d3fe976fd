// A program outside the project that uses the installed package.
#include <corvane/corvane.hpp>

#include <filesystem>
#include <string>

int main() {
  auto verdict = corvane::ValidationResult::combine({
      corvane::ValidationResult::validRequired("Name"),
      corvane::ValidationResult::tooLong("App Name", 30, 31, [] {}),
  });
  corvane::printLine(std::string("corvane ") + corvane::CorvaneVersionString + ": " + verdict.fullMessage() + " (" +
                     verdict.uiPresentation().iconName + ")");
  // The installed library finds its resources under the prefix, not in the build tree.
  const auto sample = corvane::CorvaneResources::sampleMetadataDirectory();
  corvane::printLine("resources: " + sample.string() +
                     (std::filesystem::is_regular_file(sample / "en-US" / "name.txt") ? " (found)" : " (missing)"));
  return verdict.isValid ? 1 : 0;
}
