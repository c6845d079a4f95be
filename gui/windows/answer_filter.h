#pragma once

#include <QColor>
#include <QWidget>
#include <array>
#include <cstdint>
#include <string>

#include "gui/windows/order_form.h"

class QToolButton;

namespace tutti {

class RowListView;
class Screen;

// Which accounts an order window lists: all, the ticked ones, or those with a kind of answer, each
// with their number; of these, those that are looked for.
class AnswerFilter final : public QWidget {
 public:
  // `form` and `view` must live as long as the filter.
  AnswerFilter(const OrderForm& form, RowListView& view, Screen& screen);

  // Text colour of a result; not valid for an account without an answer.
  static QColor colour(OrderAnswer answer);

  // Only accounts whose number or user name has these letters in it; all when they are empty.
  void find(const std::string& letters);
  // Ticked accounts that are not shown.
  int ticked_and_hidden() const { return ticked_and_hidden_; }

 private:
  enum Choice : std::size_t { all, ticked, refused, waiting, choices };

  bool shows(Choice choice, const Row& row) const;
  bool found(const Row& row) const;
  void apply();
  void follow();

  const OrderForm& form_;
  RowListView& view_;
  std::array<QToolButton*, choices> buttons_{};
  Choice choice_ = all;
  std::string wanted_;  // letters to be found, folded
  std::uint64_t seen_stamp_ = 0;
  std::string seen_answers_;
  int ticked_and_hidden_ = 0;
};

}  // namespace tutti
