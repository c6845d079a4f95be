#include "core/combo_box.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "core/texts.h"

namespace tutti {

int ComboBox::find(std::string_view item) const {
  const auto at = std::find(items_.begin(), items_.end(), item);
  return at == items_.end() ? -1 : static_cast<int>(at - items_.begin());
}

void ComboBox::set_items(std::vector<std::string> items) {
  items_ = std::move(items);
  // Whoever is about to type goes on with it.
  auto searched = std::move(searched_);
  set_index(find(text_));
  searched_ = std::move(searched);
}

void ComboBox::set_index(int index) {
  end_search();
  index_ = index >= 0 && index < static_cast<int>(items_.size()) ? index : -1;
  text_ = index_ < 0 ? std::string{} : items_[static_cast<std::size_t>(index_)];
}

void ComboBox::set_text(std::string_view text) {
  end_search();
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

void ComboBox::search(std::string_view typed) {
  end_search();
  if (enabled_ && typed != text_) searched_ = typed;
}

std::vector<std::string> ComboBox::found_by(std::string_view typed) const {
  const std::string wanted = upper(typed);
  // How well an item fits, 0 best.
  const auto rank = [&wanted](const std::string& item) {
    const std::size_t at = upper(item).find(wanted);
    if (at == std::string::npos) return 3;
    return at > 0 ? 2 : item.size() == wanted.size() ? 0 : 1;
  };
  std::vector<std::string> out;
  for (const int fit : {0, 1, 2})
    std::copy_if(items_.begin(), items_.end(), std::back_inserter(out),
                 [&](const std::string& item) { return rank(item) == fit; });
  return out;
}

}  // namespace tutti
