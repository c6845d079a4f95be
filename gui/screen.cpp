#include "gui/screen.h"

#include <QObject>
#include <utility>

namespace tutti {

void Screen::add(std::deque<Step>& steps, QObject& owner, std::function<void()> step) {
  steps.push_back({&owner, std::move(step)});
  QObject::connect(&owner, &QObject::destroyed, &owner, [&steps, gone = &owner] {
    std::erase_if(steps, [gone](const Step& each) { return each.owner == gone; });
  });
}

void Screen::on_settle(QObject& owner, std::function<void()> step) {
  add(settle_, owner, std::move(step));
}

void Screen::on_refresh(QObject& owner, std::function<void()> step) {
  add(refresh_, owner, std::move(step));
}

// By index: a step may show a window that adds steps of its own.
void Screen::settle() const {
  for (std::size_t i = 0; i < settle_.size(); ++i)
    settle_[i].run();
}

void Screen::refresh() const {
  for (std::size_t i = 0; i < refresh_.size(); ++i)
    refresh_[i].run();
}

}  // namespace tutti
