#include "gui/list/cell_editor.h"

#include <QKeyEvent>
#include <utility>

#include "gui/kit/screen.h"
#include "gui/kit/text_change.h"
#include "gui/list/row_list_view.h"

namespace tutti {

CellEditor::CellEditor(RowListView& view, Screen& screen, Form form)
    : QLineEdit(view.viewport()), view_(view), screen_(screen), form_(std::move(form)) {
  hide();
  setStyleSheet(QStringLiteral("QLineEdit { padding: 0 6px; min-height: 0; border-radius: 0; }"));
  connect(this, &QLineEdit::textEdited, this, [this] {
    take_edit(*this, form_.box);
    screen_.acted();
  });
  screen_.on_refresh(*this, [this] { follow(); });
}

void CellEditor::follow() {
  if (!form_.box.visible()) {
    if (!isHidden()) leave({});
    return;
  }
  const Row* row = form_.row();
  const int place = row == nullptr ? -1 : view_.rows().place_of(row);
  if (place < 0) return leave(form_.cancel);
  const QModelIndex index = view_.rows().index(place, static_cast<int>(form_.column));
  if (isHidden()) {
    view_.scrollTo(index);
    setText(QString::fromStdString(form_.box.text()));
    setGeometry(view_.visualRect(index));
    show();
    setFocus(Qt::OtherFocusReason);
    selectAll();
  }
  if (geometry() != view_.visualRect(index)) setGeometry(view_.visualRect(index));
}

// Losing the focus while it leaves must not take what is being given up.
void CellEditor::leave(const std::function<void()>& how) {
  const bool had_focus = hasFocus();
  if (how) how();
  hide();
  if (had_focus) view_.setFocus(Qt::OtherFocusReason);
}

void CellEditor::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      leave(form_.commit);
      return screen_.acted();
    case Qt::Key_Escape:
      leave(form_.cancel);
      return screen_.acted();
    default:
      QLineEdit::keyPressEvent(event);
  }
}

void CellEditor::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  // A menu of the editor's own, or another program in front, does not end the editing.
  const bool stays =
      event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason;
  if (stays || isHidden() || !form_.box.visible()) return;
  leave(form_.commit);
  screen_.acted();
}

}  // namespace tutti
