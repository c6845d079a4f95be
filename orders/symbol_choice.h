#pragma once

#include <string_view>

#include "core/combo_box.h"
#include "core/notices.h"

namespace tutti {

// False, with a message, while a text stands in a symbol box that was typed and not taken: what would be sent
// is not for what the operator reads there.
bool symbol_taken(Notices& notices, const ComboBox& symbols);

// Chooses a symbol that another window hands over, unless it is chosen already. One that can't be chosen is
// told.
void hand_over(Notices& notices, ComboBox& symbols, std::string_view name);

}  // namespace tutti
