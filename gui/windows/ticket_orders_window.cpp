#include "gui/windows/ticket_orders_window.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "gui/kit/binder.h"
#include "gui/kit/screen.h"
#include "gui/kit/window_parts.h"

namespace tutti {

namespace {
constexpr int price_width = 150;
}

TicketOrdersWindow::TicketOrdersWindow(TicketOrdersForm& form, Screen& screen, QWidget* parent)
    : QDialog(parent), form_(form), screen_(screen) {
  setObjectName(QStringLiteral("ticket_orders"));
  setWindowTitle(QStringLiteral("Change the orders of a ticket"));
  Binder binder{screen, *this};
  auto* head = named(new QLabel, "orders_head");
  binder.bind(*head, form_.head);
  auto* grid = new QGridLayout;
  grid->setHorizontalSpacing(12);
  grid->setVerticalSpacing(6);
  const struct {
    const char* caption;
    const char* name;
    TextBox& box;
    const char* note;
  } fields[] = {{"&At price", "new_price", form_.price, "empty: as each order has it"},
                {"&SL", "new_stop_loss", form_.stop_loss, "empty: as it is; 0 takes it off"},
                {"&TP", "new_take_profit", form_.take_profit, "empty: as it is; 0 takes it off"}};
  int row = 0;
  for (const auto& [caption, name, box, note] : fields) {
    auto* edit = named(new QLineEdit, name);
    edit->setFixedWidth(price_width);
    edit->setAlignment(Qt::AlignRight);
    binder.bind(*edit, box);
    auto* label = new QLabel{QString::fromLatin1(caption)};
    label->setBuddy(edit);
    auto* what = new QLabel{QString::fromLatin1(note)};
    what->setProperty("muted", true);
    grid->addWidget(label, row, 0);
    grid->addWidget(edit, row, 1);
    grid->addWidget(what, row, 2);
    if (price_ == nullptr) price_ = edit;
    ++row;
  }
  grid->setColumnStretch(2, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  const auto add_button = [&](const char* name, Button& button) {
    auto* widget = named(new QPushButton, name);
    binder.bind(*widget, button);
    buttons->addWidget(widget);
    return widget;
  };
  add_button("change_orders_now", form_.change)->setDefault(true);
  add_button("close_orders", form_.close)->setAutoDefault(false);
  auto* all = new QVBoxLayout{this};
  all->setContentsMargins(16, 16, 16, 12);
  all->setSpacing(12);
  all->addWidget(head);
  all->addLayout(grid);
  all->addLayout(buttons);
  all->setSizeConstraint(QLayout::SetFixedSize);
  setWindowModality(Qt::WindowModal);
  binder.show([this] { follow(); });
}

void TicketOrdersWindow::follow() {
  if (!form_.Displayed()) return hide();
  if (!isHidden()) return;
  price_->setFocus(Qt::OtherFocusReason);
  open();
}

void TicketOrdersWindow::reject() {
  form_.close.click();
  screen_.acted();
}

}  // namespace tutti
