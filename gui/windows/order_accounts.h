#pragma once

#include <QWidget>

#include "gui/windows/order_form.h"

class QBoxLayout;

namespace tutti {

class AnswerFilter;
class RowListView;
class Screen;

// The accounts side of an order window: the all-accounts box, the find box and the filter above the list with
// its ticks, shares and results, the editor of a share in it, and the sums below.
class OrderAccounts final : public QWidget {
 public:
  OrderAccounts(OrderForm form, Screen& screen);

  RowListView& list() { return *list_; }
  // Longer lines below the list are the list's loss, not the window's.
  bool hasHeightForWidth() const override { return false; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  QWidget* make_top(AnswerFilter& filter);
  QWidget* make_find(AnswerFilter& filter);
  void add_share_editor();
  void edit_share();
  // What the row's Result does not say of what nobody knows.
  std::string unknown_text(const Row& row) const;

  OrderForm form_;
  Screen& screen_;
  RowListView* list_;
  QBoxLayout* head_;  // all-accounts box with the find box, and filter, beside or below each other
};

}  // namespace tutti
