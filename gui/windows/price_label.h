#pragma once

#include <QString>
#include <QWidget>

#include "core/colours.h"

namespace tutti {

// A price in large digits, its pips larger still, and a fraction of a pip raised.
class PriceLabel final : public QWidget {
 public:
  // `coloured`: green after a rise and red after a fall, until it moves the next time. `pixels`: height of
  // the digits in front.
  PriceLabel(bool coloured, int pixels, QWidget* parent = nullptr);

  // `decimals` as the symbol is quoted. A price that is not above 0 is none.
  void show_price(double price, int decimals);
  // Shows none; the next price is the first one, which did not move.
  void clear();

  // What is shown, "1.08421"; empty while there is no price.
  const QString& text() const { return text_; }
  Ink ink() const { return ink_; }
  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QFont front_font() const;
  QFont pip_font() const;

  bool coloured_;
  int pixels_;
  double price_ = 0.0;
  int decimals_ = 0;
  Ink ink_ = Ink::plain;
  QString text_;
};

}  // namespace tutti
