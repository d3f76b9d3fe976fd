#include "ui/flow_layout/flow_layout.hpp"

#include <algorithm>

namespace corvane::ui {

FlowLayout::Arrangement FlowLayout::arrange(double maxWidth, const std::vector<Size>& children) const {
  Arrangement result;
  result.frames.reserve(children.size());
  double x = 0;
  double y = 0;
  double rowHeight = 0;
  for (const Size& child : children) {
    // Strictly wider than the row breaks it; the first child stays even when it overflows.
    if (x + child.width > maxWidth && !result.frames.empty()) {
      y += rowHeight + spacing_;
      x = 0;
      rowHeight = 0;
    }
    result.frames.push_back({x, y, child.width, child.height});
    x += child.width + spacing_;
    rowHeight = std::max(rowHeight, child.height);
  }
  result.size = {maxWidth, y + rowHeight};
  return result;
}

Size FlowLayout::sizeThatFits(std::optional<double> proposedWidth, const std::vector<Size>& children) const {
  return arrange(proposedWidth.value_or(unspecifiedWidth), children).size;
}

std::vector<Frame> FlowLayout::placeSubviews(double boundsMinX, double boundsMinY, std::optional<double> proposedWidth,
                                             const std::vector<Size>& children) const {
  std::vector<Frame> frames = arrange(proposedWidth.value_or(unspecifiedWidth), children).frames;
  for (Frame& frame : frames) {
    frame.x += boundsMinX;
    frame.y += boundsMinY;
  }
  return frames;
}

}  // namespace corvane::ui
