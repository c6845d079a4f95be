#include "gui/kit/text_change.h"

#include <QLineEdit>
#include <QSignalBlocker>
#include <algorithm>
#include <cstddef>
#include <string>

namespace tutti {

namespace {

// True for the second and further bytes of a character.
bool continues(char byte) {
  return (static_cast<unsigned char>(byte) & 0xc0U) == 0x80U;
}

}  // namespace

void edit_to(TextBox& box, std::string_view wanted) {
  const std::string text = box.text();
  std::size_t head = 0;
  const std::size_t both = std::min(text.size(), wanted.size());
  while (head < both && text[head] == wanted[head])
    ++head;
  while (head > 0 &&
         ((head < text.size() && continues(text[head])) || (head < wanted.size() && continues(wanted[head]))))
    --head;
  std::size_t tail = 0;
  while (tail < both - head && text[text.size() - 1 - tail] == wanted[wanted.size() - 1 - tail])
    ++tail;
  while (tail > 0 && continues(text[text.size() - tail]))
    --tail;
  const std::size_t removed = text.size() - head - tail;
  const std::string_view added = wanted.substr(head, wanted.size() - head - tail);
  if (removed == 0 && added.empty()) return;
  box.select(head, removed);
  box.type(added.empty() ? std::string_view{"\b"} : added);
}

void take_edit(QLineEdit& widget, TextBox& box) {
  edit_to(box, widget.text().toStdString());
  show_text(widget, box);
}

void show_text(QLineEdit& widget, const TextBox& box) {
  const QString text = QString::fromStdString(box.text());
  if (widget.text() == text) return;
  const QSignalBlocker silent{widget};
  const auto caret = static_cast<qsizetype>(std::min(box.SelStart() + box.SelLength(), box.text().size()));
  widget.setText(text);
  widget.setCursorPosition(static_cast<int>(QString::fromUtf8(box.text().data(), caret).size()));
}

}  // namespace tutti
