#include "gui/windows/frmaccount_window.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFocusEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <functional>
#include <utility>

#include "gui/kit/binder.h"
#include "gui/kit/screen.h"
#include "sessions/frmaccount.h"

namespace tutti {

namespace {

constexpr int box_width = 240;

QPushButton* make_button(const char* name, Binder& binder, Button& button) {
  auto* widget = new QPushButton;
  widget->setObjectName(QLatin1String{name});
  widget->setMinimumWidth(88);
  binder.bind(*widget, button);
  return widget;
}

QCheckBox* make_check(const char* name, const QString& text, Binder& binder, CheckBox& box) {
  auto* widget = new QCheckBox{text};
  widget->setObjectName(QLatin1String{name});
  binder.bind(*widget, box);
  return widget;
}

// Tells the form of the focus, which selects the box's whole text.
class FocusFilter final : public QObject {
 public:
  FocusFilter(QLineEdit& widget, std::function<void()> got_focus)
      : QObject(&widget), widget_(widget), got_focus_(std::move(got_focus)) {}
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::FocusIn) take_focus(static_cast<QFocusEvent*>(event)->reason());
    // The click that brought the focus also set the caret, unless it was drawn over a piece of the text.
    if (event->type() == QEvent::MouseButtonRelease && std::exchange(clicked_, false) &&
        !widget_.hasSelectedText())
      widget_.selectAll();
    return false;
  }

 private:
  void take_focus(Qt::FocusReason reason) {
    // Coming back from another window goes on where the operator was.
    if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason) return;
    got_focus_();
    clicked_ = reason == Qt::MouseFocusReason;
    widget_.selectAll();
  }

  QLineEdit& widget_;
  std::function<void()> got_focus_;
  bool clicked_ = false;
};

}  // namespace

FrmaccountWindow::FrmaccountWindow(frmaccount& form, Screen& screen, QWidget* parent)
    : QDialog(parent), form_(form), screen_(screen) {
  Binder binder{screen, *this};
  auto* fields = new QFormLayout;
  fields->setHorizontalSpacing(12);
  fields->setVerticalSpacing(8);
  fields->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  account_ = add_box(*fields, binder, "txtaccount", QStringLiteral("&Account"), form.txtaccount);
  add_box(*fields, binder, "txtusername", QStringLiteral("&User name"), form.txtusername);
  password_ = add_box(*fields, binder, "txtpassword", QStringLiteral("&Password"), form.txtpassword);
  password_->setEchoMode(QLineEdit::Password);

  auto* server = new QComboBox;
  server->setObjectName(QStringLiteral("CBServer"));
  server->setEditable(true);
  server->setMinimumWidth(box_width);
  binder.bind(*server, form.CBServer);
  fields->addRow(QStringLiteral("&Server"), server);
  fields->addRow(QString{}, make_check("chkSave", QStringLiteral("Sa&ve account"), binder, form.chkSave));
  fields->addRow(QString{}, make_check("chkAutoLogin", QStringLiteral("&Log in automatically"), binder,
                                       form.chkAutoLogin));

  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(8);
  buttons->addStretch();
  QPushButton* accept = make_button("cmdLoginAA", binder, form.cmdLoginAA);
  accept->setDefault(true);
  buttons->addWidget(accept);
  buttons->addWidget(make_button("cmdcancel", binder, form.cmdcancel));

  auto* all = new QVBoxLayout{this};
  all->setContentsMargins(16, 16, 16, 12);
  all->setSpacing(16);
  all->addLayout(fields);
  all->addLayout(buttons);
  all->setSizeConstraint(QLayout::SetFixedSize);
  setWindowModality(Qt::WindowModal);
  binder.show([this] { follow(); });
}

QLineEdit* FrmaccountWindow::add_box(QFormLayout& fields, Binder& binder, const char* name,
                                     const QString& label, TextBox& box) {
  auto* widget = new QLineEdit;
  widget->setObjectName(QLatin1String{name});
  widget->setMinimumWidth(box_width);
  binder.bind(*widget, box);
  fields.addRow(label, widget);
  widget->installEventFilter(new FocusFilter{*widget, [this, &box] { form_.focus(box); }});
  return widget;
}

void FrmaccountWindow::follow() {
  if (!form_.Displayed()) {
    if (isHidden()) return;
    hide();
    password_->clear();
    return;
  }
  if (!isHidden()) return;
  setWindowTitle(form_.editing() ? QStringLiteral("Edit account") : QStringLiteral("Add account"));
  account_->setFocus(Qt::OtherFocusReason);
  open();
}

void FrmaccountWindow::reject() {
  form_.cmdcancel.click();
  screen_.acted();
}

}  // namespace tutti
