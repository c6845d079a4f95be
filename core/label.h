#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "core/colours.h"

namespace tutti {

// State of a label. Leading blanks are part of the text.
class Label {
 public:
  Label() = default;
  explicit Label(std::string_view text) : text_(text) {}

  const std::string& text() const { return text_; }
  bool visible() const { return visible_; }
  void set_text(std::string_view text) { text_ = text; }
  void set_visible(bool visible) { visible_ = visible; }

  void click() {
    if (on_click) on_click();
  }
  std::function<void()> on_click;

 private:
  std::string text_;
  bool visible_ = true;
};

}  // namespace tutti
