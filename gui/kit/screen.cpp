#include "gui/kit/screen.h"

#include <QWidget>
#include <algorithm>
#include <utility>

#include "gui/kit/in_sight.h"

namespace tutti {

namespace {

bool within(const QObject* object, const std::vector<const QWidget*>& panes) {
  for (; object != nullptr && !panes.empty(); object = object->parent()) {
    if (std::find(panes.begin(), panes.end(), object) != panes.end()) return true;
  }
  return false;
}

}  // namespace

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

void Screen::add_pane(QWidget& pane) {
  panes_.push_back(&pane);
  QObject::connect(&pane, &QObject::destroyed, &pane,
                   [this](const QObject* gone) { std::erase(panes_, gone); });
}

// By index: a step may show a window that adds steps of its own.
void Screen::settle() {
  if (std::exchange(settling_, true)) return;
  for (std::size_t i = 0; i < settle_.size(); ++i)
    settle_[i].run();
  settling_ = false;
}

void Screen::refresh() {
  ++frame_;
  std::vector<const QWidget*> hidden;
  std::copy_if(panes_.begin(), panes_.end(), std::back_inserter(hidden),
               [](const QWidget* pane) { return !in_sight(*pane); });
  for (std::size_t i = 0; i < refresh_.size(); ++i)
    if (!within(refresh_[i].owner, hidden)) refresh_[i].run();
}

}  // namespace tutti
