#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>

#include <string_view>

namespace corvane::ui {

/// Draws the library's named symbols ("checkmark.circle.fill", ...) as font glyphs, so the
/// view models can keep the names and the screens show something for each.
class SymbolGlyphs final : public QObject {
  Q_OBJECT

 public:
  using QObject::QObject;

  /// The glyph for a symbol name; a bullet for names without one.
  Q_INVOKABLE QString glyph(const QString& name) const;

  /// The same mapping for C++ callers.
  static QString glyphFor(std::string_view name);
};

}  // namespace corvane::ui
