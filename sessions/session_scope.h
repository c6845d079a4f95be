#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "books/books.h"
#include "core/MGeneral.h"
#include "sessions/contract/account_client.h"
#include "sessions/desk.h"

namespace tutti {

// What the parts of one account session share: the account, its connection, which can't send, the books that
// it writes with its own record of the accounts, and where its other news go.
class SessionScope {
 public:
  SessionScope(AccountClient& connection, MGeneral& all, Desk& windows, Books& books, AccountEntry& own)
      : client(connection),
        general(all),
        desk(windows),
        symbols(books.symbols),
        positions(books.positions),
        orders(books.orders),
        book(books.accounts),
        record(own),
        account(own.account) {}

  AccountClient& client;
  MGeneral& general;
  Desk& desk;
  SymbolCollection& symbols;
  PositionBook& positions;
  OrderBook& orders;
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
