#pragma once

#include <QStatusBar>
#include <string>

class QLabel;
class QProgressBar;

namespace tutti {

class ElidedLabel;
class Main;
class NotConnectedLine;
class Screen;

// Status bar of the main window: totals of all accounts, what the command-bar controls of the connection say,
// how many accounts are connected, the server's time, and what must not be overlooked.
class StatusStrip final : public QStatusBar {
 public:
  StatusStrip(Main& main, Screen& screen);

 private:
  void share_room();
  void refresh();
  void refresh_connections();

  Main& main_;
  std::uint64_t shown_ = ~std::uint64_t{0};  // stamp of the main window's state on show
  ElidedLabel* totals_;
  NotConnectedLine* missing_;
  QLabel* stopped_;
  QLabel* warning_;
  QLabel* waiting_;
  QLabel* unknown_;
  QLabel* connected_control_;
  QProgressBar* progress_;
  QLabel* dot_;
  QLabel* connected_;
  QLabel* server_time_;
};

}  // namespace tutti
