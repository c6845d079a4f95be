#pragma once

#include <QLineEdit>
#include <functional>
#include <string>

namespace tutti {

class Row;
class RowListView;
class Screen;

// A box that goes to what is typed into it and hides nothing, for lists in which rows out of sight must not
// take part in what is done. Enter goes to the next one, Esc back into the list.
class FindBox final : public QLineEdit {
 public:
  FindBox(Screen& screen, RowListView& list);

  // Whether a row is meant by letters, which are folded. To be set before anything is typed.
  std::function<bool(const Row& row, const std::string& letters)> found;

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  // To the first row that is meant from a place on, and round.
  void go_from(int place);

  Screen& screen_;
  RowListView& list_;
  int at_ = 0;
};

}  // namespace tutti
