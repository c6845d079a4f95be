#include "gui/windows/frmHeld_window.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

#include "gui/kit/screen.h"
#include "gui/kit/window_parts.h"
#include "gui/list/row_list_view.h"

namespace tutti {

FrmHeldWindow::FrmHeldWindow(frmHeld& form, Screen& screen, QWidget* parent)
    : QDialog(parent), form_(form), screen_(screen), binder_(screen, *this) {
  setObjectName(QStringLiteral("frmHeld"));
  setWindowTitle(QStringLiteral("Held: over a limit"));
  setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  resize(620, 360);
  auto* column = new QVBoxLayout{this};
  column->setContentsMargins(12, 12, 12, 12);
  column->setSpacing(8);
  auto* text = named(new QLabel, "lblHeld");
  text->setWordWrap(true);
  binder_.bind(*text, form_.lblHeld);
  column->addWidget(text);
  column->addWidget(named(new RowListView{form_.lvwHeld, screen, {frmHeld::account}}, "lvwHeld"), 1);
  auto* fields = new QFormLayout;
  auto* reason = named(new QLineEdit, "txtReason");
  binder_.bind(*reason, form_.txtReason);
  fields->addRow(QStringLiteral("&Reason"), reason);
  column->addLayout(fields);
  auto* row = new QHBoxLayout;
  row->addStretch();
  const auto add_button = [&](const char* name, Button& button) {
    auto* widget = named(new QPushButton, name);
    widget->setAutoDefault(false);
    binder_.bind(*widget, button);
    row->addWidget(widget);
    return widget;
  };
  QPushButton* send = add_button("cmdSend", form_.cmdSend);
  send->setToolTip(QStringLiteral("Ctrl+F10"));
  // Enter, with which orders are sent elsewhere, must not send this one.
  send->setFocusPolicy(Qt::NoFocus);
  drop_ = add_button("cmdDrop", form_.cmdDrop);
  drop_->setDefault(true);
  column->addLayout(row);
  auto* key = new QShortcut{QKeySequence{Qt::CTRL | Qt::Key_F10}, this};
  key->setAutoRepeat(false);
  connect(key, &QShortcut::activated, this, [this] { press(form_.cmdSend); });
  binder_.show([this] { follow(); });
}

void FrmHeldWindow::follow() {
  if (!form_.Displayed()) return hide();
  if (!isHidden()) return;
  drop_->setFocus(Qt::OtherFocusReason);
  show();
  raise();
  activateWindow();
}

void FrmHeldWindow::press(Button& button) {
  if (!form_.Displayed()) return;
  button.click();
  screen_.acted();
}

}  // namespace tutti
