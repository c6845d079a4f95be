#include "gui/kit/primary_look.h"

#include <QEvent>
#include <QPushButton>
#include <QStyle>
#include <utility>

namespace tutti {

PrimaryLook::PrimaryLook(std::vector<QPushButton*> buttons, QPushButton& first, QObject* box)
    : QObject(box), buttons_(std::move(buttons)), primary_(&first) {
  for (QPushButton* button : buttons_)
    button->installEventFilter(this);
  show();
}

void PrimaryLook::show() {
  for (QPushButton* button : buttons_) {
    const QVariant role = button == primary_ ? QVariant{QStringLiteral("primary")} : QVariant{};
    if (button->property("role") == role) continue;
    button->setProperty("role", role);
    button->style()->unpolish(button);
    button->style()->polish(button);
  }
}

bool PrimaryLook::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::FocusIn) {
    primary_ = qobject_cast<QPushButton*>(watched);
    show();
  }
  return false;
}

}  // namespace tutti
