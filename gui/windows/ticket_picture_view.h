#pragma once

#include <QWidget>
#include <optional>
#include <vector>

#include "views/ticket_board.h"

namespace tutti {

class Screen;

// The fills of the opened ticket over price and time: a mark for each, the time from the click to the right
// and the price upwards, the price at the click as a line. What was bought points up, what was sold down; the
// area of a mark is in proportion to its lots, the largest of the ticket being of full size and none too
// small to be seen.
//
// The line above tells the mark nearest to the pointer, as the tool tip does, and otherwise what all of it
// is.
class TicketPictureView final : public QWidget {
 public:
  TicketPictureView(const TicketBoard& board, Screen& screen);

  struct Mark {
    QPointF at;         // its middle
    double size = 0.0;  // half its width
  };
  // One for each point of the picture, in its order.
  const std::vector<Mark>& marks() const { return marks_; }
  // What the mark nearest to a place tells; empty where nothing is shown, and outside of the axes.
  QString told_at(QPointF place) const;

  QSize sizeHint() const override { return {320, 170}; }
  QSize minimumSizeHint() const override { return {220, 120}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  bool event(QEvent* event) override;

 private:
  // Texts of an axis, each with its place in pixels along it.
  struct Tick {
    double place = 0.0;
    QString text;
  };

  void follow();
  void place_all();
  void place_prices();
  void place_times();
  void point_at(std::optional<QPointF> place);
  // The number of marks where there is none, or the place lies outside of the axes.
  std::size_t nearest(QPointF place) const;
  QString told(std::size_t point) const;
  QString head() const;
  double y(double price) const;
  double x(std::chrono::milliseconds after) const;
  void paint_axes(QPainter& painter) const;
  void paint_mark(QPainter& painter, std::size_t point) const;

  const TicketBoard& board_;
  TicketPicture picture_;
  std::vector<Mark> marks_;
  std::vector<Tick> prices_;
  std::vector<Tick> times_;
  QRectF plot_;  // within the axes
  double low_ = 0.0;
  double high_ = 0.0;
  std::chrono::milliseconds last_{0};  // time at the right edge
  std::optional<QPointF> pointer_;
};

}  // namespace tutti
