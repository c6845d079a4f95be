#pragma once

#include <QWidget>
#include <string>

#include "orders/order_answer.h"

class QLabel;
class QProgressBar;

namespace tutti {

// What became of the requests that were sent last, counted, and a thin bar while some of them wait.
class AnswersLine final : public QWidget {
 public:
  // `nothing_sent`: what it says before anything was sent.
  explicit AnswersLine(std::string nothing_sent);

  // `warning` is said behind the counts, unless it is empty.
  void show_answers(const OrderAnswers& answers, const std::string& warning = {});

 private:
  std::string nothing_sent_;
  QLabel* line_;
  QProgressBar* progress_;
};

}  // namespace tutti
