#pragma once

#include <QLabel>
#include <cstdint>

#include "core/row_list.h"

namespace tutti {

class Screen;

// How many rows of a list are ticked, such as "3 of 1,240 ticked".
class TickedCount final : public QLabel {
 public:
  TickedCount(const RowList& list, Screen& screen);

 private:
  void refresh();

  const RowList& list_;
  std::uint64_t shown_stamp_ = ~std::uint64_t{0};  // of the list
};

}  // namespace tutti
