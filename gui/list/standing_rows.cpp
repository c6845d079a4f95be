#include "gui/list/standing_rows.h"

#include <algorithm>
#include <utility>

#include "core/dead_time.h"
#include "gui/list/row_list_model.h"

namespace tutti {

void StandingRows::look(const QTableView& view, const RowListModel& model) {
  std::vector<Standing> now;
  auto before = standing_.begin();
  for (int place = std::max(view.rowAt(0), 0); place < model.rowCount(); ++place) {
    const int top = view.rowViewportPosition(place);
    const Row* row = model.row_at(place);
    if (top >= view.viewport()->height() || row == nullptr) break;
    while (before != standing_.end() && before->top < top)
      ++before;
    const bool stood = before != standing_.end() && before->top == top && before->key == row->key();
    now.push_back({row->key(), top, stood ? before->since : clock_.elapsed()});
  }
  standing_ = std::move(now);
}

bool StandingRows::just_came(int top) const {
  const auto at =
      std::find_if(standing_.begin(), standing_.end(), [&](const Standing& s) { return s.top == top; });
  return at != standing_.end() && in_dead_time(clock_, at->since);
}

}  // namespace tutti
