#include "core/CQuestionBox.h"

#include <utility>

namespace tutti {

CQuestionBox::CQuestionBox(Prompt& prompt, MessageQueue& queue) : box_(prompt, queue) {
  box_.ButtonPessed = [this](int button) { answered(button); };
}

void CQuestionBox::Show(std::int32_t questionType, Value value1, Value value2, Value value3, Value value4,
                        Value value5) {
  type_ = questionType;
  values_ = {std::move(value1), std::move(value2), std::move(value3), std::move(value4), std::move(value5)};
  const auto text = [this](std::size_t number) {
    const auto* held = std::get_if<std::string>(&value(number));
    return held != nullptr ? *held : std::string{};
  };
  box_.GeneralQuestionMsg(text(1), text(2));
}

void CQuestionBox::Hide() {
  if (box_.Displayed()) box_.escape();
}

void CQuestionBox::answered(int button) {
  if (button != 1 || type_ < 1 || type_ > static_cast<std::int32_t>(follow_ups)) return;
  // A copy: the follow-up may ask another question.
  const auto follow_up = on_yes[static_cast<std::size_t>(type_) - 1];
  if (follow_up) follow_up();
}

}  // namespace tutti
