#include "corvane/support/url.hpp"

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(Url, KeepsTheTextOfAbsoluteUrls) {
  auto url = Url::parse("https://example.com/help?topic=name#top");
  ASSERT_TRUE(url);
  EXPECT_EQ(url->text(), "https://example.com/help?topic=name#top");
  EXPECT_EQ(Url::parse("mailto:support@example.com")->text(), "mailto:support@example.com");
  EXPECT_EQ(*Url::parse("https://a.example"), *Url::parse("https://a.example"));
  EXPECT_NE(*Url::parse("https://a.example"), *Url::parse("https://b.example"));
}

TEST(Url, TextThatDoesNotParseStaysAbsent) {
  EXPECT_FALSE(Url::parse(""));
  EXPECT_FALSE(Url::parse("example.com/no-scheme"));
  EXPECT_FALSE(Url::parse("https://exa mple.com"));
  EXPECT_FALSE(Url::parse("ht tp://x"));
  EXPECT_FALSE(Url::parse(std::string_view("https://x\0y", 11)));
}

}  // namespace
}  // namespace corvane
