#pragma once

#include <QLineEdit>
#include <cstddef>
#include <functional>

#include "core/row.h"
#include "core/text_box.h"

namespace tutti {

class RowListView;
class Screen;

// In-place editor of one cell of a list, bound to the form's text box, whose visibility opens and closes it.
// Enter and a click elsewhere take the text, Esc leaves the cell as it was. It stays on its row when rows
// come and go, and is given up when the row goes.
class CellEditor final : public QLineEdit {
 public:
  // Where the form's editor stands at the moment, and what the form does at the end.
  struct Form {
    TextBox& box;
    std::function<Row*()> row;  // nullptr when it has gone
    std::size_t column = 0;
    std::function<void()> commit;
    std::function<void()> cancel;
  };

  CellEditor(RowListView& view, Screen& screen, Form form);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  void follow();
  void leave(const std::function<void()>& how);

  RowListView& view_;
  Screen& screen_;
  Form form_;
};

}  // namespace tutti
