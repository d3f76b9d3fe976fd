#include "corvane/support/uuid.hpp"

#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <algorithm>
#include <cctype>

namespace corvane {

std::string newUuidString() {
  // Seeding reads the system's entropy source and a generator is not thread-safe: one per thread.
  thread_local boost::uuids::random_generator generator;
  return boost::uuids::to_string(generator());
}

std::string newUppercaseUuidString() {
  std::string text = newUuidString();
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return text;
}

}  // namespace corvane
