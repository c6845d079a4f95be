#include "gui/window_parts.h"

#include <QComboBox>

namespace tutti {

QComboBox* make_combo(const char* name) {
  auto* combo = named(new QComboBox, name);
  combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  combo->setMinimumContentsLength(6);
  combo->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  return combo;
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
