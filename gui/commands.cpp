#include "gui/commands.h"

#include <QMenu>
#include <cassert>

#include "gui/screen.h"
#include "gui/svg_icon.h"

namespace tutti {

Commands::Commands(QWidget& window, Screen& screen, Panes panes)
    : window_(window), screen_(screen), panes_(std::move(panes)) {
  screen_.on_refresh(window_, [this] {
    for (const auto& [command, action] : commands_) {
      const auto& available = command.options.available;
      if (available) action->setEnabled(needs_pane(command) || available());
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
  if (!command.options.icon.isEmpty()) action->setIcon(svg_icon(command.options.icon));
  menu.addAction(action);
  const auto& [kept, its_action] = commands_.emplace_back(std::move(command), action);
  QObject::connect(action, &QAction::triggered, &window_, [this, &kept = kept] { run(kept); });
  return *its_action;
}

bool Commands::needs_pane(const Command& command) const {
  return !command.options.pane.isEmpty() && !panes_.in_sight(command.options.pane);
}

void Commands::run(const Command& command) {
  screen_.settle();
  if (needs_pane(command)) {
    panes_.bring_up(command.options.pane);
  } else if (!command.options.available || command.options.available()) {
    command.run();
  }
  screen_.acted();
}

QAction* Commands::find(const QString& name) const {
  for (const auto& [command, action] : commands_) {
    if (command.name == name) return action;
  }
  return nullptr;
}

}  // namespace tutti
