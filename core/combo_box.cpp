#include "core/combo_box.h"

#include <algorithm>
#include <utility>

namespace tutti {

int ComboBox::find(std::string_view item) const {
  const auto at = std::find(items_.begin(), items_.end(), item);
  return at == items_.end() ? -1 : static_cast<int>(at - items_.begin());
}

void ComboBox::set_items(std::vector<std::string> items) {
  items_ = std::move(items);
  set_index(find(text_));
}

void ComboBox::set_index(int index) {
  index_ = index >= 0 && index < static_cast<int>(items_.size()) ? index : -1;
  text_ = index_ < 0 ? std::string{} : items_[static_cast<std::size_t>(index_)];
}

void ComboBox::set_text(std::string_view text) {
  text_ = text;
  index_ = find(text);
}

void ComboBox::choose(int index) {
  if (!enabled_) return;
  set_index(index);
  if (on_choose) on_choose();
}

void ComboBox::type(std::string_view text) {
  if (enabled_) set_text(text);
}

}  // namespace tutti
