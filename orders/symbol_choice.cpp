#include "orders/symbol_choice.h"

#include <string>

namespace tutti {

bool symbol_taken(MGeneral& general, const ComboBox& symbols) {
  if (!symbols.searched()) return true;
  const std::string& chosen = symbols.text();
  general.message_box("\"" + *symbols.searched() + "\" was typed as symbol and not taken. Enter takes one" +
                      (chosen.empty() ? "" : ", Esc goes back to " + chosen));
  return false;
}

void hand_over(MGeneral& general, ComboBox& symbols, std::string_view name) {
  symbols.end_search();
  if (name == symbols.text()) return;
  if (symbols.find(name) < 0) {
    return general.message_box(std::string{name} + " is not visible for any of the connected accounts");
  }
  symbols.choose(name);
}

}  // namespace tutti
