#include "gui/windows/answers_line.h"

#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>
#include <utility>

#include "gui/kit/window_parts.h"

namespace tutti {

AnswersLine::AnswersLine(std::string nothing_sent)
    : nothing_sent_(std::move(nothing_sent)),
      line_(make_line("answers_line")),
      progress_(named(new QProgressBar, "answers_progress")) {
  progress_->setTextVisible(false);
  progress_->setProperty("thin", true);
  // What stands above keeps its height when results come.
  QSizePolicy keeps = progress_->sizePolicy();
  keeps.setRetainSizeWhenHidden(true);
  progress_->setSizePolicy(keeps);
  auto* column = new QVBoxLayout{this};
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(4);
  column->addWidget(line_);
  column->addWidget(progress_);
  show_answers({});
}

void AnswersLine::show_answers(const OrderAnswers& answers, const std::string& warning) {
  const std::string text = answers.text();
  show_line(*line_, (text.empty() ? nothing_sent_ : text) + (warning.empty() ? "" : "; " + warning),
            !warning.empty());
  const int answered = answers.accepted + answers.refused + answers.unknown;
  progress_->setMaximum(answered + answers.waiting);
  progress_->setValue(answered);
  progress_->setVisible(answers.waiting > 0);
}

}  // namespace tutti
