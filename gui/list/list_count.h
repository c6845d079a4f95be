#pragma once

#include <cstdint>
#include <functional>

#include "core/row_list.h"
#include "gui/kit/elided_label.h"

namespace tutti {

class Screen;

// A muted line above a list that counts something in it, such as "3 of 1240 ticked"; empty while the list
// is.
class ListCount final : public ElidedLabel {
 public:
  // `count` is asked again when the list has changed, while it is on screen.
  ListCount(const RowList& list, Screen& screen, std::function<QString()> count);

  // How many rows of a list are ticked.
  static ListCount* of_ticked(const RowList& list, Screen& screen);
  // "3 of 1240"
  static QString part(std::size_t count, std::size_t all);

 private:
  void refresh();

  const RowList& list_;
  std::function<QString()> count_;
  std::uint64_t shown_stamp_ = ~std::uint64_t{0};  // of the list
};

}  // namespace tutti
