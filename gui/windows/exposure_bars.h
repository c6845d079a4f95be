#pragma once

#include <QWidget>
#include <functional>
#include <vector>

#include "core/row_key.h"

namespace tutti {

class RowListView;
class Screen;

// A picture of what is held of every symbol, one bar below the other on one scale: net lots from a zero line,
// long to the right and short to the left, in front of the outline of all that was bought and sold.
//
// Follows the list of net positions, its order and its selection included; a click on a bar selects its
// symbol there.
class ExposureBars final : public QWidget {
 public:
  ExposureBars(RowListView& list, Screen& screen);

  struct Bar {
    RowKey key;
    QString name;
    double bought = 0.0;  // lots
    double sold = 0.0;
    double net = 0.0;
    bool selected = false;
    bool operator==(const Bar&) const = default;
  };
  const std::vector<Bar>& bars() const { return bars_; }
  // Where a bar's row is, its name included, and where the bar itself is painted.
  QRect row_box(std::size_t place) const;
  QRect net_box(std::size_t place) const;
  // Height at which all bars can be read well, in pixels; with less than minimumHeight() they can't.
  int full_height() const;

  // Runs when another symbol is selected, with the place of its row.
  std::function<void(const QRect& box)> selected;

  QSize sizeHint() const override { return {240, full_height()}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  void follow();
  int row_height() const;
  void measure();
  // From one amount of lots, short ones below 0, to another.
  QRect span(std::size_t place, double from, double to, int height) const;

  RowListView& list_;
  Screen& screen_;
  std::vector<Bar> bars_;
  int name_width_ = 0;  // of the widest, in pixels
  int number_width_ = 0;
  double most_long_ = 0.0;  // lots of the longest outline to either side
  double most_short_ = 0.0;
};

}  // namespace tutti
