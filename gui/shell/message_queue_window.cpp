#include "gui/shell/message_queue_window.h"

#include <QApplication>
#include <QLayout>
#include <QPushButton>

#include "core/dead_time.h"
#include "gui/kit/screen.h"

namespace tutti {

namespace {

// Both buttons are always there, so that Ok keeps its place.
constexpr std::size_t dismiss_all_button = 0;
constexpr std::size_t ok_button = 1;

}  // namespace

MessageQueueWindow::MessageQueueWindow(MessageQueue& queue, Screen& screen, const Clock& clock,
                                       QWidget& parent)
    : queue_(queue),
      screen_(screen),
      clock_(clock),
      window_({.icon = frmMsgBox::Icon::stop,
               .buttons = {{.caption = QStringLiteral("Dismiss all"),
                            .pressed =
                                [this] {
                                  if (!just_appeared()) dismiss_all();
                                }},
                           {.caption = QStringLiteral("Ok"),
                            .pressed =
                                [this] {
                                  if (!just_appeared()) next();
                                }}},
               .focus = ok_button,
               .escape = ok_button},
              &parent) {
  window_.setObjectName(QStringLiteral("messages"));
  window_.setAttribute(Qt::WA_ShowWithoutActivating);
  screen_.on_refresh(window_, [this] { follow(); });
}

void MessageQueueWindow::next() {
  queue_.dismiss();
  // What comes by the operator's own hand can be dismissed at once.
  if (queue_.current() != nullptr) show_current();
  appeared_.reset();
  screen_.acted();
}

void MessageQueueWindow::dismiss_all() {
  queue_.dismiss_all();
  screen_.acted();
}

bool MessageQueueWindow::just_appeared() const {
  return in_dead_time(clock_, appeared_);
}

void MessageQueueWindow::follow() {
  const Message* message = queue_.current();
  if (message == nullptr) return close();
  const bool opens = !window_.isVisible();
  // Under a modal box nobody could answer it; nothing is lost, since the message waits.
  if (opens && QApplication::activeModalWidget() != nullptr) return;
  if (opens || *message != shown_) {
    show_current();
    appeared_ = clock_.elapsed();
  }
  const std::size_t behind = queue_.behind();
  window_.set_footer(behind == 0 ? QStringLiteral(" ") : QStringLiteral("%1 more wait").arg(behind));
  QPushButton& all = window_.button(dismiss_all_button);
  if (all.isEnabled() != (behind > 0)) all.setEnabled(behind > 0);
  if (!opens) return;
  window_.centre();
  window_.show();
}

void MessageQueueWindow::close() {
  const bool active = window_.isActiveWindow();
  window_.hide();
  if (active) window_.parentWidget()->activateWindow();
}

void MessageQueueWindow::show_current() {
  shown_ = *queue_.current();
  QPushButton& ok = window_.button(ok_button);
  const QPoint before = ok.mapToGlobal(QPoint{});
  window_.setWindowTitle(QString::fromStdString(shown_.caption));
  window_.set_text(QString::fromStdString(shown_.text), QString::fromStdString(shown_.details));
  // Ok stays under the pointer whatever the text's size.
  window_.layout()->activate();
  window_.move(window_.pos() + before - ok.mapToGlobal(QPoint{}));
}

}  // namespace tutti
