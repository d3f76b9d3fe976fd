#pragma once

#include <string>

namespace corvane {

/// A new random (version 4) UUID in its canonical 36-character text form, lower case,
/// e.g. "3f2b8c1e-9d4a-4e6b-8f0a-1c2d3e4f5a6b".
std::string newUuidString();

/// `newUuidString()` in upper case, the form issue and rule identifiers use.
std::string newUppercaseUuidString();

}  // namespace corvane
