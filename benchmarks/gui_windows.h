#pragma once

#include <QMainWindow>
#include <QObject>
#include <cstdint>
#include <memory>

#include "benchmarks/bench_terminal.h"
#include "gui/kit/elided_label.h"
#include "gui/kit/screen.h"
#include "gui/windows/frmMain_window.h"

class QAbstractItemView;

namespace tutti::bench {

// Counts the paints of a view's cells.
class PaintCount final : public QObject {
 public:
  explicit PaintCount(QAbstractItemView& view);
  int paints() const { return paints_; }
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  int paints_ = 0;
};

// Size and place are the same for every window that is compared.
void show_window(QMainWindow& window);
// Runs the toolkit's events until the view has been painted.
void wait_for_paint(const PaintCount& paints);

// Main window with the accounts list, and with the line of the totals in its status bar if wanted.
class AccountsWindow {
 public:
  AccountsWindow(BenchTerminal& terminal, bool totals);

  Screen& screen() { return screen_; }
  RowListView& list() { return accounts_->list(); }
  const PaintCount& paints() const { return *paints_; }

 private:
  void refresh_totals();

  const frmMdiNew& form_;
  Screen screen_;
  QMainWindow window_;
  FrmMainWindow* accounts_;
  ElidedLabel* totals_ = nullptr;
  std::uint64_t shown_ = 0;  // stamp of the form's state on show
  std::unique_ptr<PaintCount> paints_;
};

}  // namespace tutti::bench
