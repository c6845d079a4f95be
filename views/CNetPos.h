#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <tsl/robin_map.h>

#include "books/position_book.h"
#include "core/CLocalSettings.h"
#include "core/displayable.h"
#include "sessions/contract/codes.h"
#include "views/net_sum.h"

namespace tutti {

// Net positions: all open positions of the connected accounts, added up per symbol, per account, and per
// both. The open positions window tells of changes; whoever shows sums pulls what changed since it looked
// last, by the stamps.
class CNetPos final : public Displayable {
 public:
  // Symbols and accounts keep their places for the whole run; those without positions have a sum of none.
  struct OfSymbol {
    std::string name;
    NetSum sum;
    int accounts = 0;  // that hold positions of it
    // As many as there are accounts. Side by side, since a price changes the profits of all of them.
    std::vector<NetSum> by_account;
    std::uint64_t stamp = 0;
  };
  struct OfAccount {
    std::int32_t number = 0;
    NetSum sum;
    std::uint64_t stamp = 0;
  };

  explicit CNetPos(const CLocalSettings& locale) : locale_(locale) {}

  const std::vector<OfSymbol>& symbols() const { return symbols_; }
  const std::vector<OfAccount>& accounts() const { return accounts_; }
  // What one of the accounts holds of the symbol at a place.
  const NetSum& of(const OfAccount& account, std::size_t symbol) const {
    return symbols_[symbol].by_account[static_cast<std::size_t>(&account - accounts_.data())];
  }
  // Everything, added up with every call. Lots of different symbols are added up as they are.
  NetSum total() const;
  // Accounts that hold any position.
  int accounts_in_market() const { return accounts_in_market_; }
  std::uint64_t stamp() const { return stamp_; }

  // A position that is new, or that has other values than before.
  void position_added(const PositionBook::Record& position);
  void remove_position(const PositionBook::Record& position);
  void floating_changed(const PositionBook::Record& position);

  // A profit as it is passed on to be added up: as text, with the decimal separator in force.
  std::string profit_text(double profit) const;

 private:
  static constexpr std::uint32_t nothing = ~std::uint32_t{0};

  struct Held {
    std::uint32_t symbol = nothing;  // places; `nothing` while the slot has no position
    std::uint32_t account = 0;
    Operation side{};
    double lots = 0.0;
    double price = 0.0;
    double profit = 0.0;
  };

  std::uint32_t symbol_place(std::string_view name);
  std::uint32_t account_place(std::int32_t number);
  void put(const Held& held);
  void take(const Held& held);
  void touch(const Held& held);

  const CLocalSettings& locale_;
  std::vector<Held> held_;  // by slot
  tsl::robin_map<std::int32_t, std::uint32_t> place_of_account_;
  std::vector<OfSymbol> symbols_;
  std::vector<OfAccount> accounts_;
  int accounts_in_market_ = 0;
  std::uint64_t stamp_ = 0;
};

}  // namespace tutti
