#pragma once

#include <QAction>
#include <QKeySequence>
#include <QString>
#include <deque>
#include <functional>
#include <utility>
#include <vector>

class QMenu;
class QWidget;

namespace tutti {

class Screen;

// The operator's commands: one action each, with its key, for menus, tool bar and context menus alike. The
// keys work while `window` or a pane that floats before it is active.
//
// A command that acts on what a pane holds runs only while the operator sees that pane; else it brings the
// pane to the front and does nothing more.
class Commands {
 public:
  // Whether it sends, closes, cancels or logs out, or leads there. Keys of harmless commands keep away from
  // those of the others.
  enum class Effect { harmless, grave };

  struct Options {
    QString pane = {};  // that it acts on; empty when it needs none
    QString icon = {};
    // Why it can't be used now, nullptr while it can; asked with every refresh. Always usable when not set.
    std::function<const char*()> off = {};
  };

  struct Command {
    QString name;  // of the action's object, such as "connect"
    QString text;  // with the menu's letter; "..." where something is asked first
    Effect effect;
    QKeySequence key;
    std::function<void()> run;
    Options options = {};
  };

  // What the commands must know of the panes.
  struct Panes {
    std::function<bool(const QString& pane)> in_sight;
    std::function<void(const QString& pane)> bring_up;
  };

  Commands(QWidget& window, Screen& screen, Panes panes);

  // Asserts that no other command has the key: two actions with one key fire neither.
  QAction& add(QMenu& menu, Command command);
  // nullptr when there is none.
  QAction* find(const QString& name) const;
  // A button of a window that does the same tells the same while the mouse rests on it.
  void explain(QWidget& button, const QString& name) const;
  const std::deque<std::pair<Command, QAction*>>& all() const { return commands_; }

 private:
  bool needs_pane(const Command& command) const;
  const char* why_off(const Command& command) const;
  void refresh();
  void run(const Command& command);

  QWidget& window_;
  Screen& screen_;
  Panes panes_;
  std::deque<std::pair<Command, QAction*>> commands_;
  std::vector<const char*> told_;  // why each is off, as its tool tip says
};

}  // namespace tutti
