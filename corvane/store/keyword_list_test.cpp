#include "corvane/store/keyword_list.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace corvane::store {
namespace {

TEST(KeywordListTest, TrimsToWholeKeywordsAndWholeCharacters) {
  struct Case {
    std::string list;
    std::int64_t limit;
    std::optional<std::string> expected;  // nothing: not even the first keyword fits
  };
  for (const auto& c : std::vector<Case>{{"alpha,beta,gamma", 12, "alpha,beta"},
                                         {"alpha,beta,gamma", 10, "alpha,beta"},
                                         {"alpha, beta ,gamma", 13, "alpha, beta"},
                                         {"alpha,beta,,gamma", 11, "alpha,beta"},
                                         {"alpha,beta", 20, "alpha,beta"},
                                         {"word,supercalifragilistic", 5, "word"},
                                         // a keyword is never cut: the list is left for its owner
                                         {"supercalifragilistic,word", 5, std::nullopt},
                                         {"supercalifragilistic", 5, std::nullopt},
                                         {" , ,alpha", 2, std::nullopt}}) {
    EXPECT_EQ(trimKeywordsToLimit(c.list, c.limit), c.expected) << c.list << " to " << c.limit;
  }
  EXPECT_EQ(trimToLimit("  abc def  ", 4), "abc");
  EXPECT_EQ(trimToLimit("e\u0301e\u0301e\u0301", 2), "e\u0301e\u0301") << "a mark stays with its letter";
}

TEST(KeywordListTest, SplitsTidiesAndDropsRepeats) {
  const auto spans = splitKeywords(" notes, ,lists ,Notes");
  ASSERT_EQ(spans.size(), 3u);
  EXPECT_EQ(spans[0].text, "notes");
  EXPECT_EQ(spans[0].offset, 1u);
  EXPECT_EQ(spans[2].text, "Notes");
  EXPECT_EQ(spans[2].offset, 16u);

  EXPECT_EQ(withoutSpacesAroundCommas(" notes , lists,\u00A0todo "), "notes,lists,todo");
  EXPECT_EQ(withoutDuplicateKeywords("a, b, A"), "a, b");
  EXPECT_EQ(withoutDuplicateKeywords("A,a,b,B,c"), "A,b,c");
  EXPECT_EQ(withoutDuplicateKeywords("\u00C4pfel,\u00E4pfel"), "\u00C4pfel") << "letter case beyond ASCII";
  EXPECT_EQ(withoutDuplicateKeywords("note,notes"), "note,notes");
}

}  // namespace
}  // namespace corvane::store
