#include "gui/round_panel.h"

#include <QLabel>
#include <QProgressBar>
#include <QStyle>
#include <QVBoxLayout>

#include "core/numbers.h"
#include "gui/screen.h"

namespace tutti {

namespace {

// Finer than any lot step; sums carry noise beyond it.
constexpr int lot_decimals = 8;

std::string lots(double value) {
  return number_text(round_half_even(value, lot_decimals));
}

QLabel* add_line(QVBoxLayout& column, const char* name) {
  auto* line = new QLabel;
  line->setObjectName(QString::fromLatin1(name));
  line->setTextFormat(Qt::PlainText);
  line->setWordWrap(true);
  column.addWidget(line);
  return line;
}

void show_line(QLabel& line, const std::string& text, bool warn) {
  const QString wanted = QString::fromStdString(text);
  if (line.text() != wanted) line.setText(wanted);
  if (line.property("warn").toBool() == warn) return;
  line.setProperty("warn", warn);
  line.style()->unpolish(&line);
  line.style()->polish(&line);
}

}  // namespace

RoundPanel::RoundPanel(const OrderForm& form, std::function<int()> hidden, Screen& screen)
    : form_(form), hidden_(std::move(hidden)) {
  auto* column = new QVBoxLayout{this};
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(4);
  shares_ = add_line(*column, "shares_line");
  answers_ = add_line(*column, "answers_line");
  progress_ = new QProgressBar;
  progress_->setObjectName(QStringLiteral("answers_progress"));
  progress_->setTextVisible(false);
  progress_->setProperty("thin", true);
  // The list above keeps its height when results come.
  QSizePolicy keeps = progress_->sizePolicy();
  keeps.setRetainSizeWhenHidden(true);
  progress_->setSizePolicy(keeps);
  column->addWidget(progress_);
  follow();
  screen.on_refresh(*this, [this] { follow(); });
}

void RoundPanel::follow() {
  show_shares();
  show_answers();
}

void RoundPanel::show_shares() {
  const Shares shares = form_.shares();
  if (shares.counted == 0) return show_line(*shares_, "No shares yet", false);
  std::string text = "Shares " + lots(shares.sum);
  std::string faults;
  const auto add_fault = [&faults](int count, const std::string& what) {
    if (count > 0) faults += (faults.empty() ? "; " : ", ") + std::to_string(count) + what;
  };
  add_fault(shares.zero_or_below, " zero");
  add_fault(shares.below_minimum, " below the smallest lot " + lots(form_.minimum_lot()));
  double difference = 0.0;
  if (!form_.total.text().empty()) {
    const double typed = read_number(form_.total.text());
    difference = round_half_even(shares.sum - typed, lot_decimals);
    text += " of " + lots(typed);
  }
  text += " lots";
  if (difference != 0.0)
    text += std::string{", difference "} + (difference > 0.0 ? "+" : "") + lots(difference);
  show_line(*shares_, text + faults, difference != 0.0 || !faults.empty());
}

void RoundPanel::show_answers() {
  const OrderAnswers answers = form_.answers();
  const std::string text = answers.text();
  const int hidden = hidden_();
  show_line(*answers_,
            (text.empty() ? "Nothing sent in this round" : text) +
                (hidden > 0 ? "; " + std::to_string(hidden) + " ticked accounts are not shown" : ""),
            hidden > 0);
  progress_->setMaximum(answers.accepted + answers.refused + answers.unknown + answers.waiting);
  progress_->setValue(answers.accepted + answers.refused + answers.unknown);
  progress_->setVisible(answers.waiting > 0);
}

}  // namespace tutti
