#include "gui/windows/answer_filter.h"

#include <QHBoxLayout>
#include <QToolButton>

#include "core/texts.h"
#include "gui/kit/screen.h"
#include "gui/kit/theme.h"
#include "gui/list/row_list_view.h"

namespace tutti {

namespace {

struct Look {
  const char* name;
  const char* tip;
};
constexpr Look looks[] = {
    {"All", "All connected accounts"},
    {"Ticked", "Accounts that take part"},
    {"Refused", "Accounts whose order was refused, and those that were left out"},
    {"Waiting",
     "Accounts whose order has no result yet, or lost its connection before it came, in this round or "
     "an earlier one"},
};

// Narrow enough for four with three digits each in the narrowest pane.
constexpr int font_pixels = 11;

}  // namespace

AnswerFilter::AnswerFilter(const OrderForm& form, RowListView& view, Screen& screen)
    : form_(form), view_(view) {
  setObjectName(QStringLiteral("answer_filter"));
  setStyleSheet(
      QStringLiteral("QToolButton { padding: 2px 5px; color: #93a0ae; }"
                     "QToolButton:checked { color: #eef1f5; }"));
  auto* row = new QHBoxLayout{this};
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(0);
  row->addStretch(1);
  QFont font = theme::font();
  font.setPixelSize(font_pixels);
  for (std::size_t i = 0; i < choices; ++i) {
    auto* button = new QToolButton;
    button->setObjectName(QStringLiteral("filter_") + QString::fromLatin1(looks[i].name).toLower());
    button->setCheckable(true);
    button->setAutoExclusive(true);
    button->setToolTip(QString::fromLatin1(looks[i].tip));
    connect(button, &QToolButton::clicked, this, [this, i, &screen] {
      choice_ = static_cast<Choice>(i);
      seen_stamp_ = 0;  // count anew
      apply();
      screen.acted();
    });
    button->setFont(font);
    row->addWidget(button);
    buttons_[i] = button;
  }
  buttons_[all]->setChecked(true);
  follow();
  screen.on_refresh(*this, [this] { follow(); });
}

QColor AnswerFilter::colour(OrderAnswer answer) {
  switch (answer) {
    case OrderAnswer::accepted:
      return theme::colour(Ink::green);
    case OrderAnswer::refused:
      return theme::colour(Ink::red);
    case OrderAnswer::left_out:
    case OrderAnswer::unknown:
      return QColor{theme::amber};
    case OrderAnswer::waiting:
      return QColor{theme::muted};
    default:
      return {};
  }
}

bool AnswerFilter::shows(Choice choice, const Row& row) const {
  if (choice == all) return true;
  if (choice == ticked) return row.checked();
  const OrderAnswer answer = form_.answer_of(row);
  if (choice == refused) return answer == OrderAnswer::refused || answer == OrderAnswer::left_out;
  return answer == OrderAnswer::waiting || answer == OrderAnswer::unknown || form_.unknown_before(row) > 0;
}

bool AnswerFilter::found(const Row& row) const {
  return wanted_.empty() || contains_letters(row.text(AccountRows::account), wanted_) ||
         contains_letters(form_.user_names(row), wanted_);
}

void AnswerFilter::find(const std::string& letters) {
  wanted_ = folded(letters);
  seen_stamp_ = 0;  // count anew
  apply();
}

void AnswerFilter::apply() {
  if (choice_ == all && wanted_.empty()) return view_.rows().set_filter({});
  view_.rows().set_filter([this](const Row& row) { return shows(choice_, row) && found(row); });
}

void AnswerFilter::follow() {
  const std::string answers = form_.answers().text();
  const std::uint64_t stamp = form_.accounts.stamp();
  if (stamp == seen_stamp_ && answers == seen_answers_ && !buttons_[all]->text().isEmpty()) return;
  // An answer may come without a change of its row, which the list would not notice.
  if (answers != seen_answers_) {
    apply();
    view_.viewport()->update();
  }
  seen_stamp_ = stamp;
  seen_answers_ = answers;
  std::array<int, choices> counts{};
  ticked_and_hidden_ = 0;
  for (const Row& row : form_.accounts) {
    if (row.checked() && !(shows(choice_, row) && found(row))) ++ticked_and_hidden_;
    for (std::size_t i = 0; i < choices; ++i)
      counts[i] += shows(static_cast<Choice>(i), row) ? 1 : 0;
  }
  for (std::size_t i = 0; i < choices; ++i)
    buttons_[i]->setText(QStringLiteral("%1 %2").arg(QString::fromLatin1(looks[i].name)).arg(counts[i]));
}

}  // namespace tutti
