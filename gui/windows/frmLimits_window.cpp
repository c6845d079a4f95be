#include "gui/windows/frmLimits_window.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "gui/kit/binder.h"
#include "gui/kit/screen.h"
#include "gui/kit/window_parts.h"

namespace tutti {

namespace {

constexpr int value_width = 110;

QString text_of(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

FrmLimitsWindow::FrmLimitsWindow(frmLimits& form, Screen& screen, QWidget* parent)
    : QDialog(parent), form_(form), screen_(screen) {
  setObjectName(QStringLiteral("frmLimits"));
  setWindowTitle(QStringLiteral("Limits"));
  Binder binder{screen, *this};
  auto* grid = new QGridLayout;
  grid->setHorizontalSpacing(12);
  grid->setVerticalSpacing(6);
  for (std::size_t place = 0; place < set_limits; ++place) {
    const LimitField& field = limit_fields()[place];
    const int at = static_cast<int>(place);
    auto* on = new QCheckBox{text_of(field.name)};
    on->setObjectName(QStringLiteral("on_") + text_of(field.key));
    on->setToolTip(text_of(field.meaning));
    binder.bind(*on, form_.lines[place].chkOn);
    grid->addWidget(on, at, 0);
    if (field.on_or_off()) continue;
    auto* value = new QLineEdit;
    value->setObjectName(QStringLiteral("value_") + text_of(field.key));
    value->setAccessibleName(text_of(field.name));
    value->setFixedWidth(value_width);
    value->setAlignment(Qt::AlignRight);
    binder.bind(*value, form_.lines[place].txtValue);
    grid->addWidget(value, at, 1);
    grid->addWidget(new QLabel{text_of(field.unit)}, at, 2);
  }
  auto* note =
      new QLabel{QStringLiteral("What is not ticked is never judged. Closes and cancels are never held.")};
  note->setProperty("muted", true);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  const auto add_button = [&](const char* name, Button& button) {
    auto* widget = named(new QPushButton, name);
    binder.bind(*widget, button);
    buttons->addWidget(widget);
    return widget;
  };
  add_button("cmdSave", form_.cmdSave)->setDefault(true);
  add_button("cmdCancel", form_.cmdCancel)->setAutoDefault(false);
  auto* all = new QVBoxLayout{this};
  all->setContentsMargins(16, 16, 16, 12);
  all->setSpacing(12);
  all->addLayout(grid);
  all->addWidget(note);
  all->addLayout(buttons);
  all->setSizeConstraint(QLayout::SetFixedSize);
  setWindowModality(Qt::WindowModal);
  binder.show([this] { follow(); });
}

void FrmLimitsWindow::follow() {
  if (!form_.Displayed()) return hide();
  if (isHidden()) open();
}

void FrmLimitsWindow::reject() {
  form_.cmdCancel.click();
  screen_.acted();
}

}  // namespace tutti
