#pragma once

#include <QWidget>

#include "views/frmMW.h"

namespace tutti {

class RowListView;
class Screen;

// Market watch: the symbols with their live prices. A double-click or Enter hands the symbol over to the
// market order window, the row's menu to either order window.
class FrmMWWindow final : public QWidget {
 public:
  FrmMWWindow(frmMW& form, Screen& screen);

  RowListView& list() { return *symbols_; }

 private:
  void add_action(const char* name, const QString& text, const std::function<void(std::string_view)>& take);

  frmMW& form_;
  Screen& screen_;
  RowListView* symbols_ = nullptr;
};

}  // namespace tutti
