// The showcase entities' rules on arbitrary values: each verdict agrees with the character
// count (or keyword count) it is documented to depend on, and nothing crashes.
#include "corvane/entities/showcase_app_entity.hpp"
#include "corvane/entities/showcase_user_entity.hpp"
#include "corvane/text/characters.hpp"
#include "fuzz_check.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using corvane::ShowcaseAppEntity;
  using corvane::ShowcaseUserEntity;
  const std::string value(reinterpret_cast<const char*>(data), size);
  const std::size_t count = corvane::characterCount(value);

  FUZZ_CHECK(ShowcaseAppEntity::appNameRule(value).isValid == (count >= 2 && count <= 30));
  FUZZ_CHECK(ShowcaseAppEntity::subtitleRule(value).isValid == (count <= 30));

  const auto version = ShowcaseAppEntity::versionRule(value);
  FUZZ_CHECK(version.isValid || version.message == "Version must be in format X.Y.Z");
  if (version.isValid) {
    FUZZ_CHECK(std::count(value.begin(), value.end(), '.') >= 2);
    FUZZ_CHECK(value.find_first_not_of("0123456789.") == std::string::npos);
  }

  // Keywords: the input split at commas, as a form would split them.
  std::vector<std::string> keywords;
  for (std::size_t start = 0; start < value.size();) {
    const std::size_t comma = std::min(value.find(',', start), value.size());
    keywords.emplace_back(value.substr(start, comma - start));
    start = comma + 1;
  }
  FUZZ_CHECK(ShowcaseAppEntity::keywordsRule(keywords).isValid == (keywords.size() <= 100));

  FUZZ_CHECK(ShowcaseUserEntity::nameRule(value).isValid == !value.empty());
  FUZZ_CHECK(ShowcaseUserEntity::emailRule(value).isValid == (value.find('@') != std::string::npos));
  return 0;
}
