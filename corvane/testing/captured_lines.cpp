#include "corvane/testing/captured_lines.hpp"

namespace corvane::testing {

CapturedLines::CapturedLines() {
  previous_ = setLineOutput([this](std::string_view line) {
    std::lock_guard lock(mutex_);
    lines_.emplace_back(line);
  });
}

CapturedLines::~CapturedLines() {
  setLineOutput(std::move(previous_));
}

std::vector<std::string> CapturedLines::lines() const {
  std::lock_guard lock(mutex_);
  return lines_;
}

void CapturedLines::clear() {
  std::lock_guard lock(mutex_);
  lines_.clear();
}

}  // namespace corvane::testing
