#pragma once

#include <QAction>
#include <QKeySequence>
#include <QString>
#include <deque>
#include <functional>
#include <utility>

class QMenu;
class QWidget;

namespace tutti {

class Screen;

// The operator's commands: one action each, with its key, for menus, tool bar and context menus alike. The
// keys work while `window` or a pane that floats before it is active.
class Commands {
 public:
  struct Command {
    QString name;  // of the action's object, such as "connect"
    QString text;  // with the menu's letter; "..." where something is asked first
    QKeySequence key = {};
    QString icon = {};
    std::function<void()> run;
    std::function<bool()> available = {};  // asked with every refresh; always when not set
  };

  Commands(QWidget& window, Screen& screen);

  // Asserts that no other command has the key: two actions with one key fire neither.
  QAction& add(QMenu& menu, Command command);
  // nullptr when there is none.
  QAction* find(const QString& name) const;
  const std::deque<std::pair<Command, QAction*>>& all() const { return commands_; }

 private:
  QWidget& window_;
  Screen& screen_;
  std::deque<std::pair<Command, QAction*>> commands_;
};

}  // namespace tutti
