#include "core/text_box.h"

#include <algorithm>

#include "core/secret.h"

namespace tutti {
namespace {
constexpr std::int16_t backspace = 8;
}

void TextBox::select(std::size_t start, std::size_t length) {
  sel_start_ = std::min(start, text_.size());
  sel_length_ = std::min(length, text_.size() - sel_start_);
}

void TextBox::wipe_text() {
  wipe(text_);
  select(0, 0);
}

void TextBox::type(std::string_view keys) {
  if (!enabled_) return;
  for (const char c : keys) {
    auto key = static_cast<std::int16_t>(static_cast<unsigned char>(c));
    if (on_key) {
      std::string rest = text_;
      key = on_key(key, rest.erase(sel_start_, sel_length_));
    }
    if (key == 0) continue;
    if (key == backspace && sel_length_ == 0) {
      // A character may be several bytes; those behind the first begin with the bits 10.
      const std::size_t end = sel_start_;
      while (sel_start_ > 0 && (static_cast<unsigned char>(text_[--sel_start_]) & 0xC0) == 0x80) {
      }
      sel_length_ = end - sel_start_;
    }
    text_.erase(sel_start_, sel_length_);
    if (key != backspace) text_.insert(sel_start_++, 1, static_cast<char>(key));
    sel_length_ = 0;
    if (on_edited) on_edited();
  }
}

}  // namespace tutti
