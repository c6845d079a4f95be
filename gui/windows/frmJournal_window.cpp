#include "gui/windows/frmJournal_window.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QResizeEvent>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>
#include <string_view>

#include "core/texts.h"
#include "gui/kit/screen.h"
#include "gui/kit/theme.h"
#include "gui/list/row_list_view.h"
#include "views/CJournal.h"

namespace tutti {

namespace {

constexpr int wide = 680;  // state and filters stand beside each other from here on
constexpr int narrowest = 270;
constexpr int account_width = 104;

QPushButton* make_button(const QString& text, const char* name) {
  auto* button = new QPushButton{text};
  button->setObjectName(QLatin1String{name});
  button->setAutoDefault(true);
  return button;
}

QLabel* make_label(const char* name) {
  auto* label = new QLabel;
  label->setObjectName(QLatin1String{name});
  label->setTextFormat(Qt::PlainText);
  return label;
}

QString grouped(std::size_t count) {
  return QLocale::c().toString(static_cast<qulonglong>(count));
}

}  // namespace

FrmJournalWindow::FrmJournalWindow(frmJournal& form, CJournal& journal, Screen& screen)
    : form_(form),
      journal_(journal),
      screen_(screen),
      list_(new RowListView{form.lvwJournal, screen, {frmJournal::account}}),
      head_(new QHBoxLayout) {
  list_->setObjectName(QStringLiteral("lvwJournal"));
  list_->columns().keep_readable({"0000-00-00 00:00:00", "000000", ""});
  connect(&list_->rows(), &QAbstractItemModel::rowsInserted, this,
          [this](const QModelIndex&, int first, int last) { keep_reading(first, last); });

  head_->setContentsMargins(8, 6, 8, 6);
  head_->setSpacing(8);
  head_->addWidget(make_state(), 1);
  head_->addWidget(make_filters(), 1);

  auto* column = new QVBoxLayout{this};
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addLayout(head_);
  column->addWidget(list_, 1);
  setFocusProxy(list_);
  screen.on_refresh(*this, [this] { refresh(); });
  refresh();
}

QWidget* FrmJournalWindow::make_state() {
  auto* part = new QWidget;
  auto* row = new QHBoxLayout{part};
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(8);
  state_ = make_label("journal_state");
  state_->setFont(theme::bold_font());
  count_ = make_label("journal_count");
  count_->setProperty("muted", true);
  count_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  live_ = make_button(QStringLiteral("Live journal"), "live_journal");
  connect(live_, &QPushButton::clicked, this, [this] { show_live(); });
  row->addWidget(state_);
  row->addWidget(live_);
  row->addWidget(count_, 1);
  return part;
}

QWidget* FrmJournalWindow::make_filters() {
  auto* part = new QWidget;
  auto* row = new QHBoxLayout{part};
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(8);
  account_ = make_box("filter_account", QStringLiteral("Account"));
  account_->setFixedWidth(account_width);
  static const QRegularExpression digits{QStringLiteral("\\d{0,10}")};
  account_->setValidator(new QRegularExpressionValidator{digits, account_});
  connect(account_, &QLineEdit::returnPressed, this, [this] { show_history_of_box(); });
  history_ = make_button(QStringLiteral("History"), "show_history");
  history_->setToolTip(QStringLiteral("Shows everything ever journaled for the account in the box"));
  connect(history_, &QPushButton::clicked, this, [this] { show_history_of_box(); });
  text_ = make_box("filter_text", QStringLiteral("Find text"));
  row->addWidget(account_);
  row->addWidget(history_);
  row->addWidget(text_, 1);
  return part;
}

QLineEdit* FrmJournalWindow::make_box(const char* name, const QString& hint) {
  auto* box = new QLineEdit;
  box->setObjectName(QLatin1String{name});
  box->setPlaceholderText(hint);
  box->setClearButtonEnabled(true);
  auto* clear = new QAction{box};
  clear->setShortcut(Qt::Key_Escape);
  clear->setShortcutContext(Qt::WidgetShortcut);
  box->addAction(clear);
  connect(clear, &QAction::triggered, box, &QLineEdit::clear);
  connect(box, &QLineEdit::textChanged, this, [this] { filter(); });
  return box;
}

QSize FrmJournalWindow::minimumSizeHint() const {
  return {narrowest, QWidget::minimumSizeHint().height()};
}

void FrmJournalWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  head_->setDirection(event->size().width() < wide ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
}

// Rows of a history name no account: theirs is the one whose history it is.
void FrmJournalWindow::filter() {
  const std::string account = form_.live() ? account_->text().toStdString() : std::string{};
  const std::string text = tutti::folded(text_->text().toStdString());
  if (account.empty() && text.empty()) {
    list_->rows().set_filter({});
  } else {
    const auto let_through = [account, text](const Row& row) {
      return (account.empty() || contains_letters(row.text(frmJournal::account), account)) &&
             (text.empty() || contains_letters(row.text(frmJournal::message), text));
    };
    list_->rows().set_filter(let_through, RowListModel::Asked::once);
  }
  list_->rows().sort_again();
  screen_.acted();
  show_newest();
}

// Of what a filter lets through; without one the row the operator stands on stays in sight.
void FrmJournalWindow::show_newest() {
  const RowListModel& rows = list_->rows();
  if (rows.filtered()) {
    const bool upwards = rows.sort_column() == frmJournal::time && rows.sort_order() == Qt::AscendingOrder;
    upwards ? list_->scrollToBottom() : list_->scrollToTop();
  } else if (const Row* row = form_.lvwJournal.current()) {
    list_->go_to(*row);
  }
}

void FrmJournalWindow::show_history_of_box() {
  bool whole = false;
  const int account = account_->text().toInt(&whole);
  if (whole) show_history(account);
}

void FrmJournalWindow::show_history(std::int32_t account) {
  if (form_.live()) left_at_ = reading();
  // Back among the live rows nothing may stay hidden by the account that was asked for.
  account_->clear();
  journal_.vID(account);
  screen_.acted();
  list_->scrollToTop();
}

void FrmJournalWindow::show_live() {
  if (form_.live()) return;
  journal_.vID(-1);
  screen_.acted();
  go_to(left_at_);
}

// Rows that come in above what is read push it down; the list follows them. At its top it stays there.
void FrmJournalWindow::keep_reading(int first, int last) {
  QScrollBar& bar = *list_->verticalScrollBar();
  if (bar.value() == 0 || first * theme::row_height > bar.value()) return;
  bar.setValue(bar.value() + (last - first + 1) * theme::row_height);
}

FrmJournalWindow::Place FrmJournalWindow::reading() const {
  const int scrolled = list_->verticalScrollBar()->value();
  if (scrolled == 0) return {};
  const int place = scrolled / theme::row_height;
  return {list_->rows().row_at(place), place * theme::row_height - scrolled};
}

void FrmJournalWindow::go_to(const Place& place) {
  const int at = place.row == nullptr ? 0 : list_->rows().place_of(place.row);
  list_->verticalScrollBar()->setValue(at <= 0 ? 0 : at * theme::row_height - place.below_top);
}

// What is found or sorted is all of a history; what is only read comes as the operator scrolls down.
void FrmJournalWindow::bring_older() {
  if (!journal_.has_older()) return;
  RowListModel& rows = list_->rows();
  const QScrollBar& bar = *list_->verticalScrollBar();
  const bool whole = rows.filtered() || rows.sort_column() >= 0;
  if (!whole && bar.value() + 2 * bar.pageStep() < bar.maximum()) return;
  journal_.show_older();
  if (whole && !journal_.has_older()) rows.sort_again();
  screen_.stir();
}

void FrmJournalWindow::show_all() {
  if (!journal_.has_older()) return;
  journal_.show_all();
  list_->rows().sort_again();
  screen_.acted();
}

void FrmJournalWindow::refresh() {
  if (journal_.vID() != shown_id_) {
    shown_id_ = journal_.vID();
    return filter();
  }
  const bool live = form_.live();
  const QString state = live ? QStringLiteral("Live") : QStringLiteral("History of %1").arg(journal_.vID());
  if (state_->text() != state) state_->setText(state);
  if (live_->isHidden() != live) live_->setHidden(live);
  account_->setPlaceholderText(live ? QStringLiteral("Account") : QStringLiteral("Other account"));
  bring_older();
  const auto shown = static_cast<std::size_t>(list_->rows().rowCount());
  const QString entries =
      list_->rows().filtered()
          ? QStringLiteral("%1 of %2 entries").arg(grouped(shown), grouped(form_.lvwJournal.size()))
      : journal_.has_older() ? QStringLiteral("%1 newest entries").arg(grouped(shown))
      : shown == 1           ? QStringLiteral("1 entry")
                             : QStringLiteral("%1 entries").arg(grouped(shown));
  history_->setEnabled(!account_->text().isEmpty());
  if (count_->text() != entries) count_->setText(entries);
}

}  // namespace tutti
