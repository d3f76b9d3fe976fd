#pragma once

#include "ui/flow_layout/flow_layout.hpp"

#include <QtQuick/QQuickItem>

namespace corvane::ui {

/// The flow layout as a Qt Quick item (`FlowLayout` in QML): its visible children keep
/// their implicit sizes and wrap into rows within the item's width. Its implicit height is
/// the height the rows need. It lays out again when children come or go, when a child's
/// implicit size changes, and when its width or spacing changes.
class FlowLayoutItem : public QQuickItem {
  Q_OBJECT
  Q_PROPERTY(qreal spacing READ spacing WRITE setSpacing NOTIFY spacingChanged)

 public:
  explicit FlowLayoutItem(QQuickItem* parent = nullptr);

  /// The gap between children on a row and between rows.
  qreal spacing() const noexcept { return spacing_; }
  void setSpacing(qreal spacing);

 Q_SIGNALS:
  /// The spacing has changed.
  void spacingChanged();

 protected:
  void itemChange(ItemChange change, const ItemChangeData& data) override;
  void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;
  void updatePolish() override;
  void componentComplete() override;

 private:
  void watch(QQuickItem* child);

  qreal spacing_ = 8;
};

}  // namespace corvane::ui
