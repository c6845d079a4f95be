#pragma once

#include <QWidget>

#include "views/fill_list.h"

namespace tutti {

class RowListView;
class Screen;

// Fills: the executions of a time that can be chosen, and what the closes among them have brought.
class FillListWindow final : public QWidget {
 public:
  FillListWindow(FillList& form, Screen& screen);

  RowListView& list() { return *list_; }

 private:
  RowListView* list_;
};

}  // namespace tutti
