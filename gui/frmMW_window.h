#pragma once

#include <QWidget>

#include "views/frmMW.h"

namespace tutti {

class RowListView;
class Screen;

// Market watch: the symbols with their live prices. A double-click or Enter takes the symbol over into the
// market order window.
class FrmMWWindow final : public QWidget {
 public:
  FrmMWWindow(frmMW& form, Screen& screen);

  RowListView& list() { return *symbols_; }

 private:
  RowListView* symbols_;
};

}  // namespace tutti
