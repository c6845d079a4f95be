#pragma once

#include <QDockWidget>
#include <QString>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace tutti {

class RowListView;

// What the main window knows of a window that it shows.
struct Pane {
  // Where it stands until the operator moves it. But for tabs, each area has one pane.
  enum class Area : std::uint8_t {
    centre,   // the main window's own middle, not a dock
    watch,    // on top of the right column, or left of the centre on a screen with less room
    orders,   // the right column
    bottom,   // below the centre
    further,  // to the right of the pane it names on a large screen, else the last tab of it
    tab,      // behind the pane it names; tabs of one pane stand in the order of the table
  };

  QString name = {};  // of the pane's object, kept in saved layouts
  QString title = {};
  const char* menu = "";  // in the menu, with its letter
  const char* icon = "";  // there; empty for none
  std::string help = {};  // topic
  Qt::Key key = {};       // that brings it up together with Ctrl
  Area area = Area::tab;
  QString beside = {};                       // name of the pane that a tab, or what stands further, goes by
  bool hidden_at_first = false;              // comes up when it is asked for, and leaves the tabs their room
  QWidget* widget = nullptr;                 // what is shown
  RowListView* list = nullptr;               // its main list, for keys and export; nullptr: there is none
  std::vector<const char*> commands = {};    // names, in the menus of all its lists
  std::function<void()> focus = {};          // brings the keyboard where its work begins; empty: the list
  std::function<void(bool)> displayed = {};  // tells its form whether the operator can see it
  QDockWidget* dock = nullptr;               // made for it; nullptr for what stands in the middle
};

}  // namespace tutti
