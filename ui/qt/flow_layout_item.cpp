#include "ui/qt/flow_layout_item.hpp"

#include <optional>
#include <vector>

namespace corvane::ui {

FlowLayoutItem::FlowLayoutItem(QQuickItem* parent) : QQuickItem(parent) {
  // Layout happens in the polish phase, once per frame however many changes came in.
  setFlag(ItemHasContents, false);
}

void FlowLayoutItem::setSpacing(qreal spacing) {
  if (spacing == spacing_) return;
  spacing_ = spacing;
  polish();
  Q_EMIT spacingChanged();
}

void FlowLayoutItem::componentComplete() {
  QQuickItem::componentComplete();
  polish();
}

void FlowLayoutItem::itemChange(ItemChange change, const ItemChangeData& data) {
  if (change == ItemChildAddedChange) {
    watch(data.item);
    polish();
  } else if (change == ItemChildRemovedChange) {
    disconnect(data.item, nullptr, this, nullptr);
    polish();
  }
  QQuickItem::itemChange(change, data);
}

void FlowLayoutItem::geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) {
  QQuickItem::geometryChange(newGeometry, oldGeometry);
  if (newGeometry.width() != oldGeometry.width()) polish();
}

void FlowLayoutItem::watch(QQuickItem* child) {
  connect(child, &QQuickItem::implicitWidthChanged, this, &QQuickItem::polish);
  connect(child, &QQuickItem::implicitHeightChanged, this, &QQuickItem::polish);
  connect(child, &QQuickItem::visibleChanged, this, &QQuickItem::polish);
}

void FlowLayoutItem::updatePolish() {
  std::vector<QQuickItem*> children;
  std::vector<Size> sizes;
  for (QQuickItem* child : childItems()) {
    // Repeaters (which only create the chips) and hidden chips take no place in the rows.
    if (!child->isVisible() || child->inherits("QQuickRepeater")) continue;
    children.push_back(child);
    sizes.push_back({child->implicitWidth(), child->implicitHeight()});
  }
  // A width nobody set is an unspecified proposal.
  const std::optional<double> proposal = widthValid() ? std::optional<double>(width()) : std::nullopt;
  const FlowLayout layout(spacing_);
  const std::vector<Frame> frames = layout.placeSubviews(0, 0, proposal, sizes);
  for (std::size_t i = 0; i < frames.size(); ++i) {
    children[i]->setPosition({frames[i].x, frames[i].y});
    children[i]->setSize({frames[i].width, frames[i].height});
  }
  const Size size = layout.sizeThatFits(proposal, sizes);
  setImplicitSize(size.width, size.height);
}

}  // namespace corvane::ui
