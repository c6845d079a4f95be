#include "gui/windows/frmPriceChanged_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "gui/kit/primary_look.h"
#include "gui/kit/screen.h"
#include "gui/kit/theme.h"

namespace tutti {

namespace {

constexpr int narrowest = 340;
constexpr int price_pixels = 26;

QLabel* make_label(const char* name) {
  auto* label = new QLabel;
  label->setObjectName(QString::fromLatin1(name));
  label->setTextFormat(Qt::PlainText);
  return label;
}

}  // namespace

FrmPriceChangedWindow::FrmPriceChangedWindow(frmPriceChanged& form, Screen& screen, QWidget* parent)
    : QDialog(parent), form_(form), screen_(screen), binder_(screen, *this) {
  setAttribute(Qt::WA_ShowWithoutActivating);
  setWindowFlag(Qt::WindowContextHelpButtonHint, false);
  setMinimumWidth(narrowest);
  auto* column = new QVBoxLayout{this};
  column->setContentsMargins(12, 12, 12, 12);
  column->setSpacing(8);

  auto* head = new QHBoxLayout;
  account_ = make_label("requote_account");
  seconds_ = make_label("requote_seconds");
  seconds_->setProperty("muted", true);
  head->addWidget(account_, 1);
  head->addWidget(seconds_);
  column->addLayout(head);
  countdown_ = new QProgressBar;
  countdown_->setObjectName(QStringLiteral("requote_countdown"));
  countdown_->setTextVisible(false);
  countdown_->setProperty("thin", true);
  column->addWidget(countdown_);

  const auto add_frame = [&](const char* name, const Label& caption, const char* label_name, Label& label) {
    auto* frame = new QGroupBox{QString::fromStdString(caption.text())};
    frame->setObjectName(QString::fromLatin1(name));
    auto* inner = new QVBoxLayout{frame};
    auto* widget = make_label(label_name);
    binder_.bind(*widget, label);
    inner->addWidget(widget);
    column->addWidget(frame);
    return widget;
  };
  add_frame("framOriginal", form_.framOriginal, "lblOrder", form_.lblOrder);
  QLabel* price = add_frame("framNew", form_.framNew, "lblNewPrice", form_.lblNewPrice);
  QFont large = theme::bold_font();
  large.setPixelSize(price_pixels);
  price->setFont(large);

  answers_ = new QWidget;
  auto* row = new QHBoxLayout{answers_};
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(8);
  const auto add_button = [&](const char* name, Button& button) {
    auto* widget = new QPushButton;
    widget->setObjectName(QString::fromLatin1(name));
    widget->setAutoDefault(false);
    binder_.bind(*widget, button);
    row->addWidget(widget, 1);
    return widget;
  };
  accept_ = add_button("cmdAccept", form_.cmdAccept);
  reject_ = add_button("cmdReject", form_.cmdReject);
  new PrimaryLook{{accept_, reject_}, *reject_, this};
  column->addWidget(answers_);
  binder_.show([this] { follow(); });
}

void FrmPriceChangedWindow::follow() {
  if (!form_.Displayed()) return hide();
  show_countdown();
  const QString account = QStringLiteral("Account %1").arg(form_.account());
  if (account_->text() != account) account_->setText(account);
  // Off also while the buttons are dead, so that a press begun at the price before is given up.
  const bool alive = !form_.buttons_dead();
  if (!alive) screen_.stir();
  if (answers_->isEnabled() != alive) {
    answers_->setEnabled(alive);
    if (alive) reject_->setFocus(Qt::OtherFocusReason);
  }
  if (!isHidden()) return;
  reject_->setFocus(Qt::OtherFocusReason);
  show();
  if (QApplication::activeModalWidget() == nullptr) raise();
}

void FrmPriceChangedWindow::show_countdown() {
  const QString caption = QString::fromStdString(form_.caption());
  if (windowTitle() == caption) return;
  setWindowTitle(caption);
  seconds_->setText(caption);
  countdown_->setMaximum(caption.section(QLatin1Char{'/'}, 1).toInt());
  countdown_->setValue(caption.section(QLatin1Char{'/'}, 0, 0).toInt());
}

void FrmPriceChangedWindow::press(Button& button) {
  if (!form_.Displayed() || form_.buttons_dead()) return;
  button.click();
  screen_.acted();
}

void FrmPriceChangedWindow::keyPressEvent(QKeyEvent* event) {
  // A key that is held down must not answer the next requote as well.
  if (event->isAutoRepeat()) return;
  const auto with = event->modifiers() & ~Qt::KeypadModifier;
  if (event->key() == Qt::Key_F8 && with == (Qt::ControlModifier | Qt::ShiftModifier))
    return reject_requote();
  if (with != Qt::NoModifier) return;
  switch (event->key()) {
    case Qt::Key_A:
    case Qt::Key_F7:
      return accept_requote();
    case Qt::Key_R:
      return reject_requote();
    case Qt::Key_Escape:
      close();
      return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (accept_->hasFocus()) return accept_requote();
      if (reject_->hasFocus()) return reject_requote();
      return;
    default:
      QDialog::keyPressEvent(event);
  }
}

void FrmPriceChangedWindow::closeEvent(QCloseEvent* event) {
  if (form_.Displayed()) {
    form_.close_by_frame();
    screen_.acted();
  }
  event->setAccepted(!form_.Displayed());
}

}  // namespace tutti
