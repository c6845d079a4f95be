#pragma once

#include <QDialog>
#include <QString>
#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "core/frmMsgBox.h"

class QLabel;
class QPushButton;
class QTextEdit;

namespace tutti {

class PrimaryLook;

// The one look of all messages and questions. Buttons answer to Alt and their underlined letter, and to the
// bare letter; Enter presses the one that looks primary, which is the one that had the focus last. Ctrl+C
// copies the texts.
class MessageWindow final : public QDialog {
 public:
  struct ButtonContent {
    QString caption;
    // Empty: the press closes the window and is what ask() answers.
    std::function<void()> pressed = {};
  };
  struct Content {
    QString text = {};     // plain, blanks and line breaks kept
    QString details = {};  // the same, muted, below the text
    QString caption = {};
    frmMsgBox::Icon icon = frmMsgBox::Icon::none;
    std::vector<ButtonContent> buttons = {};
    // The button that has the focus first, and the one that Esc and the frame's close button press; when
    // that is not set they close the window, and ask() answers nothing.
    std::size_t focus = 0;
    std::optional<std::size_t> escape = {};
    QString footer = {};  // muted, below the text
  };

  explicit MessageWindow(Content content, QWidget* parent = nullptr);

  // Modal, in the middle of the screen. The index of the button pressed; nothing also when the window is
  // closed from elsewhere, by done(0) or by the program's end.
  std::optional<std::size_t> ask();

  void set_text(const QString& text, const QString& details = {});
  void set_footer(const QString& footer);
  QPushButton& button(std::size_t index) { return *buttons_[index]; }
  // In the middle of the screen that the main window is on, of the first one while there is none.
  void centre();

  // Esc, and the frame's close button.
  void reject() override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  // The second click of a double-click that opened the window must not answer it.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QPushButton* make_button(std::size_t index);
  // The caption with its first letter that no other button has underlined.
  QString with_letter(const QString& caption);
  void press(std::size_t index);

  Content content_;
  QTextEdit* text_;
  QTextEdit* details_;
  QLabel* footer_;
  std::vector<QPushButton*> buttons_;
  PrimaryLook* primary_ = nullptr;
  bool clicked_into_ = false;  // a button was pressed with the mouse since the window was made
  QString letters_;            // of the buttons, in upper case; a blank for one without
};

}  // namespace tutti
