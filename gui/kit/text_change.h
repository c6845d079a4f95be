#pragma once

#include <string_view>

#include "core/text_box.h"

class QLineEdit;

namespace tutti {

// Does to a text box what turned its text into `wanted`: replaces the one piece that differs, key by key, so
// that the box's filter sees every character wherever it came from. The box may end up with another text.
void edit_to(TextBox& box, std::string_view wanted);
// Takes over what the operator made of the widget's text, and shows what the box made of it.
void take_edit(QLineEdit& widget, TextBox& box);
// Shows the box's text and caret where the text differs.
void show_text(QLineEdit& widget, const TextBox& box);

}  // namespace tutti
