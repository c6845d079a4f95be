#include "gui/window_parts.h"

#include <QComboBox>
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
  if (line.property("warn").toBool() == warn) return;
  line.setProperty("warn", warn);
  line.style()->unpolish(&line);
  line.style()->polish(&line);
}

void set_tab_order(const QWidget& window, std::initializer_list<const char*> names) {
  QWidget* before = nullptr;
  for (const char* name : names) {
    auto* next = window.findChild<QWidget*>(QString::fromLatin1(name));
    if (before != nullptr) QWidget::setTabOrder(before, next);
    before = next;
  }
}

}  // namespace tutti
