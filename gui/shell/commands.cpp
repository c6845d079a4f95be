#include "gui/shell/commands.h"

#include <QMenu>
#include <cassert>

#include "gui/kit/screen.h"
#include "gui/kit/svg_icon.h"

namespace tutti {

namespace {

// What the command is, its key and, while it can't be used, why.
QString tip_of(const Commands::Command& command, const char* why_off) {
  QString text = QString{command.text}.remove(QLatin1Char{'&'});
  if (text.endsWith(QStringLiteral("..."))) text.chop(3);
  const QString key = command.key.toString(QKeySequence::NativeText);
  if (!key.isEmpty()) text += QStringLiteral("  (%1)").arg(key);
  return why_off == nullptr ? text : text + QLatin1Char{'\n'} + QString::fromUtf8(why_off);
}

}  // namespace

Commands::Commands(QWidget& window, Screen& screen, Panes panes)
    : window_(window), screen_(screen), panes_(std::move(panes)) {
  screen_.on_refresh(window_, [this] { refresh(); });
}

void Commands::refresh() {
  for (std::size_t i = 0; i < commands_.size(); ++i) {
    const auto& [command, action] = commands_[i];
    const char* why = needs_pane(command) ? nullptr : why_off(command);
    if (why == told_[i]) continue;
    told_[i] = why;
    action->setEnabled(why == nullptr);
    action->setToolTip(tip_of(command, why));
  }
}

const char* Commands::why_off(const Command& command) const {
  return command.options.off ? command.options.off() : nullptr;
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
  action->setToolTip(tip_of(command, nullptr));
  if (!command.options.icon.isEmpty()) action->setIcon(svg_icon(command.options.icon));
  menu.addAction(action);
  told_.push_back(nullptr);
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
  } else if (why_off(command) == nullptr) {
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

void Commands::explain(QWidget& button, const QString& name) const {
  const QAction* action = find(name);
  const auto tell = [&button, action] { button.setToolTip(action->toolTip()); };
  QObject::connect(action, &QAction::changed, &button, tell);
  tell();
}

}  // namespace tutti
