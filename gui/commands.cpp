#include "gui/commands.h"

#include <QMenu>
#include <cassert>

#include "gui/screen.h"
#include "gui/svg_icon.h"

namespace tutti {

Commands::Commands(QWidget& window, Screen& screen) : window_(window), screen_(screen) {
  screen_.on_refresh(window_, [this] {
    for (const auto& [command, action] : commands_) {
      if (command.available) action->setEnabled(command.available());
    }
  });
}

QAction& Commands::add(QMenu& menu, Command command) {
  for (const auto& [other, action] : commands_) {
    assert(command.key.isEmpty() || other.key != command.key);
    assert(other.name != command.name);
    (void)other;
    (void)action;
  }
  auto* action = new QAction{command.text, &window_};
  action->setObjectName(command.name);
  action->setShortcut(command.key);
  action->setAutoRepeat(false);
  action->setShortcutVisibleInContextMenu(true);
  if (!command.icon.isEmpty()) action->setIcon(svg_icon(command.icon));
  QObject::connect(action, &QAction::triggered, &window_, [this, run = command.run] {
    screen_.settle();
    run();
    screen_.acted();
  });
  menu.addAction(action);
  commands_.emplace_back(std::move(command), action);
  return *action;
}

QAction* Commands::find(const QString& name) const {
  for (const auto& [command, action] : commands_) {
    if (command.name == name) return action;
  }
  return nullptr;
}

}  // namespace tutti
