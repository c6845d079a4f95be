#pragma once

#include <QDockWidget>
#include <QString>
#include <cstdint>
#include <functional>
#include <string>

namespace tutti {

class RowListView;

// What the main window knows of a window that it shows.
struct Pane {
  // Where it stands until the operator moves it.
  enum class Area : std::uint8_t {
    centre,   // the main window's own middle, not a dock
    watch,    // on top of the right column, or left of the centre on a screen with less room
    orders,   // the right column
    bottom,   // below the centre
    further,  // beside the bottom on a large screen, else a tab of it
  };

  QString name;  // of the pane's object, kept in saved layouts
  QString title;
  const char* menu;                  // in the menu, with its letter
  const char* icon;                  // there; empty for none
  std::string help;                  // topic
  Qt::Key key;                       // that brings it up together with Ctrl
  Area area;                         // the first pane of an area stands there, the others are tabs behind it
  QWidget* widget;                   // what is shown
  RowListView* list;                 // its main list, for keys and export; nullptr when there is none
  std::function<void()> focus = {};  // brings the keyboard where its work begins; empty: the list
  std::function<void(bool)> displayed = {};  // tells its form whether the operator can see it
  QDockWidget* dock = nullptr;               // nullptr for what stands in the middle
};

}  // namespace tutti
