// A program outside the project that uses the installed package.
#include <corvane/corvane.hpp>

#include <string>

int main() {
  auto verdict = corvane::ValidationResult::combine({
      corvane::ValidationResult::validRequired("Name"),
      corvane::ValidationResult::tooLong("App Name", 30, 31, [] {}),
  });
  corvane::printLine(std::string("corvane ") + corvane::CorvaneVersionString + ": " + verdict.fullMessage() + " (" +
                     verdict.uiPresentation().iconName + ")");
  return verdict.isValid ? 1 : 0;
}
