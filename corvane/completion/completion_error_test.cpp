#include "corvane/completion/completion_error.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace corvane {
namespace {

using Kind = CompletionError::Kind;

TEST(CompletionError, WrappingCasesAppendTheUnderlyingDescriptionDirectly) {
  const auto diskFull = std::make_exception_ptr(std::runtime_error("disk full"));
  const CompletionError failed = CompletionError::executionFailed(diskFull);
  EXPECT_EQ(failed.kind(), Kind::executionFailed);
  EXPECT_EQ(failed.errorDescription(), "Completion failed: disk full");
  EXPECT_STREQ(failed.what(), "Completion failed: disk full");
  EXPECT_EQ(failed.underlyingError(), diskFull);

  const CompletionError unknown = CompletionError::unknown(diskFull);
  EXPECT_EQ(unknown.kind(), Kind::unknown);
  EXPECT_EQ(unknown.errorDescription(), "Unknown completion error: disk full");
  EXPECT_STREQ(unknown.what(), "Unknown completion error: disk full");
  EXPECT_EQ(unknown.underlyingError(), diskFull);

  // No separator is added, not even for an empty underlying description.
  EXPECT_EQ(CompletionError::executionFailed(std::make_exception_ptr(std::runtime_error(""))).errorDescription(),
            "Completion failed: ");
}

TEST(CompletionError, WrapsAnyKindOfException) {
  const CompletionError nested = CompletionError::executionFailed(std::make_exception_ptr(CompletionError::timeout()));
  EXPECT_EQ(nested.errorDescription(), "Completion failed: Completion timed out");
  const CompletionError notStandard = CompletionError::unknown(std::make_exception_ptr(42));
  EXPECT_EQ(notStandard.errorDescription(), "Unknown completion error: unknown error");
}

TEST(CompletionError, CasesWithoutPayloadHaveFixedTexts) {
  struct Case {
    CompletionError error;
    Kind kind;
    std::string text;
  };
  const Case cases[] = {
      {CompletionError::requirementsNotMet(), Kind::requirementsNotMet,
       "Cannot complete - not all requirements are met"},
      {CompletionError::hasBlockingIssues(), Kind::hasBlockingIssues,
       "Cannot complete - there are blocking issues that need to be resolved"},
      {CompletionError::timeout(), Kind::timeout, "Completion timed out"},
      {CompletionError::cancelled(), Kind::cancelled, "Completion was cancelled"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(c.error.kind(), c.kind) << c.text;
    EXPECT_EQ(c.error.errorDescription(), c.text);
    EXPECT_EQ(std::string(c.error.what()), c.text);
    EXPECT_FALSE(c.error.underlyingError()) << c.text;
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
