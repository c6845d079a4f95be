#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "books/account_book.h"
#include "books/symbol_collection.h"
#include "core/MGeneral.h"
#include "sessions/contract/account_client.h"
#include "sessions/desk.h"

namespace tutti {

// What the parts of one account session share: the account, its connection, which can't send, its record, and
// where its news go.
class SessionScope {
 public:
  SessionScope(AccountClient& connection, MGeneral& all, Desk& windows, SymbolCollection& names,
               AccountBook& accounts, AccountEntry& own)
      : client(connection),
        general(all),
        desk(windows),
        symbols(names),
        book(accounts),
        record(own),
        account(own.account) {}

  AccountClient& client;
  MGeneral& general;
  Desk& desk;
  SymbolCollection& symbols;
  AccountBook& book;
  AccountEntry& record;
  const std::int32_t account;

  void log(std::string_view text) const { general.log(text, account); }
  // The same text to the journal and to the pending orders view.
  void log_order(std::int64_t order, std::string_view text) const;
  // Keeps the text as the application's last message and shows it under the default caption.
  void tell(const std::string& text) const;

  // Journals that a record of the library is ignored for the values in it, once while the connection stands.
  void refuse(const std::string& what);
  void refuse(const std::string& what, std::string_view why);
  void forget_refusals() { refused_.clear(); }

 private:
  std::set<std::string> refused_;
};

}  // namespace tutti
