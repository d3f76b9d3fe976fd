#include "corvane/completion/completion_error.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace corvane {
namespace {

using Kind = CompletionError::Kind;

TEST(CompletionError, EachCaseHasItsTextAndOnlyTheWrappingCasesKeepTheirError) {
  const auto diskFull = std::make_exception_ptr(std::runtime_error("disk full"));
  const auto empty = std::make_exception_ptr(std::runtime_error(""));
  const auto timedOut = std::make_exception_ptr(CompletionError::timeout());
  const auto notStandard = std::make_exception_ptr(42);
  struct Case {
    CompletionError error;
    Kind kind;
    std::string text;
    std::exception_ptr underlying;
  };
  const Case cases[] = {
      // The wrapping cases append the underlying description directly: no separator is
      // added, not even for an empty description.
      {CompletionError::executionFailed(diskFull), Kind::executionFailed, "Completion failed: disk full", diskFull},
      {CompletionError::unknown(diskFull), Kind::unknown, "Unknown completion error: disk full", diskFull},
      {CompletionError::executionFailed(empty), Kind::executionFailed, "Completion failed: ", empty},
      {CompletionError::executionFailed(timedOut), Kind::executionFailed, "Completion failed: Completion timed out",
       timedOut},
      {CompletionError::unknown(notStandard), Kind::unknown, "Unknown completion error: unknown error", notStandard},
      {CompletionError::requirementsNotMet(), Kind::requirementsNotMet,
       "Cannot complete - not all requirements are met", nullptr},
      {CompletionError::hasBlockingIssues(), Kind::hasBlockingIssues,
       "Cannot complete - there are blocking issues that need to be resolved", nullptr},
      {CompletionError::timeout(), Kind::timeout, "Completion timed out", nullptr},
      {CompletionError::cancelled(), Kind::cancelled, "Completion was cancelled", nullptr},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c.error.kind(), c.kind) << c.text;
    EXPECT_EQ(c.error.errorDescription(), c.text);
    EXPECT_EQ(std::string(c.error.what()), c.text);
    EXPECT_EQ(c.error.underlyingError(), c.underlying) << c.text;
  }
}

TEST(CompletionError, IsThrownAndCaughtAsAStandardException) {
  try {
    throw CompletionError::executionFailed(std::make_exception_ptr(std::runtime_error("disk full")));
  } catch (const std::exception& error) {
    EXPECT_STREQ(error.what(), "Completion failed: disk full");
    return;
  }
  FAIL() << "not caught as std::exception";
}

TEST(CompletionError, CopiesKeepTheirTextAfterTheOriginalIsGone) {
  auto original = std::make_unique<CompletionError>(CompletionError::cancelled());
  const CompletionError copy = *original;
  original.reset();
  EXPECT_STREQ(copy.what(), "Completion was cancelled");
  EXPECT_EQ(copy.kind(), Kind::cancelled);
}

TEST(CompletionErrorDeathTest, WrappingNothingIsAProgrammingError) {
  EXPECT_DEATH((void)CompletionError::executionFailed(nullptr), "precondition failed: .*underlying error");
  EXPECT_DEATH((void)CompletionError::unknown(nullptr), "precondition failed: .*underlying error");
}

}  // namespace
}  // namespace corvane
