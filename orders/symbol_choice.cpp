#include "orders/symbol_choice.h"

#include <string>

namespace tutti {

bool symbol_taken(Notices& notices, const ComboBox& symbols) {
  if (!symbols.searched()) return true;
  const std::string& typed = *symbols.searched();
  const std::string& chosen = symbols.text();
  std::string text = "\"" + typed + "\" was typed as symbol and not taken. Enter takes one";
  if (symbols.found_by(typed).empty())
    text = "No symbol has \"" + typed + "\" in its name. Type or pick another one";
  if (typed.empty()) text = "The symbol's box is empty. Type or pick a symbol";
  notices.message_box(text + (chosen.empty() ? "" : ", Esc goes back to " + chosen));
  return false;
}

void hand_over(Notices& notices, ComboBox& symbols, std::string_view name) {
  symbols.end_search();
  if (name == symbols.text()) return;
  if (symbols.find(name) < 0) {
    return notices.message_box(std::string{name} + " is not visible for any of the connected accounts");
  }
  symbols.choose(name);
}

}  // namespace tutti
