#pragma once

#include <functional>
#include <string_view>

namespace corvane {

/// Receives every line the library prints, without its trailing newline.
using LineOutput = std::function<void(std::string_view line)>;

/// Writes `line` and a newline to the current line output (standard output unless a host
/// replaced it). Safe to call from any thread: lines never interleave. The output must not
/// call `printLine` itself.
void printLine(std::string_view line);

/// Replaces the line output and returns the previous one. An empty function restores
/// standard output.
LineOutput setLineOutput(LineOutput output);

}  // namespace corvane
