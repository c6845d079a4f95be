#include "accounts/account_texts.h"

#include <tsl/robin_set.h>

#include "accounts/frmMain.h"

namespace tutti {
namespace {

std::int32_t account_of(const Row& row) {
  return static_cast<std::int32_t>(row.cell(frmMain::account).stored_number());
}

}  // namespace

std::string not_connected_text(const RowList& clients) {
  tsl::robin_set<std::int32_t> connected;
  tsl::robin_set<std::int32_t> others;
  for (const Row& row : clients)
    (row.reads(frmMain::state, "Connected") ? connected : others).insert(account_of(row));
  std::size_t count = 0;
  for (const std::int32_t account : others)
    count += connected.contains(account) ? 0 : 1;
  if (count == 0) return {};
  return std::to_string(count) + (count == 1
                                      ? " account is not connected; what it holds is not in this view"
                                      : " accounts are not connected; what they hold is not in this view");
}

std::string user_names(const RowList& clients, std::int32_t account) {
  std::string out;
  for (const Row& row : clients)
    if (account_of(row) == account) out += (out.empty() ? "" : ", ") + row.text(frmMain::user_name);
  return out;
}

}  // namespace tutti
