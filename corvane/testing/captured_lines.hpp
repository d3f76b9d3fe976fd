#pragma once

#include "corvane/support/print_line.hpp"

#include <mutex>
#include <string>
#include <vector>

namespace corvane::testing {

/// Collects every line the library prints while it lives, and restores the previous
/// line output when it goes.
class CapturedLines {
 public:
  CapturedLines();
  ~CapturedLines();
  CapturedLines(const CapturedLines&) = delete;
  CapturedLines& operator=(const CapturedLines&) = delete;

  /// The lines printed so far, in order.
  std::vector<std::string> lines() const;
  /// Forgets the lines printed so far.
  void clear();

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> lines_;
  LineOutput previous_;
};

}  // namespace corvane::testing
