// Every rule-language preset on arbitrary values: a verdict always comes back, and a
// length verdict carries the numbers of the trimmed value's character count.
#include "corvane/text/characters.hpp"
#include "corvane/tracking/tracked.hpp"
#include "fuzz_check.hpp"

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

using Text = corvane::Tracked<std::string>;

// The checks a preset with a character limit must pass on `value`.
void checkLengthPreset(const Text& field, const std::string& name, bool required, std::int64_t limit,
                       const std::string& value) {
  const corvane::ValidationResult verdict = field.validationResult();
  FUZZ_CHECK(verdict == field.validate());
  const std::string_view text = corvane::trimmed(value);
  const auto count = static_cast<std::int64_t>(corvane::characterCount(text));
  if (text.empty()) {
    FUZZ_CHECK(verdict.isValid == !required);
    if (required) FUZZ_CHECK(verdict.message == name + " is required");
  } else if (count > limit) {
    FUZZ_CHECK(!verdict.isValid);
    FUZZ_CHECK(verdict.message == name + " is " + std::to_string(count - limit) + " characters too long");
    FUZZ_CHECK((verdict.severity == corvane::ValidationSeverity::critical) == (count > 2 * limit));
  } else {
    FUZZ_CHECK(verdict.isValid);
    FUZZ_CHECK(verdict.message == name + " is valid");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string value(reinterpret_cast<const char*>(data), size);
  checkLengthPreset(Text::appNameDSL(value), "App name", true, 30, value);
  checkLengthPreset(Text::subtitleDSL(value), "Subtitle", true, 30, value);
  checkLengthPreset(Text::descriptionDSL(value), "Description", false, 4000, value);
  checkLengthPreset(Text::keywordsDSL(value), "Keywords", false, 100, value);

  // The support address is judged by its scheme alone, on the untrimmed value.
  const Text supportURL = Text::supportURLDSL(value);
  FUZZ_CHECK(supportURL.validationResult() == supportURL.validate());
  const bool hasScheme = value.starts_with("https://") || value.starts_with("http://");
  FUZZ_CHECK(supportURL.validationResult().isValid == (value.empty() || hasScheme));
  if (!supportURL.validationResult().isValid) {
    FUZZ_CHECK(supportURL.validationResult().message == "Support URL should start with https://");
  }
  return 0;
}
