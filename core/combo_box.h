#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tutti {

// State of a drop-down list, or of one whose text can be typed. index() is -1 while the text equals no item.
class ComboBox {
 public:
  const std::vector<std::string>& items() const { return items_; }
  int index() const { return index_; }
  const std::string& text() const { return text_; }
  bool enabled() const { return enabled_; }

  // Keeps the chosen text where the new items still hold it, else nothing is chosen.
  void set_items(std::vector<std::string> items);
  void add_item(std::string_view item) { items_.emplace_back(item); }
  // -1 or an index outside the items chooses nothing and empties the text.
  void set_index(int index);
  void set_text(std::string_view text);
  void set_enabled(bool enabled) {
    enabled_ = enabled;
    if (!enabled) end_search();
  }

  // The operator picks an item, or types a text.
  void choose(int index);
  void choose(std::string_view item) { choose(find(item)); }
  void type(std::string_view text);
  std::function<void()> on_choose;

  // The operator types to find an item. Nothing is chosen by that: index() and text() stay until an item is
  // taken with choose(). The text that is chosen already ends the search, as whatever chooses does.
  void search(std::string_view typed);
  void end_search() { searched_.reset(); }
  // What is typed and not taken.
  const std::optional<std::string>& searched() const { return searched_; }
  // The items that a text finds, in upper or lower case: the one that equals it, those that begin with it,
  // then those that have it anywhere.
  std::vector<std::string> found_by(std::string_view typed) const;

  // Index of an item, -1 when there is none.
  int find(std::string_view item) const;

 private:
  std::vector<std::string> items_;
  int index_ = -1;
  std::string text_;
  std::optional<std::string> searched_;
  bool enabled_ = true;
};

}  // namespace tutti
