#include "gui/list/glyph_text.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace tutti {

GlyphText::GlyphText(const QFont& font) : font_(font), raw_(QRawFont::fromFont(font)) {
  const QFontMetricsF metrics{font};
  baseline_ = (metrics.ascent() - metrics.descent()) / 2.0;
  for (std::size_t code = ' '; code < known; ++code) {
    const QChar character{static_cast<char16_t>(code)};
    const auto indexes = raw_.glyphIndexesForString(QString{character});
    if (!indexes.isEmpty()) glyphs_[code] = indexes.front();
    advances_[code] = metrics.horizontalAdvance(character);
  }
  run_.setRawFont(raw_);
}

bool GlyphText::plain(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c < 0x7f; });
}

double GlyphText::plain_width(std::string_view text) const {
  double width = 0.0;
  for (const char c : text)
    width += advances_[static_cast<unsigned char>(c)];
  return width;
}

double GlyphText::width(std::string_view text) const {
  if (plain(text)) return plain_width(text);
  return QFontMetricsF{font_}.horizontalAdvance(
      QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
}

GlyphText::Waiting& GlyphText::waiting(QRgb colour) {
  for (Waiting& each : waiting_) {
    if (each.colour == colour) return each;
  }
  return waiting_.emplace_back(Waiting{colour, {}, {}});
}

void GlyphText::draw(QPainter& painter, const QRectF& box, std::string_view text, bool right_aligned,
                     const QColor& colour) {
  if (!plain(text)) return draw_laid_out(painter, box, text, right_aligned, colour);
  const double wide = plain_width(text);
  if (wide > box.width()) return draw_laid_out(painter, box, text, right_aligned, colour);
  Waiting& out = waiting(colour.rgb());
  double x = std::round(right_aligned ? box.right() - wide : box.left());
  const double y = std::round(box.center().y() + baseline_);
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (c != ' ') {
      out.indexes.push_back(glyphs_[code]);
      out.positions.emplace_back(x, y);
    }
    x += advances_[code];
  }
}

void GlyphText::draw_laid_out(QPainter& painter, const QRectF& box, std::string_view text, bool right_aligned,
                              const QColor& colour) const {
  const QString whole = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
  const QFontMetricsF metrics{font_};
  QString shown = whole;
  if (metrics.horizontalAdvance(whole) > box.width()) {
    shown = right_aligned ? QStringLiteral("…") : metrics.elidedText(whole, Qt::ElideRight, box.width());
  }
  painter.setPen(colour);
  painter.setFont(font_);
  painter.drawText(
      box, Qt::AlignVCenter | Qt::TextSingleLine | (right_aligned ? Qt::AlignRight : Qt::AlignLeft), shown);
}

void GlyphText::flush(QPainter& painter) {
  for (Waiting& each : waiting_) {
    if (each.indexes.empty()) continue;
    run_.setRawData(each.indexes.data(), each.positions.data(), static_cast<int>(each.indexes.size()));
    painter.setPen(QColor{each.colour});
    painter.drawGlyphRun({0.0, 0.0}, run_);
    each.indexes.clear();
    each.positions.clear();
  }
}

}  // namespace tutti
