#include "gui/kit/elided_label.h"

#include <QFontMetrics>
#include <QPainter>
#include <QRegularExpression>
#include <QTextDocument>
#include <cmath>
#include <utility>

#include "gui/kit/theme.h"

namespace tutti {

ElidedLabel::ElidedLabel(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ElidedLabel::set_text(const QString& text) {
  if (text == text_) return;
  text_ = text;
  cut();
}

void ElidedLabel::set_colour(const QColor& colour) {
  if (colour == colour_) return;
  colour_ = colour;
  update();
}

void ElidedLabel::set_money(bool money) {
  if (std::exchange(money_, money) != money) update();
}

// Whoever cuts a text compares its width before it is rounded.
QSize ElidedLabel::sizeHint() const {
  const auto width = static_cast<int>(std::ceil(QFontMetricsF{font()}.horizontalAdvance(text_))) + 1;
  return QSize{width, fontMetrics().height() + 4}.grownBy(contentsMargins());
}

QSize ElidedLabel::minimumSizeHint() const {
  return {40, fontMetrics().height() + 4};
}

void ElidedLabel::cut() {
  shown_ = fontMetrics().elidedText(text_, Qt::ElideRight, contentsRect().width());
  setToolTip(shown_ == text_ ? QString{} : Qt::convertFromPlainText(text_, Qt::WhiteSpacePre));
  update();
}

void ElidedLabel::resizeEvent(QResizeEvent*) {
  cut();
}

void ElidedLabel::paintEvent(QPaintEvent*) {
  QPainter painter{this};
  painter.setPen(colour_.isValid() && isEnabled() ? colour_ : palette().color(foregroundRole()));
  int drawn = 0;  // of the text
  const auto draw_to = [&](qsizetype end) {
    const int left = fontMetrics().horizontalAdvance(shown_.left(drawn));
    painter.drawText(contentsRect().adjusted(left, 0, 0, 0),
                     Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, shown_.mid(drawn, end - drawn));
    drawn = static_cast<int>(end);
  };
  static const QRegularExpression below_zero{QStringLiteral("(?<![\\w.])-[0-9][0-9.,]*")};
  const QPen plain = painter.pen();
  for (auto found = below_zero.globalMatch(money_ ? shown_ : QString{}); found.hasNext();) {
    const QRegularExpressionMatch number = found.next();
    draw_to(number.capturedStart());
    painter.setPen(QColor{theme::loss});
    draw_to(number.capturedEnd());
    painter.setPen(plain);
  }
  draw_to(shown_.size());
}

}  // namespace tutti
