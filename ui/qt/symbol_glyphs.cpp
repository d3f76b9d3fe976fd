#include "ui/qt/symbol_glyphs.hpp"

#include <array>
#include <utility>

namespace corvane::ui {

QString SymbolGlyphs::glyph(const QString& name) const {
  return glyphFor(name.toStdString());
}

QString SymbolGlyphs::glyphFor(std::string_view name) {
  // Filled symbols become colour emoji; outlined ones plain marks that take the text colour.
  static constexpr std::array<std::pair<std::string_view, std::string_view>, 16> glyphs{{
      {"checkmark.circle.fill", "✅"},
      {"checkmark.circle", "✔"},
      {"exclamationmark.circle.fill", "❗"},
      {"exclamationmark.triangle.fill", "⚠️"},
      {"exclamationmark.octagon.fill", "🛑"},
      {"exclamationmark.octagon", "⛔"},
      {"xmark.circle.fill", "❌"},
      {"xmark.circle", "✖"},
      {"info.circle.fill", "ℹ️"},
      {"info.circle", "ℹ"},
      {"clock", "🕒"},
      {"chart.line.uptrend.xyaxis", "📈"},
      {"bolt.fill", "⚡"},
      {"speedometer", "⏱️"},
      {"tag.fill", "🏷️"},
      {"trash", "🗑️"},
  }};
  for (const auto& [symbol, text] : glyphs) {
    if (symbol == name) return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  }
  return QStringLiteral("•");
}

}  // namespace corvane::ui
