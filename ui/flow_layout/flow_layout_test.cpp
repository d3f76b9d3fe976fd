#include "ui/flow_layout/flow_layout.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

namespace corvane::ui {

void PrintTo(const Size& size, std::ostream* out) {
  *out << "(" << size.width << " x " << size.height << ")";
}

void PrintTo(const Frame& frame, std::ostream* out) {
  *out << "(" << frame.x << ", " << frame.y << ", " << frame.width << " x " << frame.height << ")";
}

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(FlowLayoutRows, ThreeChipsWrapTheThirdOntoASecondRow) {
  const FlowLayout layout(8);
  const std::vector<Size> chips(3, Size{40, 20});

  EXPECT_EQ(layout.sizeThatFits(100.0, chips), (Size{100, 48}));
  EXPECT_THAT(layout.placeSubviews(0, 0, 100.0, chips),
              ElementsAre(Frame{0, 0, 40, 20}, Frame{48, 0, 40, 20}, Frame{0, 28, 40, 20}));
}

TEST(FlowLayoutRows, AChildEndingExactlyAtTheWidthStaysOnTheRow) {
  const FlowLayout layout(8);
  // 0 + 40, then 48 + 52 = 100: the second child ends on the edge.
  const std::vector<Size> children{{40, 20}, {52, 20}, {1, 20}};

  EXPECT_THAT(layout.arrange(100, children).frames,
              ElementsAre(Frame{0, 0, 40, 20}, Frame{48, 0, 52, 20}, Frame{0, 28, 1, 20}));
}

TEST(FlowLayoutRows, AnOverwideChildKeepsItsSizeOnARowOfItsOwn) {
  const FlowLayout layout(8);

  EXPECT_EQ(layout.sizeThatFits(100.0, {{150, 30}}), (Size{100, 30}));
  EXPECT_THAT(layout.placeSubviews(0, 0, 100.0, {{150, 30}}), ElementsAre(Frame{0, 0, 150, 30}));

  // Later on it still breaks the row before it and overflows its own.
  EXPECT_THAT(layout.arrange(100, {{40, 20}, {150, 30}, {40, 20}}).frames,
              ElementsAre(Frame{0, 0, 40, 20}, Frame{0, 28, 150, 30}, Frame{0, 66, 40, 20}));
}

TEST(FlowLayoutRows, NoChildrenTakeTheWidthAndNoHeight) {
  const FlowLayout layout(8);

  EXPECT_EQ(layout.sizeThatFits(240.0, {}), (Size{240, 0}));
  EXPECT_THAT(layout.placeSubviews(5, 5, 240.0, {}), IsEmpty());
}

TEST(FlowLayoutRows, AnUnspecifiedWidthLaysOutAgainstTen) {
  const FlowLayout layout(4);
  const std::vector<Size> children{{6, 10}, {3, 12}, {4, 8}};

  // 6 + 4 + 3 and 3 + 4 + 4 both cross 10, so every child after the first starts a row.
  EXPECT_EQ(layout.sizeThatFits(std::nullopt, children), (Size{10, 10 + 4 + 12 + 4 + 8}));
  EXPECT_THAT(layout.placeSubviews(0, 0, std::nullopt, children),
              ElementsAre(Frame{0, 0, 6, 10}, Frame{0, 14, 3, 12}, Frame{0, 30, 4, 8}));
}

TEST(FlowLayoutRows, TheNextRowStartsBelowTheTallestChildOfTheRow) {
  const FlowLayout layout(10);
  const std::vector<Size> children{{30, 15}, {30, 40}, {30, 25}, {30, 5}};

  const auto arrangement = layout.arrange(100, children);
  EXPECT_THAT(arrangement.frames,
              ElementsAre(Frame{0, 0, 30, 15}, Frame{40, 0, 30, 40}, Frame{0, 50, 30, 25}, Frame{40, 50, 30, 5}));
  EXPECT_EQ(arrangement.size, (Size{100, 75}));
}

TEST(FlowLayoutPlacement, FramesAreOffsetByTheBoundsOriginButFilledAgainstTheProposal) {
  const FlowLayout layout(8);
  const std::vector<Size> chips(3, Size{40, 20});

  // Granted bounds wider than the proposal do not change where rows break.
  EXPECT_THAT(layout.placeSubviews(12, 30, 100.0, chips),
              ElementsAre(Frame{12, 30, 40, 20}, Frame{60, 30, 40, 20}, Frame{12, 58, 40, 20}));
}

}  // namespace
}  // namespace corvane::ui
