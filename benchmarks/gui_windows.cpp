#include "benchmarks/gui_windows.h"

#include <QAbstractItemView>
#include <QCoreApplication>
#include <QEvent>
#include <QStatusBar>

namespace tutti::bench {

PaintCount::PaintCount(QAbstractItemView& view) {
  view.viewport()->installEventFilter(this);
}

bool PaintCount::eventFilter(QObject*, QEvent* event) {
  if (event->type() == QEvent::Paint) ++paints_;
  return false;
}

void show_window(QMainWindow& window) {
  window.resize(1100, 1100);
  window.show();
}

void wait_for_paint(const PaintCount& paints) {
  while (paints.paints() == 0)
    QCoreApplication::processEvents();
}

AccountsWindow::AccountsWindow(BenchTerminal& terminal, bool totals)
    : form_(terminal.window()), accounts_(new FrmMainWindow{terminal.accounts(), screen_, &window_}) {
  window_.setCentralWidget(accounts_);
  if (totals) {
    totals_ = new ElidedLabel;
    window_.statusBar()->addWidget(totals_, 1);
    screen_.on_refresh(*totals_, [this] { refresh_totals(); });
  }
  paints_ = std::make_unique<PaintCount>(list());
  show_window(window_);
}

void AccountsWindow::refresh_totals() {
  if (form_.stamp() == shown_) return;
  shown_ = form_.stamp();
  totals_->set_text(QString::fromStdString(form_.totals_pane()));
}

}  // namespace tutti::bench
