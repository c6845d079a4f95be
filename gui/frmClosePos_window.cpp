#include "gui/frmClosePos_window.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QResizeEvent>
#include <QVBoxLayout>

#include "core/numbers.h"
#include "gui/answers_line.h"
#include "gui/binder.h"
#include "gui/empty_hint.h"
#include "gui/list_count.h"
#include "gui/row_list_view.h"
#include "gui/screen.h"
#include "gui/window_parts.h"

namespace tutti {

namespace {

constexpr int one_line_head = 680;  // from this width on the head is one line
constexpr int widest_symbols = 180;

QBoxLayout* make_line_of(std::initializer_list<QWidget*> widgets) {
  auto* line = new QHBoxLayout;
  line->setSpacing(12);
  for (QWidget* widget : widgets)
    line->addWidget(widget);
  return line;
}

}  // namespace

FrmClosePosWindow::FrmClosePosWindow(frmClosePos& form, Screen& screen)
    : form_(form),
      screen_(screen),
      look_(form),
      list_(named(new RowListView{form.MSH, screen, {frmClosePos::amount}}, "MSH")),
      head_(make_head()),
      hint_(add_empty_hint(*list_, screen, {})),
      answers_(new AnswersLine{"Nothing closed yet"}) {
  connect_list();
  hint_->setTextFormat(Qt::PlainText);

  auto* column = new QVBoxLayout{this};
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addLayout(head_);
  column->addWidget(list_, 1);
  auto* foot = new QHBoxLayout;
  foot->setContentsMargins(10, 4, 10, 4);
  foot->addWidget(answers_);
  column->addLayout(foot);
  setFocusProxy(list_);
  set_tab_order(*this, {"CloseSymbols", "chkAllClients", "MSH", "LblCheck", "next_block"});
  follow();
  screen.on_refresh(*this, [this] { follow(); });
}

QBoxLayout* FrmClosePosWindow::make_head() {
  Binder binder{screen_, *this};
  auto* label = named(new QLabel, "Label2");
  label->setProperty("muted", true);
  binder.bind(*label, form_.Label2);
  symbols_ = make_combo("CloseSymbols");
  symbols_->setMaximumWidth(widest_symbols);
  binder.bind(*symbols_, form_.CloseSymbols);
  auto* all = named(new QCheckBox{QStringLiteral("All")}, "chkAllClients");
  binder.bind(*all, form_.chkAllClients);
  auto* close = named(new QPushButton, "LblCheck");
  close->setProperty("role", QStringLiteral("primary"));
  binder.bind(*close, form_.LblCheck);
  auto* marked = named(new ListCount{form_.MSH, screen_, [this] { return count(); }}, "marked_count");

  auto* next = named(new QPushButton, "next_block");
  binder.bind(*next, form_.next_block);

  auto* what = make_line_of({label, symbols_, all});
  what->setStretch(1, 1);
  auto* act = make_line_of({close, marked, next});
  act->setStretch(1, 1);
  auto* head = new QBoxLayout{QBoxLayout::TopToBottom};
  head->setContentsMargins(10, 6, 10, 6);
  head->setSpacing(6);
  head->addLayout(what);
  head->addLayout(act, 1);
  return head;
}

void FrmClosePosWindow::connect_list() {
  list_->keep_readable({"0000000", "            #000000000 Sell 00.00 EURUSD at 00000.00", "000.00",
                        "Close At 00000.00  -  Trading is closed"});
  // Positions stand below their account.
  list_->set_sortable(false);
  list_->set_heads([](const Row& row) { return !frmClosePos::is_position(row); });
  list_->set_boxes(frmClosePos::status, [](const Row& row) {
    return frmClosePos::is_position(row) ? std::optional{frmClosePos::marked(row)} : std::nullopt;
  });
  list_->set_ink([this](const Row& row, std::size_t column) { return look_.ink(row, column); });
  list_->set_pieces([this](const Row& row, std::size_t column) { return look_.pieces(row, column); });
  list_->set_tip([this](const Row& row) { return look_.tip(row); });
  list_->clicked = [this](Row& row, std::size_t column) { form_.click(row, column); };
  list_->activate = [this](Row& row, std::size_t) { form_.click(row, frmClosePos::action); };
  list_->spaced = [this](const std::vector<Row*>& rows) { form_.toggle(rows); };
}

QString FrmClosePosWindow::count() const {
  std::size_t marked = 0;
  std::size_t positions = 0;
  double lots = 0.0;
  for (const Row& row : form_.MSH) {
    if (!frmClosePos::is_position(row)) continue;
    ++positions;
    if (!frmClosePos::marked(row)) continue;
    ++marked;
    lots += row.cell(frmClosePos::amount).stored_number();
  }
  return ListCount::part(marked, positions) + QStringLiteral(" marked") +
         (marked == 0
              ? QString{}
              : QStringLiteral(", %1 lots").arg(QString::fromStdString(number_text(lots_of_sum(lots)))));
}

void FrmClosePosWindow::follow() {
  if (!isVisible()) return;
  const std::uint64_t stamp = form_.MSH.stamp();
  // An answer may come without a change of the grid, one for a symbol that was left for example.
  if (stamp == seen_stamp_ && !answers_wait_) return;
  seen_stamp_ = stamp;
  if (form_.MSH.empty()) {
    const std::string& symbol = form_.CloseSymbols.text();
    hint_->setText(symbol.empty() ? QStringLiteral("Choose a symbol")
                                  : QStringLiteral("No connected account holds positions of %1")
                                        .arg(QString::fromStdString(symbol)));
  }
  const OrderAnswers answers = form_.answers();
  answers_->show_answers(answers);
  answers_wait_ = answers.waiting > 0;
  std::string text = answers.text();
  if (text == seen_answers_) return;
  seen_answers_ = std::move(text);
  list_->viewport()->update();
}

void FrmClosePosWindow::resizeEvent(QResizeEvent* event) {
  head_->setDirection(event->size().width() >= one_line_head ? QBoxLayout::LeftToRight
                                                             : QBoxLayout::TopToBottom);
  QWidget::resizeEvent(event);
}

void FrmClosePosWindow::close_marked() {
  form_.LblCheck.click();
  screen_.acted();
}

void FrmClosePosWindow::mark_all() {
  form_.chkAllClients.click();
  screen_.acted();
}

void FrmClosePosWindow::focus_symbol() {
  symbols_->setFocus(Qt::ShortcutFocusReason);
}

}  // namespace tutti
