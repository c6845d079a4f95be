#pragma once

#include <QTimer>
#include <deque>
#include <filesystem>
#include <functional>

#include "gui/shell/frmMdiNew_window.h"

namespace tutti {

// Works through the terminal as an operator would, on the accounts that it has, and keeps a picture of every
// window. For the documentation, and to look at what was built.
class ScreenshotTour {
 public:
  // `done` runs at the end with whether every picture was written.
  ScreenshotTour(FrmMdiNewWindow& window, Main& main, Screen& screen, std::filesystem::path folder,
                 std::function<void(bool)> done);

  void start() { poll_.start(); }

 private:
  // One step: what it does, once `ready` holds or its time is over.
  struct Step {
    std::function<bool()> ready;
    std::function<void()> act;
  };

  void plan();
  void plan_orders();
  void plan_boxes();
  void fill_entry_order();
  void plan_sizes();
  void mark_positions();
  void then(std::function<bool()> ready, std::function<void()> act);
  // A step that takes a picture after the windows have had time to paint themselves.
  void picture(std::string name, std::function<QWidget*()> what);
  // Opens a modal box and takes its picture while it stands.
  void picture_of_box(const char* name, std::function<void()> open);
  void keep_box();
  void keep(QWidget& widget, const std::string& name);
  void next();

  FrmMdiNewWindow& window_;
  Main& main_;
  Screen& screen_;
  std::filesystem::path folder_;
  std::function<void(bool)> done_;
  std::deque<Step> steps_;
  QTimer poll_;
  QTimer box_timer_;  // until the picture of a modal box is taken
  std::string box_name_;
  int waited_ = 0;  // polls for the step that is next
  bool all_kept_ = true;
  bool busy_ = false;  // a step stands in a modal box
};

}  // namespace tutti
