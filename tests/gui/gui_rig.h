#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <functional>

#include "core/dead_time.h"
#include "gui/kit/screen.h"
#include "gui/list/row_list_view.h"
#include "gui/shell/frmMdiNew_window.h"
#include "tests/support/test_terminal.h"

namespace tutti::testing {

// Shows a window at a size and waits until it is laid out. A pane of the main window comes to the front from
// behind another one's tab, and has the size among the other panes.
inline void show(QWidget& window, QSize size = {900, 600}) {
  if (window.isWindow()) {
    window.resize(size);
    window.show();
    return QCoreApplication::processEvents();
  }
  auto& main = static_cast<QMainWindow&>(*window.window());
  auto* dock = qobject_cast<QDockWidget*>(window.parentWidget());
  window.setFixedSize(size);
  main.resize(size + QSize{900, 900});
  main.show();
  main.activateWindow();
  const QList<QDockWidget*> beside = dock == nullptr ? QList<QDockWidget*>{} : main.tabifiedDockWidgets(dock);
  if (!beside.isEmpty()) beside.front()->raise();
  QCoreApplication::processEvents();
  if (dock != nullptr) dock->raise();
  QCoreApplication::processEvents();
}

// A part of a window by the name of the form's control.
template <class W = QWidget>
W& part(const QWidget& window, const char* name) {
  return *window.findChild<W*>(QString::fromLatin1(name));
}

// A whole terminal with a screen, under the clock that is turned by hand.
class GuiRig {
 public:
  explicit GuiRig(DealerConfig config = DealerConfig::sample()) : terminal(std::move(config)) {
    terminal.start_logged_in();
  }

  Main& main() { return *terminal.main; }
  // Time goes by; then the screen shows what happened.
  void run(std::chrono::milliseconds time) {
    terminal.run(time);
    screen.acted();
    QCoreApplication::processEvents();
  }
  // The boxes that were shown since the last call.
  Texts asked() { return terminal.prompt.take_texts(); }
  // A market order for all accounts, in equal parts.
  void distribute(const char* lots) {
    frmorder& order = main().market_order();
    order.cbsymbols.choose("EURUSD");
    order.CBdis.choose(0);
    order.txtammount.set_text("");
    order.txtammount.type(lots);
    if (!order.chkAllClients.checked()) order.chkAllClients.click();
    order.cmddis.click();
    screen.acted();
  }
  void buy(const char* lots) {
    distribute(lots);
    main().market_order().cmdbuy.click();
  }

  // Of the window that is tested.
  template <class W = QWidget>
  W& find(const char* name) {
    return part<W>(*tested, name);
  }
  std::string line(const char* name) { return find<QLabel>(name).text().toStdString(); }
  std::string caption(const char* name) { return find<QAbstractButton>(name).text().toStdString(); }
  void click(const char* name) { QTest::mouseClick(&find(name), Qt::LeftButton); }
  // Keys for the widget that has the keyboard within the window.
  void key(Qt::Key key) { QTest::keyClick(tested->focusWidget(), key); }
  void keys(const std::string& text) {
    QTest::keyClicks(tested->focusWidget(), QString::fromStdString(text));
  }
  // Names of the widgets that Tab leaves, one after another.
  std::string tab(int times) {
    std::string way;
    for (int i = 0; i < times; ++i) {
      way += tested->focusWidget()->objectName().toStdString() + " ";
      key(Qt::Key_Tab);
    }
    return way;
  }

  TestTerminal terminal;
  Screen screen;
  QWidget* tested = nullptr;  // set by who has it
};

// The main window around the pane that is tested, with all the others.
struct Desktop {
  explicit Desktop(GuiRig& rig)
      : prompt(rig.screen),
        sound(rig.terminal.home->path()),
        window(rig.main(), rig.screen, prompt, sound, rig.terminal.file_dialog) {}
  Panes& panes() { return window.panes(); }

  DesktopPrompt prompt;
  DesktopSound sound;
  FrmMdiNewWindow window;
};

// A whole terminal and one window of its main window, which is on the screen at a size.
template <auto of_panes>
struct PaneRig : GuiRig {
  explicit PaneRig(DealerConfig config, QSize size = {900, 600}) : GuiRig(std::move(config)) {
    tested = &window;
    show(window, size);
  }

  Desktop desktop{*this};
  decltype((std::declval<Panes&>().*of_panes)()) window = (desktop.panes().*of_panes)();
  RowListView& list = window.list();
};

// Middle of a cell on the view's viewport.
inline QPoint cell_point(const RowListView& view, int place, int column) {
  return view.visualRect(view.model()->index(place, column)).center();
}

inline void click_cell(RowListView& view, int place, int column, Qt::KeyboardModifiers keys = {}) {
  QTest::mouseClick(view.viewport(), Qt::LeftButton, keys, cell_point(view, place, column));
}

// The check box of a row.
inline void click_tick(RowListView& view, int place) {
  const QRect cell = view.visualRect(view.model()->index(place, 0));
  QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, {cell.left() + 14, cell.center().y()});
}

inline void click_header(RowListView& view, int column) {
  QTest::mouseClick(view.horizontalHeader()->viewport(), Qt::LeftButton, {},
                    {view.columnViewportPosition(column) + 20, 8});
}

inline void double_click_cell(RowListView& view, int place, int column) {
  click_cell(view, place, column);
  QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, cell_point(view, place, column));
}

// The texts of a column in the list's own order, and as they are shown, from the top.
inline Texts texts_of(const RowList& list, std::size_t column) {
  Texts out;
  for (const Row& row : list)
    out.push_back(row.text(column));
  return out;
}
inline Texts shown(const RowListModel& model, std::size_t column) {
  Texts out;
  for (int place = 0; place < model.rowCount(); ++place)
    out.push_back(model.row_at(place)->text(column));
  return out;
}

// Keys go to the widget that has the keyboard; between a box and its window that is nobody for a moment.
inline void press(Qt::Key key, Qt::KeyboardModifiers with = {}) {
  QCoreApplication::processEvents();
  QTest::keyClick(QApplication::focusWidget(), key, with);
}

inline void type(const char* text) {
  QTest::keyClicks(QApplication::focusWidget(), QString::fromLatin1(text));
}

// Does something to the next modal box once it has the keyboard; to be called before what opens the box.
inline void when_modal(std::function<void(QWidget& box)> act) {
  auto* poll = new QTimer{qApp};
  const QPointer<QWidget> before = QApplication::activeModalWidget();
  QObject::connect(poll, &QTimer::timeout, poll, [poll, before, act = std::move(act)] {
    QWidget* box = QApplication::activeModalWidget();
    if (box == nullptr || box == before) return;
    if (!box->isActiveWindow() || QApplication::focusWidget() == nullptr) return;
    poll->deleteLater();
    poll->stop();
    act(*box);
  });
  poll->start(10);
}

}  // namespace tutti::testing
