#include "gui/windows/frmTrade_window.h"

#include <QAction>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "gui/kit/binder.h"
#include "gui/kit/elided_label.h"
#include "gui/kit/screen.h"
#include "gui/kit/theme.h"
#include "gui/kit/window_parts.h"
#include "gui/list/list_count.h"
#include "gui/list/row_list_view.h"
#include "gui/windows/not_connected_line.h"

namespace tutti {

namespace {

using Column = frmTrade::Column;

const std::vector<std::size_t> numbers{
    Column::ticket,    Column::account,     Column::amount,     Column::open_price, Column::current_price,
    Column::stop_loss, Column::take_profit, Column::commission, Column::interest,   Column::profit};

Side side(const Row& row, std::size_t column) {
  if (column != Column::type) return Side::none;
  return row.reads(column, "Buy") ? Side::buy : Side::sell;
}

QColor ink(const Row& row, std::size_t column) {
  if (column == Column::type) return theme::side_colour(side(row, column));
  if (column != Column::profit) return {};
  return theme::profit_colour(row.cell(column).stored_number());
}

}  // namespace

FrmTradeWindow::FrmTradeWindow(frmTrade& form, const AccountBook& accounts, Screen& screen)
    : form_(form), screen_(screen), list_(new RowListView{form.lvwOpenPos, screen, numbers, true}) {
  list_->setObjectName(QStringLiteral("lvwOpenPos"));
  list_->set_ink(ink);
  list_->set_money([](std::size_t at) { return at >= frmTrade::commission && at <= frmTrade::profit; });
  list_->set_sides(side);
  list_->columns().keep_readable({"00000000", "000000", "0000-00-00", "Sell000", "00.00", "AUDNZD",
                                  "00000.00", "00000.00", "00000.00", "00000.00", "-00.00", "-00.00",
                                  "-00,000.00"});

  Binder binder{screen, *this};
  auto* all = new QCheckBox{QStringLiteral("All")};
  all->setObjectName(QStringLiteral("chkAll"));
  binder.bind(*all, form.chkAll);
  auto* close = new QPushButton;
  close->setObjectName(QStringLiteral("lbbClose"));
  binder.bind(*close, form.lbbClose);

  auto* head = new QHBoxLayout;
  head->setContentsMargins(8, 6, 10, 6);
  head->setSpacing(12);
  head->addWidget(all);
  head->addWidget(close);
  head->addWidget(ListCount::of_ticked(form.lvwOpenPos, screen), 1);

  auto* column = new QVBoxLayout{this};
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addLayout(head);
  column->addWidget(list_, 1);
  column->addWidget(new NotConnectedLine{accounts, screen});
  column->addLayout(make_foot(make_summaries()));
  setFocusProxy(list_);
  // In the row's menu alone: on a key it would not be seen which row it is for.
  auto* close_this = new QAction{QStringLiteral("Close this position..."), list_};
  close_this->setObjectName(QStringLiteral("close_this"));
  connect(close_this, &QAction::triggered, this, [this] {
    screen_.settle();
    if (const Row* row = form_.lvwOpenPos.current()) form_.close_one(*row);
    screen_.acted();
  });
  list_->addAction(close_this);
}

QWidget* FrmTradeWindow::make_summaries() {
  auto* line = new ElidedLabel;
  line->setObjectName(QStringLiteral("lbmSummaries"));
  QFont font{QString::fromLatin1(frmTrade::summaries_font.data())};
  font.setStyleHint(QFont::Monospace);
  font.setPixelSize(theme::font().pixelSize());
  line->setFont(font);
  line->set_money(true);
  Binder{screen_, *this}.show(
      [line, &label = form_.lbmSummaries] { line->set_text(QString::fromStdString(label.text())); });
  return line;
}

void FrmTradeWindow::close_selected() {
  form_.lbbClose.click();
  screen_.acted();
}

}  // namespace tutti
