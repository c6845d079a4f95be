#pragma once

#include <QApplication>
#include <QLineEdit>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <functional>

#include "gui/row_list_view.h"
#include "gui/screen.h"
#include "tests/support/test_terminal.h"

namespace tutti::testing {

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

  TestTerminal terminal;
  Screen screen;
};

// Shows a window at a size and waits until it is laid out.
inline void show(QWidget& window, QSize size = {900, 600}) {
  window.resize(size);
  window.show();
  QCoreApplication::processEvents();
}

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

inline void double_click_cell(RowListView& view, int place, int column) {
  click_cell(view, place, column);
  QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, cell_point(view, place, column));
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
