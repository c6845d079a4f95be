#include "gui/kit/message_window.h"

#include <QApplication>
#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QTextDocument>
#include <QTextEdit>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <utility>

#include "gui/kit/primary_look.h"
#include "gui/kit/svg_icon.h"
#include "gui/kit/theme.h"

namespace tutti {

namespace {

constexpr int min_text_width = 320;
constexpr int max_text_width = 560;
constexpr int max_text_height = 420;  // a longer text is scrolled
constexpr int icon_size = 28;

QIcon message_icon(frmMsgBox::Icon icon) {
  switch (icon) {
    case frmMsgBox::Icon::stop:
      return svg_icon(QStringLiteral("warning"), theme::amber);
    case frmMsgBox::Icon::note:
      return svg_icon(QStringLiteral("note"), theme::accent);
    case frmMsgBox::Icon::question:
      return svg_icon(QStringLiteral("question"), theme::accent);
    case frmMsgBox::Icon::none:
      break;
  }
  return {};
}

QTextEdit* make_text(const QString& name) {
  auto* text = new QTextEdit;
  text->setObjectName(name);
  text->setReadOnly(true);
  text->setFocusPolicy(Qt::ClickFocus);
  text->setFrameShape(QFrame::NoFrame);
  text->viewport()->setAutoFillBackground(false);
  text->document()->setDocumentMargin(0);
  return text;
}

// As large as its text, up to where it is scrolled.
void fit(QTextEdit& edit, const QString& content) {
  edit.setPlainText(content);
  QTextDocument& document = *edit.document();
  document.setTextWidth(max_text_width);
  const int width =
      std::clamp(static_cast<int>(std::ceil(document.idealWidth())) + 1, min_text_width, max_text_width);
  document.setTextWidth(width);
  const int height = std::min(static_cast<int>(std::ceil(document.size().height())), max_text_height);
  edit.setVerticalScrollBarPolicy(height == max_text_height ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
  edit.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  edit.setFixedSize(width, height);
}

}  // namespace

MessageWindow::MessageWindow(Content content, QWidget* parent)
    : QDialog(parent),
      content_(std::move(content)),
      text_(make_text(QStringLiteral("label"))),
      details_(make_text(QStringLiteral("label2"))),
      footer_(new QLabel) {
  setWindowTitle(content_.caption);
  QPalette muted = details_->palette();
  muted.setColor(QPalette::Text, QColor{theme::muted});
  details_->setPalette(muted);

  footer_->setObjectName(QStringLiteral("footer"));
  footer_->setTextFormat(Qt::PlainText);
  footer_->setProperty("muted", true);

  auto* buttons = new QHBoxLayout;
  buttons->setSpacing(8);
  buttons->addStretch();
  for (std::size_t i = 0; i < content_.buttons.size(); ++i)
    buttons->addWidget(make_button(i));
  buttons->addStretch();

  auto* top = new QHBoxLayout;
  top->setSpacing(16);
  if (const QIcon icon = message_icon(content_.icon); !icon.isNull()) {
    auto* picture = new QLabel;
    picture->setPixmap(icon.pixmap(QSize{icon_size, icon_size}, devicePixelRatioF()));
    top->addWidget(picture, 0, Qt::AlignTop);
  }
  auto* texts = new QVBoxLayout;
  texts->setSpacing(8);
  texts->addStretch();
  texts->addWidget(text_);
  texts->addWidget(details_);
  texts->addStretch();
  top->addLayout(texts, 1);

  auto* all = new QVBoxLayout{this};
  all->setContentsMargins(16, 16, 16, 12);
  all->setSpacing(16);
  all->addLayout(top, 1);
  all->addWidget(footer_, 0, Qt::AlignHCenter);
  all->addLayout(buttons);
  all->setSizeConstraint(QLayout::SetFixedSize);

  set_text(content_.text, content_.details);
  set_footer(content_.footer);
  primary_ = new PrimaryLook{buttons_, *buttons_[content_.focus], this};
  primary_->button().setFocus();
}

QPushButton* MessageWindow::make_button(std::size_t index) {
  const ButtonContent& made = content_.buttons[index];
  auto* button = new QPushButton{with_letter(made.caption)};
  button->setObjectName(QStringLiteral("cmd%1").arg(index + 1));
  button->setMinimumWidth(88);
  // None but the primary one looks like it.
  button->setAutoDefault(false);
  button->installEventFilter(this);
  connect(button, &QPushButton::clicked, this, [this, index] { press(index); });
  buttons_.push_back(button);
  return button;
}

QString MessageWindow::with_letter(const QString& caption) {
  QString text = caption;
  const auto* at = std::find_if(caption.begin(), caption.end(), [this](QChar letter) {
    return letter.isLetter() && !letters_.contains(letter.toUpper());
  });
  letters_ += at == caption.end() ? QChar{u' '} : at->toUpper();
  if (at == caption.end()) return text.replace(QLatin1Char{'&'}, QStringLiteral("&&"));
  const auto place = at - caption.begin();
  return text.left(place).replace(QLatin1Char{'&'}, QStringLiteral("&&")) + QLatin1Char{'&'} +
         text.mid(place).replace(QLatin1Char{'&'}, QStringLiteral("&&"));
}

void MessageWindow::set_text(const QString& text, const QString& details) {
  content_.text = text;
  content_.details = details;
  fit(*text_, text);
  fit(*details_, details);
  details_->setVisible(!details.isEmpty());
}

void MessageWindow::set_footer(const QString& footer) {
  footer_->setText(footer);
}

std::optional<std::size_t> MessageWindow::ask() {
  centre();
  const int pressed = exec();
  if (pressed <= 0) return std::nullopt;
  return static_cast<std::size_t>(pressed) - 1;
}

void MessageWindow::centre() {
  adjustSize();
  // A box may stand over another one; the window that all of them belong to tells the screen.
  const QWidget* main = this;
  while (main->parentWidget() != nullptr)
    main = main->parentWidget();
  const QScreen* screen = main == this ? QGuiApplication::primaryScreen() : main->screen();
  move(screen->availableGeometry().center() - rect().center());
}

void MessageWindow::press(std::size_t index) {
  // 0 stands for no button.
  if (!content_.buttons[index].pressed) return done(static_cast<int>(index) + 1);
  // A copy: the action may end the window.
  const auto pressed = content_.buttons[index].pressed;
  pressed();
}

void MessageWindow::reject() {
  if (!content_.escape) return done(0);
  press(*content_.escape);
}

bool MessageWindow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonPress) clicked_into_ = true;
  if (event->type() == QEvent::MouseButtonDblClick && !clicked_into_) return true;
  return QDialog::eventFilter(watched, event);
}

void MessageWindow::keyPressEvent(QKeyEvent* event) {
  // A key that is held down must not answer what comes next.
  if (event->isAutoRepeat()) return;
  if (event->matches(QKeySequence::Copy)) {
    const QString below = content_.details.isEmpty() ? QString{} : QLatin1Char{'\n'} + content_.details;
    return QApplication::clipboard()->setText(content_.text + below);
  }
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return primary_->button().click();
  const bool bare = !(event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier));
  if (bare && event->text().size() == 1 && event->text().front().isLetter()) {
    const auto index = letters_.indexOf(event->text().front().toUpper());
    if (index >= 0 && buttons_[static_cast<std::size_t>(index)]->isVisible()) {
      buttons_[static_cast<std::size_t>(index)]->click();
    }
    return;
  }
  QDialog::keyPressEvent(event);
}

}  // namespace tutti
