#pragma once

#include <QWidget>
#include <cstdint>

class QBoxLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace tutti {

class CJournal;
class Row;
class RowListView;
class Screen;
class frmJournal;

// Journal window: the live rows, newest first, or the history of one account, and two filters above them.
//
// Rows that arrive while the operator has scrolled down leave what he reads where it is.
class FrmJournalWindow final : public QWidget {
 public:
  FrmJournalWindow(frmJournal& form, CJournal& journal, Screen& screen);

  RowListView& list() { return *list_; }
  void show_history(std::int32_t account);
  // Back to the live rows, to the place where they were left.
  void show_live();

  // All of a history, however much of it was looked at.
  void show_all();

  // As narrow as with the filters below the state, however they stand now.
  QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  // A place in the list. The row is only looked for, never read.
  struct Place {
    const Row* row = nullptr;
    int below_top = 0;  // how far the row's upper edge stands below the list's, in pixels
  };

  QWidget* make_state();
  QWidget* make_filters();
  QLineEdit* make_box(const char* name, const QString& hint);
  void filter();
  void show_newest();
  void show_history_of_box();
  void keep_reading(int first, int last);
  Place reading() const;
  void go_to(const Place& place);
  void bring_older();
  void refresh();

  frmJournal& form_;
  CJournal& journal_;
  Screen& screen_;
  RowListView* list_;
  QBoxLayout* head_;  // state and filters, beside or above each other
  QLabel* state_ = nullptr;
  QLabel* count_ = nullptr;
  QPushButton* live_ = nullptr;
  QLineEdit* account_ = nullptr;
  QLineEdit* text_ = nullptr;
  QPushButton* history_ = nullptr;
  std::int32_t shown_id_ = -1;  // vID of the rows that are shown
  Place left_at_;               // of the live rows, while a history is shown
};

}  // namespace tutti
