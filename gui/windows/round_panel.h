#pragma once

#include <QString>
#include <QWidget>
#include <functional>

#include "gui/windows/order_form.h"

class QLabel;

namespace tutti {

class AnswersLine;
class Screen;

// Under the accounts of an order window: the shares against the total typed and what is wrong with them,
// what one order may be of, and what became of the orders.
class RoundPanel final : public QWidget {
 public:
  // `form` must live as long as the panel.
  // `hidden`: how many ticked accounts a filter keeps off the screen; they take part all the same.
  RoundPanel(OrderForm& form, std::function<int()> hidden, Screen& screen);

 private:
  void follow();
  void show_shares();
  void show_limits();
  void show_answers();

  const OrderForm& form_;
  std::function<int()> hidden_;
  QLabel* shares_;
  QLabel* limits_;
  AnswersLine* answers_;
};

}  // namespace tutti
