#include "accounts/account_texts.h"

#include <tsl/robin_set.h>

#include "core/texts.h"

namespace tutti {

std::string_view state_text(AccountState state) {
  switch (state) {
    case AccountState::disconnected:
      return "Disconnected";
    case AccountState::connecting:
      return "Connecting";
    case AccountState::connected:
      return "Connected";
    case AccountState::invalid:
      break;
  }
  return "Invalid account";
}

std::string not_connected_text(const AccountBook& accounts) {
  tsl::robin_set<std::int32_t> missing;
  for (const AccountEntry* each : accounts.listed())
    if (!accounts.connected(each->account)) missing.insert(each->account);
  const std::size_t count = missing.size();
  if (count == 0) return {};
  return std::to_string(count) + (count == 1
                                      ? " account is not connected; what it holds is not in this view"
                                      : " accounts are not connected; what they hold is not in this view");
}

std::string user_names(const AccountBook& accounts, std::int32_t account) {
  std::string out;
  for (const AccountEntry* each : accounts.listed())
    if (each->account == account) out += (out.empty() ? "" : ", ") + upper(each->user);
  return out;
}

}  // namespace tutti
