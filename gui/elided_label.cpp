#include "gui/elided_label.h"

#include <QFontMetrics>
#include <QPainter>
#include <QTextDocument>

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

QSize ElidedLabel::sizeHint() const {
  return {fontMetrics().horizontalAdvance(text_), fontMetrics().height() + 4};
}

QSize ElidedLabel::minimumSizeHint() const {
  return {40, fontMetrics().height() + 4};
}

void ElidedLabel::cut() {
  shown_ = fontMetrics().elidedText(text_, Qt::ElideRight, width());
  setToolTip(shown_ == text_ ? QString{} : Qt::convertFromPlainText(text_, Qt::WhiteSpacePre));
  update();
}

void ElidedLabel::resizeEvent(QResizeEvent*) {
  cut();
}

void ElidedLabel::paintEvent(QPaintEvent*) {
  QPainter painter{this};
  painter.setPen(colour_.isValid() && isEnabled() ? colour_ : palette().color(foregroundRole()));
  painter.drawText(rect(), Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, shown_);
}

}  // namespace tutti
