#pragma once

#include <optional>
#include <vector>

namespace corvane::ui {

/// A width and a height in the toolkit's points.
struct Size {
  double width = 0;
  double height = 0;

  friend bool operator==(const Size&, const Size&) = default;
};

/// A child's place, relative to the layout's own top-left corner.
struct Frame {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  friend bool operator==(const Frame&, const Frame&) = default;
};

/// The wrapping layout of keyword chips, free of any toolkit: children keep their ideal
/// sizes and fill rows left to right, a child that would cross the width starting the next
/// row. The same spacing separates children on a row and the rows themselves.
class FlowLayout {
 public:
  /// What one run of row filling yields: the total size and one frame per child.
  struct Arrangement {
    Size size;
    std::vector<Frame> frames;

    friend bool operator==(const Arrangement&, const Arrangement&) = default;
  };

  /// A layout with the given spacing between children and between rows.
  explicit FlowLayout(double spacing = 8) : spacing_(spacing) {}

  double spacing() const noexcept { return spacing_; }

  /// The size the children need within `proposedWidth` (10 when unspecified). The width
  /// of the result is always the full width, not the widest row.
  Size sizeThatFits(std::optional<double> proposedWidth, const std::vector<Size>& children) const;

  /// The frames of the children, offset by the origin of the granted bounds; the rows are
  /// filled against `proposedWidth` (10 when unspecified), not the bounds' width.
  std::vector<Frame> placeSubviews(double boundsMinX, double boundsMinY, std::optional<double> proposedWidth,
                                   const std::vector<Size>& children) const;

  /// Row filling against `maxWidth`: the shared step of measuring and placing.
  Arrangement arrange(double maxWidth, const std::vector<Size>& children) const;

  /// The width a layout works with when the proposal leaves it open.
  static constexpr double unspecifiedWidth = 10;

 private:
  double spacing_;
};

}  // namespace corvane::ui
