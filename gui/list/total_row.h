#pragma once

#include <QWidget>
#include <cstdint>

class QScrollBar;

namespace tutti {

class Row;
class RowListView;
class Screen;

// The total row of a list, right below it and always in sight, in the list's own columns wherever they are
// dragged and scrolled to. The list itself no longer shows it. Rows without a key are totals; the list has
// one at most, at its end.
//
// To be laid out directly under the list, as wide as it is. The list's horizontal scroll bar moves below the
// total.
class TotalRow final : public QWidget {
 public:
  TotalRow(RowListView& list, Screen& screen);

  // nullptr while the list has none.
  const Row* row() const;
  // Where a column is painted; empty for one that is hidden.
  QRect cell(int column) const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void follow();
  void follow_range();

  RowListView& list_;
  QScrollBar* bar_;
  const Row* shown_ = nullptr;  // only compared
  std::uint64_t shown_stamp_ = 0;
};

}  // namespace tutti
