#pragma once

#include <cstdint>
#include <string>

#include "core/row_list.h"

// What the rows of the accounts list say together.
namespace tutti {

// "50 accounts are not connected; what they hold is not in this view"; empty when all are. An account that
// stands under several user names is connected when one of them is.
std::string not_connected_text(const RowList& clients);

// The user names that an account stands under, with ", " between them.
std::string user_names(const RowList& clients, std::int32_t account);

}  // namespace tutti
