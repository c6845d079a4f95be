#include "gui/kit/desktop_prompt.h"

#include <QApplication>
#include <utility>

#include "core/frmMsgBox.h"
#include "core/frmSure.h"
#include "gui/kit/screen.h"

namespace tutti {

namespace {

QString shown(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// No has the focus: a key pressed without a look at the question changes nothing.
MessageWindow::Content question(const Label& label, const Label& label2, const QString& caption,
                                const Button& yes, const Button& no) {
  return {.text = shown(label.text()),
          .details = shown(label2.text()),
          .caption = caption,
          .icon = frmMsgBox::Icon::question,
          .buttons = {{.caption = shown(yes.caption())}, {.caption = shown(no.caption())}},
          .focus = 1};
}

MessageWindow::Content message(std::string_view text, std::string_view details, std::string_view caption,
                               std::string_view button, frmMsgBox::Icon icon) {
  return {.text = shown(text),
          .details = shown(details),
          .caption = shown(caption),
          .icon = icon,
          .buttons = {{.caption = shown(button)}}};
}

}  // namespace

bool DesktopPrompt::box_stands() {
  return QApplication::activeModalWidget() != nullptr;
}

void DesktopPrompt::run(frmMsgBox& box) {
  const bool asks = box.cmd2.visible();
  const auto answer =
      ask(asks ? question(box.label, box.label2, shown(box.caption()), box.cmd1, box.cmd2)
               : message(box.label.text(), box.label2.text(), box.caption(), box.cmd1.caption(), box.icon()),
          [&box] { return box.Displayed(); });
  // The form may have ended by itself meanwhile.
  if (!box.Displayed()) return;
  if (answer) {
    (*answer == 0 ? box.cmd1 : box.cmd2).click();
  } else {
    box.escape();
  }
  screen_.acted();
}

void DesktopPrompt::run(frmSure& box) {
  const auto answer = ask(question(box.label, {}, QStringLiteral("Alert"), box.cmd1, box.cmd2),
                          [&box] { return box.Displayed(); });
  if (!box.Displayed()) return;
  (answer == std::size_t{0} ? box.cmd1 : box.cmd2).click();
  screen_.acted();
}

void DesktopPrompt::system_box(std::string_view text, std::string_view caption) {
  ask(message(text, {}, caption, "OK", frmMsgBox::Icon::stop), [] { return true; });
}

std::optional<std::size_t> DesktopPrompt::ask(MessageWindow::Content content,
                                              const std::function<bool()>& displayed) {
  screen_.acted();
  QWidget* modal = QApplication::activeModalWidget();
  MessageWindow window{std::move(content), modal != nullptr ? modal : parent_.data()};
  screen_.on_refresh(window, [&] {
    if (!displayed()) window.done(0);
  });
  const QPointer<QWidget> before = QApplication::activeWindow();
  const auto answer = window.ask();
  // The keyboard goes back to where it was, whatever the machine's window manager does.
  if (before != nullptr) before->activateWindow();
  screen_.acted();
  return answer;
}

}  // namespace tutti
