#pragma once

#include <QTableView>
#include <chrono>
#include <vector>

#include "core/clock.h"
#include "core/row.h"

namespace tutti {

class RowListModel;

// Where the rows of a list stand on the screen, and since when, for lists whose rows move while the operator
// clicks on them: what has just come under the pointer takes no click.
class StandingRows {
 public:
  explicit StandingRows(const Clock& clock) : clock_(clock) {}

  // Looks at the visible rows, with every refresh and before just_came. `model` is the view's.
  void look(const QTableView& view, const RowListModel& model);
  // What is brought up again is new to the operator.
  void forget() { standing_.clear(); }
  // Whether the row whose upper edge is there, within the viewport, stands there for less than the dead time.
  bool just_came(int top) const;

 private:
  struct Standing {
    RowKey key;
    int top = 0;  // within the viewport
    std::chrono::milliseconds since{0};
  };

  const Clock& clock_;
  std::vector<Standing> standing_;  // from the top of the viewport on
};

}  // namespace tutti
