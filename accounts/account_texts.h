#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "books/account_book.h"

// What the accounts list says of accounts, one by one and together.
namespace tutti {

std::string_view state_text(AccountState state);

// "50 accounts are not connected; what they hold is not in this view"; empty when all are. An account that
// stands under several user names is connected when one of them is.
std::string not_connected_text(const AccountBook& accounts);

// The user names that an account stands under, with ", " between them.
std::string user_names(const AccountBook& accounts, std::int32_t account);

}  // namespace tutti
