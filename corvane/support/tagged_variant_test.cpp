#include "corvane/support/tagged_variant.hpp"

#include <gtest/gtest.h>

#include <concepts>
#include <cstddef>
#include <functional>
#include <iterator>
#include <type_traits>
#include <utility>
#include <variant>

namespace corvane {
namespace {

namespace cases {
struct Shape {
  struct Circle {
    double radius;
    friend bool operator==(const Circle&, const Circle&) = default;
  };
  struct Square {
    friend bool operator==(const Square&, const Square&) = default;
  };
  using Value = std::variant<Circle, Square>;
};

struct Action {
  struct Run {
    std::function<void()> body;
  };
  struct Skip {};
  using Value = std::variant<Run, Skip>;
};
}  // namespace cases

class Shape : public TaggedVariant<cases::Shape> {
 public:
  static Shape circle(double radius) { return Shape(Circle{radius}); }
  static Shape square() { return Shape(Square{}); }
  static Shape of(Value value) { return Shape(std::move(value)); }
  bool isCircle() const noexcept { return holds<Circle>(); }
  friend bool operator==(const Shape&, const Shape&) = default;

 private:
  using TaggedVariant::TaggedVariant;
};

class Action : public TaggedVariant<cases::Action> {
 public:
  static Action skip() { return Action(Skip{}); }

 private:
  using TaggedVariant::TaggedVariant;
};

// Only the named factories build a value, and only comparable cases make a comparable type.
static_assert(!std::is_constructible_v<Shape, Shape::Circle>);
static_assert(!std::is_constructible_v<Shape, Shape::Value>);
static_assert(std::equality_comparable<Shape>);
static_assert(!std::equality_comparable<Action>);

TEST(TaggedVariant, EachCaseReadsBackThroughItsQueries) {
  const auto circle = Shape::circle(2.5);
  ASSERT_NE(circle.getIf<Shape::Circle>(), nullptr);
  EXPECT_EQ(circle.getIf<Shape::Circle>()->radius, 2.5);
  EXPECT_EQ(circle.getIf<Shape::Square>(), nullptr);
  EXPECT_TRUE(circle.isCircle());
  EXPECT_EQ(circle.value().index(), 0u);

  const auto square = Shape::square();
  EXPECT_EQ(square.getIf<Shape::Circle>(), nullptr);
  EXPECT_NE(square.getIf<Shape::Square>(), nullptr);
  EXPECT_FALSE(square.isCircle());
  EXPECT_EQ(square.value().index(), 1u);

  EXPECT_NE(Action::skip().getIf<Action::Skip>(), nullptr);
  EXPECT_EQ(Action::skip().getIf<Action::Run>(), nullptr);
}

TEST(TaggedVariant, AWholeVariantKeepsItsCase) {
  EXPECT_EQ(Shape::of(Shape::Value(Shape::Circle{1.0})), Shape::circle(1.0));
  EXPECT_TRUE(Shape::of(Shape::Value(Shape::Square{})).getIf<Shape::Square>());
}

TEST(TaggedVariant, EqualWhenCaseAndPayloadAreEqual) {
  struct Row {
    Shape left;
    Shape right;
    bool equal;
  };
  const Row rows[] = {
      {Shape::circle(1.0), Shape::circle(1.0), true},
      {Shape::circle(1.0), Shape::circle(2.0), false},
      {Shape::circle(0.0), Shape::square(), false},
      {Shape::square(), Shape::square(), true},
  };
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    EXPECT_EQ(rows[i].left == rows[i].right, rows[i].equal) << "row " << i;
  }
}

}  // namespace
}  // namespace corvane
