#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <variant>

#include "core/frmMsgBox.h"

namespace tutti {

// Question box: asks yes or no and runs a follow-up action on yes.
class CQuestionBox {
 public:
  using Value = std::variant<std::monostate, std::int64_t, double, std::string>;

  CQuestionBox(Prompt& prompt, MessageQueue& queue);

  // Asks value1, which is the question's text, and tells value2, when that is a text, in the second label.
  // Stores all five values for the follow-up.
  void Show(std::int32_t questionType, Value value1, Value value2 = {}, Value value3 = {}, Value value4 = {},
            Value value5 = {});
  void Hide();

  std::int32_t QuestionType() const { return type_; }
  const Value& value(std::size_t number) const { return values_[number - 1]; }
  frmMsgBox& box() { return box_; }

  // Follow-ups for types 1 to 4, set by start-up; one that is not set does nothing.
  static constexpr std::size_t follow_ups = 4;
  std::array<std::function<void()>, follow_ups> on_yes;

 private:
  void answered(int button);

  frmMsgBox box_;
  std::array<Value, 5> values_;
  std::int32_t type_ = 0;
};

}  // namespace tutti
