#pragma once

#include <QWidget>

#include "views/unknown_list.h"

namespace tutti {

class RowListView;
class Screen;

// Requests whose outcome nobody knows, and the operator's word on the selected one.
class UnknownListWindow final : public QWidget {
 public:
  UnknownListWindow(UnknownList& form, Screen& screen);

  RowListView& list() { return *list_; }

 private:
  RowListView* list_;
};

}  // namespace tutti
