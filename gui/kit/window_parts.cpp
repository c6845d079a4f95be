#include "gui/kit/window_parts.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>

namespace tutti {

QComboBox* make_combo(const char* name) {
  auto* combo = named(new QComboBox, name);
  combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  combo->setMinimumContentsLength(6);
  combo->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  return combo;
}

QLabel* make_line(const char* name) {
  auto* line = named(new QLabel, name);
  line->setTextFormat(Qt::PlainText);
  line->setWordWrap(true);
  return line;
}

void show_line(QLabel& line, const std::string& text, bool warn) {
  const QString wanted = QString::fromStdString(text);
  if (line.text() != wanted) line.setText(wanted);
  set_look(line, "warn", warn);
}

void set_look(QWidget& widget, const char* property, bool on) {
  if (widget.property(property).toBool() == on) return;
  widget.setProperty(property, on);
  widget.style()->unpolish(&widget);
  widget.style()->polish(&widget);
}

QLayout* make_foot(QWidget* widget) {
  auto* foot = new QHBoxLayout;
  foot->setContentsMargins(10, 4, 10, 4);
  foot->addWidget(widget);
  return foot;
}

void set_tab_order(const QWidget& window, std::initializer_list<const char*> names) {
  QWidget* before = nullptr;
  for (const char* name : names) {
    auto* next = window.findChild<QWidget*>(QString::fromLatin1(name));
    if (before != nullptr) QWidget::setTabOrder(before, next);
    before = next;
  }
}

void show_steady(QLabel& label, const QString& text) {
  if (label.text() == text) return;
  label.setText(text);
  if (label.sizeHint() != label.size()) label.setFixedSize(label.sizeHint());
}

}  // namespace tutti
