#include "gui/windows/frmClosePos_window.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QResizeEvent>
#include <QVBoxLayout>
#include <utility>

#include "core/numbers.h"
#include "core/texts.h"
#include "gui/kit/binder.h"
#include "gui/kit/screen.h"
#include "gui/kit/window_parts.h"
#include "gui/list/empty_hint.h"
#include "gui/list/find_box.h"
#include "gui/list/list_count.h"
#include "gui/list/row_list_view.h"
#include "gui/windows/answers_line.h"
#include "gui/windows/symbol_box.h"

namespace tutti {

namespace {

// From these widths on the whole head is one line, and what is done with the list is, both with room for the
// whole count. The button for the next symbol comes on top.
constexpr int one_line_head = 860;
constexpr int one_line_act = 470;
constexpr int between = 12;
constexpr int widest_symbols = 180;
constexpr int widest_find = 130;

QBoxLayout* make_line_of(std::initializer_list<QWidget*> widgets) {
  auto* line = new QHBoxLayout;
  line->setSpacing(between);
  for (QWidget* widget : widgets)
    line->addWidget(widget);
  return line;
}

}  // namespace

FrmClosePosWindow::FrmClosePosWindow(frmClosePos& form, Screen& screen, const Clock& clock)
    : form_(form),
      screen_(screen),
      look_(form),
      list_(named(new RowListView{form.MSH, screen, {frmClosePos::amount}}, "MSH")),
      head_(make_head()),
      hint_(add_empty_hint(*list_, screen, {})),
      answers_(new AnswersLine{"Nothing closed yet"}) {
  connect_list();
  list_->guard_clicks(clock);
  form_.reveal = [this](const Row& row) { list_->go_to(row); };
  hint_->setTextFormat(Qt::PlainText);

  auto* column = new QVBoxLayout{this};
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addLayout(head_);
  column->addWidget(list_, 1);
  column->addLayout(make_foot(answers_));
  setFocusProxy(list_);
  set_tab_order(*this, {"CloseSymbols", "chkAllClients", "marked_only", "find_account", "MSH", "LblCheck",
                        "next_block"});
  follow();
  screen.on_refresh(*this, [this] { follow(); });
}

QBoxLayout* FrmClosePosWindow::make_head() {
  Binder binder{screen_, *this};
  auto* label = named(new QLabel, "Label2");
  label->setProperty("muted", true);
  binder.bind(*label, form_.Label2);
  symbols_ = named(new SymbolBox{form_.CloseSymbols, screen_}, "CloseSymbols");
  symbols_->setMaximumWidth(widest_symbols);
  auto* all = named(new QCheckBox{QStringLiteral("All")}, "chkAllClients");
  binder.bind(*all, form_.chkAllClients);
  marked_only_ = named(new QCheckBox{QStringLiteral("Marked only")}, "marked_only");
  connect(marked_only_, &QCheckBox::clicked, this, [this] { screen_.acted(); });
  // Before the list's hint looks whether anything is left.
  screen_.on_refresh(*this, [this] { show_marked_only(); });
  find_ = named(new FindBox{screen_, *list_}, "find_account");
  find_->setMaximumWidth(widest_find);
  find_->setToolTip(QStringLiteral("Account number or user name; Enter goes to the next one"));
  find_->found = [this](const Row& row, const std::string& letters) {
    return !frmClosePos::is_position(row) && (contains_letters(row.text(frmClosePos::account), letters) ||
                                              contains_letters(form_.user_names(row), letters));
  };
  auto* close = named(new QPushButton, "LblCheck");
  close->setProperty("role", QStringLiteral("primary"));
  binder.bind(*close, form_.LblCheck);
  auto* marked = named(new ListCount{form_.MSH, screen_, [this] { return count(); }}, "marked_count");
  next_ = named(new QPushButton, "next_block");
  binder.bind(*next_, form_.next_block);

  auto* what = make_line_of({label, symbols_, all, marked_only_, find_});
  // The box takes what room there is, as long as it may.
  what->setStretch(1, 100);
  what->addStretch(1);
  auto* close_line = make_line_of({close, marked});
  close_line->setStretch(1, 1);
  act_ = new QBoxLayout{QBoxLayout::TopToBottom};
  act_->setSpacing(6);
  act_->addLayout(close_line, 1);
  act_->addWidget(next_);
  auto* head = new QBoxLayout{QBoxLayout::TopToBottom};
  head->setContentsMargins(10, 6, 10, 6);
  head->setSpacing(6);
  head->addLayout(what);
  head->addLayout(act_, 1);
  return head;
}

void FrmClosePosWindow::connect_list() {
  list_->columns().keep_readable({"0000000", "            #000000000 Sell 00.00 EURUSD at 00000.00", "000.00",
                                  "Close At 00000.00  -  Trading is closed"});
  // Positions stand below their account.
  list_->columns().set_sortable(false);
  list_->rows().keep_groups_sorted(frmClosePos::account,
                                   [](const Row& row) { return !frmClosePos::is_position(row); });
  list_->set_heads([](const Row& row) { return !frmClosePos::is_position(row); });
  list_->set_boxes(frmClosePos::status, [](const Row& row) {
    return frmClosePos::is_position(row) ? std::optional{frmClosePos::marked(row)} : std::nullopt;
  });
  list_->set_ink([this](const Row& row, std::size_t column) { return look_.ink(row, column); });
  list_->set_pieces([this](const Row& row, std::size_t column) { return look_.pieces(row, column); });
  list_->set_tip([this](const Row& row, std::size_t column) { return look_.tip(row, column); });
  list_->clicked = [this](Row& row, std::size_t column) {
    if (frmClosePos::is_position(row)) return form_.click(row, column);
    form_.toggle(meant({&row}));
  };
  list_->activate = [this](Row& row, std::size_t) { list_->clicked(row, frmClosePos::action); };
  list_->spaced = [this](const std::vector<Row*>& rows) { form_.toggle(meant(rows)); };
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

// An account takes part with any of its positions.
bool FrmClosePosWindow::takes_part(const Row& row) const {
  if (frmClosePos::is_position(row)) return frmClosePos::marked(row);
  const RowList& grid = form_.MSH;
  for (std::size_t at = grid.index_of(row) + 1; at < grid.size(); ++at) {
    if (!frmClosePos::is_position(grid.row(at))) return false;
    if (frmClosePos::marked(grid.row(at))) return true;
  }
  return false;
}

std::vector<Row*> FrmClosePosWindow::meant(const std::vector<Row*>& rows) const {
  const RowListModel& shown = list_->rows();
  if (!shown.filtered()) return rows;
  std::vector<Row*> out;
  for (Row* row : rows) {
    if (frmClosePos::is_position(*row)) {
      out.push_back(row);
      continue;
    }
    for (int place = shown.place_of(row) + 1; place < shown.rowCount(); ++place) {
      Row* below = shown.row_at(place);
      if (!frmClosePos::is_position(*below)) break;
      out.push_back(below);
    }
  }
  return out;
}

// Every price changes all rows, but not which of them take part.
void FrmClosePosWindow::show_marked_only() {
  RowListModel& rows = list_->rows();
  if (!marked_only_->isChecked()) {
    if (rows.filtered()) rows.set_filter({});
    return;
  }
  const RowList& grid = form_.MSH;
  const bool begins = !rows.filtered();
  if (rows.filtered() && filtered_stamp_ == grid.stamp()) return;
  filtered_stamp_ = grid.stamp();
  std::vector<RowKey> marks;
  for (const Row& row : grid)
    if (frmClosePos::is_position(row) && frmClosePos::marked(row)) marks.push_back(row.key());
  if (rows.filtered() && filtered_structure_ == grid.structure_stamp() && filtered_marks_ == marks) return;
  filtered_structure_ = grid.structure_stamp();
  filtered_marks_ = std::move(marks);
  rows.set_filter([this](const Row& row) { return takes_part(row); }, RowListModel::Asked::by_owner);
  if (begins) list_->scrollToTop();
}

void FrmClosePosWindow::follow() {
  arrange();
  const std::uint64_t stamp = form_.MSH.stamp();
  // An answer may come without a change of the grid, one for a symbol that was left for example.
  if (stamp == seen_stamp_ && !answers_wait_) return;
  seen_stamp_ = stamp;
  if (std::exchange(seen_symbol_, form_.CloseSymbols.text()) != form_.CloseSymbols.text() &&
      form_.MSH.current() == nullptr) {
    list_->scrollToTop();
  }
  if (form_.MSH.empty()) {
    const std::string& symbol = form_.CloseSymbols.text();
    hint_->setText(symbol.empty() ? QStringLiteral("Choose a symbol")
                                  : QStringLiteral("No connected account holds positions of %1")
                                        .arg(QString::fromStdString(symbol)));
  } else {
    hint_->setText(QStringLiteral("Nothing is marked"));
  }
  const OrderAnswers answers = form_.answers();
  answers_->show_answers(answers);
  answers_wait_ = answers.waiting + answers.unknown + answers.unknown_before > 0;
  std::string text = answers.text();
  if (text == seen_answers_) return;
  seen_answers_ = std::move(text);
  list_->viewport()->update();
}

void FrmClosePosWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  arrange();
}

void FrmClosePosWindow::arrange() {
  const int next = next_->isHidden() ? 0 : next_->sizeHint().width() + between;
  const auto direction = [this, next](int from_width) {
    return width() >= from_width + next ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom;
  };
  head_->setDirection(direction(one_line_head));
  act_->setDirection(direction(one_line_act));
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
