#include "gui/windows/price_label.h"

#include <QFontMetrics>
#include <QPainter>
#include <algorithm>

#include "core/numbers.h"
#include "gui/kit/theme.h"

namespace tutti {

namespace {

// The pieces of "1.08421": in front "1.08", pips "42", and the raised fraction "1" of symbols that are quoted
// finer than a pip.
struct Pieces {
  QString front;
  QString pips;
  QString fraction;
};

Pieces pieces_of(const QString& text, int decimals) {
  const int fraction = decimals >= 3 && decimals % 2 == 1 ? 1 : 0;
  // The point may stand between the two digits.
  const int pips = std::min(decimals == 1 ? 3 : 2, static_cast<int>(text.size()) - fraction);
  return {text.chopped(fraction + pips), text.chopped(fraction).right(pips), text.right(fraction)};
}

QFont sized(const QFont& font, int pixels) {
  QFont out = font;
  out.setPixelSize(pixels);
  return out;
}

QString no_price() {
  return QStringLiteral("no price");
}

}  // namespace

PriceLabel::PriceLabel(bool coloured, int pixels, QWidget* parent)
    : QWidget(parent), coloured_(coloured), pixels_(pixels) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QFont PriceLabel::front_font() const {
  return sized(theme::font(), pixels_);
}

QFont PriceLabel::pip_font() const {
  return sized(theme::bold_font(), pixels_ * 8 / 5);
}

void PriceLabel::show_price(double price, int decimals) {
  if (!(price > 0.0)) return clear();
  if (price == price_ && decimals == decimals_) return;
  if (coloured_ && price_ > 0.0 && price != price_) ink_ = price > price_ ? Ink::green : Ink::red;
  price_ = price;
  decimals_ = decimals;
  const QSize before = sizeHint();
  text_ = QString::fromStdString(fixed_text(price, decimals));
  if (sizeHint() != before) updateGeometry();
  update();
}

void PriceLabel::clear() {
  if (text_.isEmpty()) return;
  price_ = 0.0;
  ink_ = Ink::plain;
  text_.clear();
  updateGeometry();
  update();
}

QSize PriceLabel::sizeHint() const {
  const QFontMetrics front{front_font()};
  const QFontMetrics pips{pip_font()};
  const int height = pips.capHeight() + pips.descent() + 2;
  if (text_.isEmpty()) return {QFontMetrics{theme::font()}.horizontalAdvance(no_price()), height};
  const Pieces pieces = pieces_of(text_, decimals_);
  return {front.horizontalAdvance(pieces.front + pieces.fraction) + pips.horizontalAdvance(pieces.pips) + 2,
          height};
}

void PriceLabel::paintEvent(QPaintEvent*) {
  QPainter painter{this};
  if (text_.isEmpty()) {
    painter.setPen(QColor{isEnabled() ? theme::muted : theme::disabled});
    painter.drawText(rect(), Qt::AlignVCenter | Qt::AlignLeft, no_price());
    return;
  }
  painter.setPen(isEnabled() ? theme::colour(ink_) : QColor{theme::disabled});
  const Pieces pieces = pieces_of(text_, decimals_);
  const QFontMetrics front{front_font()};
  const QFontMetrics pips{pip_font()};
  const int baseline = (height() + pips.capHeight()) / 2;
  painter.setFont(front_font());
  painter.drawText(0, baseline, pieces.front);
  painter.setFont(pip_font());
  painter.drawText(front.horizontalAdvance(pieces.front), baseline, pieces.pips);
  painter.setFont(front_font());
  painter.drawText(front.horizontalAdvance(pieces.front) + pips.horizontalAdvance(pieces.pips) + 1,
                   baseline - pips.capHeight() + front.capHeight(), pieces.fraction);
}

}  // namespace tutti
