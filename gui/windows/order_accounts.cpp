#include "gui/windows/order_accounts.h"

#include <QAction>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QResizeEvent>
#include <QVBoxLayout>
#include <utility>

#include "gui/kit/binder.h"
#include "gui/kit/screen.h"
#include "gui/kit/theme.h"
#include "gui/kit/window_parts.h"
#include "gui/list/cell_editor.h"
#include "gui/list/row_list_view.h"
#include "gui/windows/answer_filter.h"
#include "gui/windows/round_panel.h"

namespace tutti {

namespace {

constexpr int one_line_head = 540;  // from this width on the filter stands beside the rest
constexpr int find_width = 150;

QColor colour_of(ShareFault fault) {
  if (fault == ShareFault::none) return {};
  return fault == ShareFault::zero_or_below ? theme::colour(Ink::red) : QColor{theme::amber};
}

std::string_view text_of(ShareFault fault) {
  switch (fault) {
    case ShareFault::zero_or_below:
      return "The share is zero or negative";
    case ShareFault::below_minimum:
      return "The share is below the smallest lot";
    case ShareFault::above_maximum:
      return "The share is above the largest lot";
    default:
      return {};
  }
}

}  // namespace

OrderAccounts::OrderAccounts(OrderForm form, Screen& screen)
    : form_(std::move(form)),
      screen_(screen),
      list_(named(new RowListView{form_.accounts, screen, {AccountRows::amount}, true}, "lvwConClients")),
      head_(new QBoxLayout{QBoxLayout::TopToBottom}) {
  list_->set_ink([this](const Row& row, std::size_t at) {
    if (at == AccountRows::result_text) return AnswerFilter::colour(form_.answer_of(row));
    return at == AccountRows::amount ? colour_of(form_.share_fault(row)) : QColor{};
  });
  list_->keep_sorted(AccountRows::account);
  // What nobody knows of earlier rounds stands behind what this one says.
  list_->set_pieces([this](const Row& row, std::size_t at) {
    std::vector<TextPiece> out;
    if (at != AccountRows::result_text) return out;
    const std::string unknown = unknown_text(row);
    if (unknown.empty()) return out;
    const std::string result = row.text(at);
    if (!result.empty()) out.push_back({result + "  -  ", {}});
    out.push_back({unknown, QColor{theme::amber}});
    return out;
  });
  list_->set_tip([this](const Row& row, std::size_t at) {
    if (at == AccountRows::account) return form_.user_names(row);
    const std::string fault{text_of(form_.share_fault(row))};
    const std::string unknown = unknown_text(row);
    const std::string result = row.text(AccountRows::result_text);
    std::string out = fault;
    if (fault.empty() && unknown.empty()) return out;
    for (const std::string& line : {result, unknown}) {
      if (!line.empty()) out += (out.empty() ? "" : "\n") + line;
    }
    return out;
  });
  head_->setSpacing(6);
  auto* filter = new AnswerFilter{form_, *list_, screen};
  head_->addWidget(make_top(*filter));
  head_->addWidget(filter, 1);
  auto* column = new QVBoxLayout{this};
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(6);
  column->addLayout(head_);
  column->addWidget(list_, 1);
  column->addWidget(new RoundPanel{form_, [filter] { return filter->ticked_and_hidden(); }, screen});
  add_share_editor();
}

QWidget* OrderAccounts::make_top(AnswerFilter& filter) {
  auto* top = new QWidget;
  auto* row = new QHBoxLayout{top};
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(0);
  Binder binder{screen_, *this};
  auto* box = named(new QCheckBox, "chkAllClients");
  binder.bind(*box, form_.all_accounts);
  row->addWidget(box);
  auto* caption = named(new QLabel, "LblCheck");
  binder.bind(*caption, form_.all_accounts_label);
  row->addWidget(caption, 1);
  row->addWidget(make_find(filter));
  return top;
}

QWidget* OrderAccounts::make_find(AnswerFilter& filter) {
  auto* find = named(new QLineEdit, "find_account");
  find->setPlaceholderText(QStringLiteral("Find account"));
  find->setToolTip(QStringLiteral("Account number or user name. Esc shows all again."));
  find->setClearButtonEnabled(true);
  find->setFixedWidth(find_width);
  // Whatever changes the text, the button that clears it too.
  connect(find, &QLineEdit::textChanged, this, [this, &filter](const QString& text) {
    filter.find(text.toStdString());
    screen_.acted();
  });
  connect(find, &QLineEdit::returnPressed, this, [this] {
    if (const Row* first = list_->rows().row_at(0)) list_->go_to(*first);
    list_->setFocus(Qt::OtherFocusReason);
    screen_.acted();
  });
  find->installEventFilter(this);
  return find;
}

// Of the find box, which Esc leaves.
bool OrderAccounts::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress || static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape)
    return false;
  static_cast<QLineEdit*>(watched)->clear();
  list_->setFocus(Qt::OtherFocusReason);
  return true;
}

void OrderAccounts::add_share_editor() {
  auto* editor = named(new CellEditor{*list_,
                                      screen_,
                                      {.box = form_.share_editor,
                                       .row = [this] { return form_.accounts.find(form_.editor_row()); },
                                       .column = AccountRows::amount,
                                       .commit = form_.commit_editor,
                                       .cancel = form_.cancel_editor}},
                       form_.editor_name);
  editor->setAlignment(Qt::AlignRight);
  list_->activate = form_.open_editor;
  auto* edit = new QAction{QStringLiteral("Correct the share"), list_};
  edit->setShortcuts({Qt::Key_F3, Qt::Key_Return, Qt::Key_Enter});
  edit->setShortcutContext(Qt::WidgetShortcut);
  connect(edit, &QAction::triggered, this, [this] { edit_share(); });
  list_->addAction(edit);
}

void OrderAccounts::edit_share() {
  screen_.settle();
  if (Row* row = form_.accounts.current()) form_.open_editor(*row, AccountRows::amount);
  screen_.acted();
}

void OrderAccounts::resizeEvent(QResizeEvent* event) {
  head_->setDirection(event->size().width() >= one_line_head ? QBoxLayout::LeftToRight
                                                             : QBoxLayout::TopToBottom);
  QWidget::resizeEvent(event);
}

std::string OrderAccounts::unknown_text(const Row& row) const {
  const std::string before = unknown_before_text(form_.unknown_before(row));
  // An account that was lost meanwhile comes back with a new row.
  constexpr std::string_view word = "unknown";
  if (form_.answer_of(row) != OrderAnswer::unknown || row.reads(AccountRows::result_text, word))
    return before;
  return before.empty() ? std::string{word} : std::string{word} + ", " + before;
}

}  // namespace tutti
