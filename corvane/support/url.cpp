#include "corvane/support/url.hpp"

#include <boost/url/parse.hpp>

namespace corvane {

std::optional<Url> Url::parse(std::string_view text) {
  if (text.empty() || !boost::urls::parse_uri(text)) return std::nullopt;
  return Url(std::string(text));
}

}  // namespace corvane
