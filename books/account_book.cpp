#include "books/account_book.h"

#include <algorithm>

namespace tutti {

AccountEntry& AccountBook::add(std::string_view user, std::int32_t account, const Endpoint& server) {
  AccountEntry& record = all_.add();
  record.handle = static_cast<AccountHandle>(all_.size() - 1);
  record.account = account;
  record.user = user;
  record.server = server;
  listed_.push_back(&record);
  by_account_[account].push_back(&record);
  changed(record);
  return record;
}

void AccountBook::remove(AccountHandle handle) {
  AccountEntry& record = all_[handle];
  record.shown.state = AccountState::disconnected;
  std::erase(listed_, &record);
  const auto of_account = by_account_.find(record.account);
  std::erase(of_account.value(), &record);
  if (of_account->second.empty()) by_account_.erase(of_account);
  changed(record);
}

bool AccountBook::connected(std::int32_t account) const {
  const auto of_account = by_account_.find(account);
  return of_account != by_account_.end() &&
         std::any_of(of_account->second.begin(), of_account->second.end(),
                     [](const AccountEntry* record) { return record->connected(); });
}

AccountBook::Counts AccountBook::counts() const {
  Counts out;
  for (const AccountEntry* record : listed_) {
    ++out.all;
    if (record->connected()) ++out.connected;
    if (record->shown.state == AccountState::connecting) ++out.connecting;
  }
  return out;
}

void AccountBook::set_note(AccountEntry& record, std::string_view note) {
  // Who takes over what stands there has written nothing.
  if (note == record.shown.note) return;
  record.note = note;
  show_note(record, note);
}

void AccountBook::show_state(AccountEntry& record, AccountState state, Ink ink) {
  record.shown.state = state;
  record.shown.ink = ink;
  show(record);
}

void AccountBook::recolour(AccountEntry& record) {
  record.shown.ink = record.connected() ? Ink::green : Ink::red;
  show(record);
}

void AccountBook::clear_values(AccountEntry& record) {
  record.shown.values = {};
  record.shown.has_values = false;
  show(record);
}

void AccountBook::show_note(AccountEntry& record, std::string_view note) {
  record.shown.note = note;
  show(record);
}

}  // namespace tutti
