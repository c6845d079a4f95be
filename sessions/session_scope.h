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
        book(books.accounts),
        record(own),
        positions(books.positions),
        orders(books.orders),
        account(own.account) {}

  AccountClient& client;
  MGeneral& general;
  Desk& desk;
  SymbolCollection& symbols;
  AccountBook& book;
  AccountEntry& record;
  PositionBook& positions;
  OrderBook& orders;
  const std::int32_t account;

  void log(std::string_view text) const { general.log(text, account); }
  // The same text to the journal and to the pending orders view.
  void log_order(std::int64_t order, std::string_view text) const;
  // Keeps the text as the application's last message and shows it under the default caption.
  void tell(const std::string& text) const;

  // Journals that a record of the library is ignored for the values in it, once while the connection stands.
  // `what` and the name or number behind it are joined here, where nobody is in a hurry.
  void refuse(std::string_view what, std::string_view name = {}, std::string_view why = no_numbers);
  void refuse(std::string_view what, std::int64_t number);
  void forget_refusals() { refused_.clear(); }

  static constexpr std::string_view no_numbers =
      " came with values that are no numbers or out of all bounds; it is not shown";

 private:
  std::set<std::string> refused_;
};

}  // namespace tutti
