#pragma once

#include <QHeaderView>

namespace tutti {

class RowListView;

// Column headers of a list: they stand like their column, the one that the list is sorted by has an arrow for
// as long as it is, and a line below them marks the list that has the keyboard.
class ListHeader final : public QHeaderView {
 public:
  explicit ListHeader(const RowListView& list) : QHeaderView(Qt::Horizontal), list_(list) {}

  // Upwards or downwards, beside a header's text, on the side where there is room.
  static void paint_arrow(QPainter& painter, const QRect& header, const QString& text, bool is_number,
                          Qt::SortOrder order);

 protected:
  void initStyleOptionForIndex(QStyleOptionHeader* option, int section) const override;
  void paintEvent(QPaintEvent* event) override;
  void paintSection(QPainter* painter, const QRect& rect, int section) const override;

 private:
  const RowListView& list_;
};

}  // namespace tutti
