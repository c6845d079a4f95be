#pragma once

#include <QWidget>

class QMenuBar;

namespace tutti {

class Main;
class Panes;
class Screen;

// What the main window tells at the right end of its menu bar: how many accounts there are and how many of
// them are ticked in the order window in front, the server, and that it is a simulation when it is.
class ShellHead final : public QWidget {
 public:
  ShellHead(Main& main, Panes& panes, Screen& screen, QMenuBar& bar);
};

}  // namespace tutti
