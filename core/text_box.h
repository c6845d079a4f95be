#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace tutti {

// State of a text box. set_text is the program's and silent; type and paste are the operator's.
class TextBox {
 public:
  const std::string& text() const { return text_; }
  bool enabled() const { return enabled_; }
  bool visible() const { return visible_; }
  std::size_t SelStart() const { return sel_start_; }
  std::size_t SelLength() const { return sel_length_; }

  void set_text(std::string_view text) {
    text_ = text;
    select(text_.size(), 0);
  }
  // Empties the box and overwrites what stood in it, as of a password.
  void wipe_text();
  void set_enabled(bool enabled) { enabled_ = enabled; }
  void set_visible(bool visible) { visible_ = visible; }
  // Selection in bytes; held to the text.
  void select(std::size_t start, std::size_t length);
  void select_all() { select(0, text_.size()); }

  // Keys one after another, as pressed: each passes on_key, then replaces the selection; Backspace (8) takes
  // the selection or the character before it. Does nothing while the box is off. on_edited runs per key.
  void type(std::string_view keys);

  // Answers the key that goes into the box, 0 to swallow it. `text` is the box's text before the key,
  // without the selection that the key takes the place of.
  std::function<std::int16_t(std::int16_t key, const std::string& text)> on_key;
  std::function<void()> on_edited;

 private:
  std::string text_;
  bool enabled_ = true;
  bool visible_ = true;
  std::size_t sel_start_ = 0;
  std::size_t sel_length_ = 0;
};

}  // namespace tutti
