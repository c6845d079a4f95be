#pragma once

#include <QDockWidget>
#include <QString>
#include <functional>
#include <string>

namespace tutti {

class RowListView;

// What the main window knows of a window that it shows.
struct Pane {
  QString name;                 // of the pane's object, kept in saved layouts
  std::string help;             // topic
  QWidget* widget;              // what is shown
  RowListView* list;            // its main list, for keys and export; nullptr when there is none
  QDockWidget* dock = nullptr;  // nullptr for what stands in the middle
};

}  // namespace tutti
