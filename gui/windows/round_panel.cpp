#include "gui/windows/round_panel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/numbers.h"
#include "gui/kit/binder.h"
#include "gui/kit/screen.h"
#include "gui/kit/window_parts.h"
#include "gui/windows/answers_line.h"

namespace tutti {

namespace {

std::string lots(double value) {
  return number_text(lots_of_sum(value));
}

}  // namespace

RoundPanel::RoundPanel(OrderForm& form, std::function<int()> hidden, Screen& screen)
    : form_(form), hidden_(std::move(hidden)) {
  auto* column = new QVBoxLayout{this};
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(4);
  shares_ = make_line("shares_line");
  limits_ = named(new QLabel, "lot_limits");
  limits_->setProperty("muted", true);
  limits_->setToolTip(QStringLiteral("Smallest and largest lot of one order"));
  answers_ = new AnswersLine{"Nothing sent in this round"};
  auto* line = new QHBoxLayout;
  line->setSpacing(12);
  line->addWidget(shares_, 1);
  line->addWidget(limits_, 0, Qt::AlignTop);
  auto* retry = named(new QPushButton, "retry_round");
  retry->setToolTip(QStringLiteral("What was refused or not sent, with the shares it had, after a question"));
  Binder{screen, *this}.bind(*retry, form.retry);
  auto* answers = new QHBoxLayout;
  answers->setSpacing(12);
  answers->addWidget(answers_, 1);
  answers->addWidget(retry, 0, Qt::AlignTop);
  column->addLayout(line);
  column->addLayout(answers);
  follow();
  screen.on_refresh(*this, [this] { follow(); });
}

void RoundPanel::follow() {
  show_shares();
  show_limits();
  show_answers();
}

void RoundPanel::show_limits() {
  const double minimum = form_.minimum_lot();
  const double maximum = form_.maximum_lot();
  if (minimum <= 0.0 || maximum <= 0.0) return show_line(*limits_, "", false);
  show_line(*limits_, lots(minimum) + " to " + lots(maximum) + " lots", false);
}

void RoundPanel::show_shares() {
  const Shares shares = form_.shares();
  std::string faults = form_.left_out();
  if (!faults.empty()) faults.insert(0, "; ");
  if (shares.counted == 0) return show_line(*shares_, "No shares yet" + faults, !faults.empty());
  std::string text = "Shares " + lots(shares.sum);
  const auto add_fault = [&faults](int count, const std::string& what) {
    if (count > 0) faults += (faults.empty() ? "; " : ", ") + std::to_string(count) + what;
  };
  add_fault(shares.zero, " zero");
  add_fault(shares.negative, " negative");
  add_fault(shares.without, " without a share");
  add_fault(shares.below_minimum, " below the smallest lot " + lots(form_.minimum_lot()));
  add_fault(shares.above_maximum, " above the largest lot " + lots(form_.maximum_lot()));
  double difference = 0.0;
  if (!form_.total.text().empty()) {
    const double typed = read_number(form_.total.text());
    difference = lots_of_sum(shares.sum - typed);
    text += " of " + lots(typed);
  }
  text += " lots";
  if (difference != 0.0)
    text += std::string{", difference "} + (difference > 0.0 ? "+" : "") + lots(difference);
  show_line(*shares_, text + faults, difference != 0.0 || !faults.empty());
}

void RoundPanel::show_answers() {
  const int hidden = hidden_();
  answers_->show_answers(form_.answers(),
                         hidden > 0 ? std::to_string(hidden) + " ticked accounts are not shown" : "");
}

}  // namespace tutti
