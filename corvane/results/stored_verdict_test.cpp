#include "corvane/results/stored_verdict.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace corvane {
namespace {

// Each verdict stored in turn must read back whole: reusing the block of an earlier verdict
// may leave none of its fields behind, and valid() must come back as valid() itself.
TEST(StoredVerdict, ReadsBackEachVerdictStoredInTurn) {
  const auto longFix = ValidationResult::failure(ValidationSeverity::error, "Too long",
                                                 std::string(200, 'x') + " shorten it to 30 characters");
  const auto noFix = ValidationResult::failure(ValidationSeverity::warning, "Check this");
  const auto required = ValidationResult::required("App name");
  const std::vector<ValidationResult> sequence{longFix,  noFix,   ValidationResult::valid(), required,
                                               ValidationResult::info(), longFix, ValidationResult::valid()};

  StoredVerdict stored;
  EXPECT_EQ(stored.get(), ValidationResult::valid());
  for (std::size_t step = 0; step < sequence.size(); ++step) {
    stored.set(sequence[step]);
    EXPECT_EQ(stored.get(), sequence[step]) << "step " << step;
    EXPECT_EQ(stored.get().fullMessage(), sequence[step].fullMessage()) << "step " << step;
  }
  EXPECT_EQ(&stored.get(), &ValidationResult::valid());
}

}  // namespace
}  // namespace corvane
