#include "gui/windows/frmStop_window.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "gui/kit/screen.h"
#include "gui/kit/window_parts.h"
#include "gui/list/empty_hint.h"
#include "gui/list/row_list_view.h"

namespace tutti {

FrmStopWindow::FrmStopWindow(frmStop& form, Screen& screen, QWidget* parent)
    : QDialog(parent), form_(form), screen_(screen), binder_(screen, *this) {
  setObjectName(QStringLiteral("frmStop"));
  setWindowTitle(QStringLiteral("STOP ALL"));
  setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  resize(560, 420);
  auto* column = new QVBoxLayout{this};
  column->setContentsMargins(12, 12, 12, 12);
  column->setSpacing(8);
  const auto add_label = [&](const char* name, Label& label) {
    auto* widget = named(new QLabel, name);
    widget->setWordWrap(true);
    binder_.bind(*widget, label);
    column->addWidget(widget);
  };
  const auto add_check = [&](const char* name, const char* text, CheckBox& box) {
    auto* widget = named(new QCheckBox{QString::fromLatin1(text)}, name);
    binder_.bind(*widget, box);
    column->addWidget(widget);
  };
  add_label("lblState", form_.lblState);
  add_label("lblFigures", form_.lblFigures);
  add_check("chkOrders", "Cancel all entry &orders", form_.chkOrders);
  add_check("chkPositions", "Close all &positions", form_.chkPositions);
  auto* list = named(new RowListView{form_.lvwOpen, screen, {frmStop::account}}, "lvwOpen");
  add_empty_hint(*list, screen, QStringLiteral("Nothing is open"));
  column->addWidget(list, 1);
  auto* row = new QHBoxLayout;
  const auto add_button = [&](const char* name, Button& button) {
    auto* widget = named(new QPushButton, name);
    widget->setAutoDefault(false);
    binder_.bind(*widget, button);
    row->addWidget(widget);
    return widget;
  };
  add_button("cmdEnd", form_.cmdEnd);
  row->addStretch();
  add_button("cmdCarryOut", form_.cmdCarryOut);
  hide_ = add_button("cmdHide", form_.cmdHide);
  column->addLayout(row);
  binder_.show([this] { follow(); });
}

void FrmStopWindow::follow() {
  if (!form_.Displayed()) return hide();
  if (!isHidden()) return;
  hide_->setFocus(Qt::OtherFocusReason);
  show();
  raise();
  activateWindow();
}

void FrmStopWindow::reject() {
  form_.cmdHide.click();
  screen_.acted();
}

}  // namespace tutti
