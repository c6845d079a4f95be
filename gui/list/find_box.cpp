#include "gui/list/find_box.h"

#include <QKeyEvent>

#include "core/texts.h"
#include "gui/kit/screen.h"
#include "gui/list/row_list_view.h"

namespace tutti {

FindBox::FindBox(Screen& screen, RowListView& list) : screen_(screen), list_(list) {
  setPlaceholderText(QStringLiteral("Find account"));
  setClearButtonEnabled(true);
  connect(this, &QLineEdit::textEdited, this, [this] { go_from(0); });
}

void FindBox::go_from(int place) {
  const std::string letters = folded(text().toStdString());
  if (letters.empty()) return;
  const RowListModel& rows = list_.rows();
  const int count = rows.rowCount();
  for (int step = 0; step < count; ++step) {
    const int here = (place + step) % count;
    const Row* row = rows.row_at(here);
    if (row == nullptr || !found(*row, letters)) continue;
    at_ = here;
    list_.go_to(*row);
    return screen_.acted();
  }
}

void FindBox::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    clear();
    return list_.setFocus(Qt::OtherFocusReason);
  }
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return go_from(at_ + 1);
  QLineEdit::keyPressEvent(event);
}

}  // namespace tutti
