#pragma once

#include <QWidget>
#include <functional>
#include <vector>

#include "orders/frmlimitorder.h"

namespace tutti {

class Screen;

// The prices of an entry order on one axis, higher ones further up, distances to scale: the market, the typed
// prices, and the bounds for them. The side on which the at-price must lie is tinted.
//
// A price too far from the market to share a scale with it, one that is still being typed for example, stands
// at the edge with an arrow. Market and bounds are named at the left, the typed prices at the right; names
// that would overlap are pushed apart and led to their lines.
class PriceSketchView final : public QWidget {
 public:
  // `sketch` is asked with every refresh.
  PriceSketchView(std::function<PriceSketch()> sketch, Screen& screen);

  enum class Kind {
    bid,
    ask,
    entry,
    stop_loss,
    take_profit,
    price_limit,
    stop_loss_bound,
    take_profit_bound
  };
  struct Mark {
    Kind kind;
    double price;
    QString name;        // with the price
    double line = 0.0;   // y
    double label = 0.0;  // y of the name's middle
    int beyond = 0;      // 1 above the scale, -1 below it
  };
  // From the highest price to the lowest, as they are painted.
  const std::vector<Mark>& marks() const { return marks_; }

  QSize sizeHint() const override { return {300, 150}; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void follow();
  void place_marks();
  void place_labels(bool typed);
  int names_width(bool typed) const;
  void paint_allowed_side(QPainter& painter, const QRectF& middle) const;

  std::function<PriceSketch()> sketch_;
  std::string_view price_sign_;
  std::vector<Mark> marks_;
};

}  // namespace tutti
