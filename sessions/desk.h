#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "books/account_book.h"
#include "books/sent_order.h"
#include "books/symbol_collection.h"
#include "sessions/contract/codes.h"
#include "sessions/contract/order_report.h"
#include "sessions/contract/requote.h"
#include "sessions/contract/symbol.h"

// What a session may tell the windows. Every interface has empty defaults, so that a window which is not
// there yet is a receiver that ignores what it hears. All calls come on the GUI thread.

namespace tutti {

class CClientAPIManager;

// The accounts list. Each of its rows shows the record of a session, keyed by the session's number.
class AccountsDesk {
 public:
  virtual ~AccountsDesk() = default;
  virtual void add_client(const CClientAPIManager&) {}
  virtual void remove_client(const CClientAPIManager&) {}
  // The session has a new number.
  virtual void renumber_client(const CClientAPIManager&) {}
  // Makes the session's row the list's current one and lets the list react to that.
  virtual void select_client(const CClientAPIManager&) {}
  // True when a row has this duplicate key (the operator has selected a row).
  virtual bool has_account(std::string_view /*account_key*/) const { return false; }
  virtual bool has_selection() const { return false; }
  // The account's data are complete: its line of the full list is updated, the connected list gets it.
  virtual void record_connected(const CClientAPIManager&) {}
  // Puts an account into the saved lists in the place of the one with this duplicate key.
  virtual void replace_account(std::string_view /*account_key*/, const CClientAPIManager&) {}
  // Symbol for which Limit_Offset and Stop_Offset ask an account's visibility; empty when none is supplied.
  virtual std::string visibility_symbol() const { return {}; }
};

// An order window with one row per connected account, keyed by account number.
class OrderRowsDesk {
 public:
  virtual ~OrderRowsDesk() = default;
  virtual void add_account(std::int32_t /*account*/) {}
  virtual void remove_account(std::int32_t /*account*/) {}
  virtual void result(std::string_view /*text*/, std::int32_t /*account*/) {}
  // The application's symbols are others than before.
  virtual void symbols_changed() {}
};

class MarketOrderDesk : public OrderRowsDesk {
 public:
  // Chosen symbol, and the share of an account that is ticked, in lots.
  virtual std::string_view symbol() const { return {}; }
  // Lots that were split over the accounts, as typed.
  virtual double total() const { return 0.0; }
  virtual std::optional<double> ticked_share(std::int32_t /*account*/) const { return std::nullopt; }
  // True while the window still wants the smallest and largest lot of an account.
  virtual bool wants_lot_limits() const { return false; }
  virtual void lot_limits(double /*minimum*/, double /*maximum*/) {}
  // An account's request was not taken.
  virtual void request_ended(std::int32_t /*account*/, RequestCode /*request_code*/) {}
  // The fan-out found nobody to send for.
  virtual void nothing_sent() {}
};

class EntryOrderDesk : public OrderRowsDesk {
 public:
  // Accounts of the window, for the widest entry-order distance.
  virtual std::vector<std::int32_t> accounts() const { return {}; }
  virtual void submit_available(bool /*available*/) {}
  virtual void distribute_available() {}
  virtual void prices(SymbolHandle, const Symbol&) {}
  virtual void stop_request_succeeded(std::int64_t /*order*/, std::int32_t /*account*/) {}
  // What became of an entry order, an update or an SL/TP request that was taken.
  virtual void request_settled(const SentOrder&, std::int32_t /*account*/) {}
};

class ClosePositionsDesk {
 public:
  virtual ~ClosePositionsDesk() = default;
  // Headers of the grid, and the state an account shows while it is not logged in.
  virtual void prepare(const std::vector<std::string>& /*headers*/, AccountState) {}
  virtual void add_account(std::int32_t /*account*/) {}
  // Takes out the account's positions that the open positions view has no more, and shows what the account is
  // when no session of it is connected.
  virtual void remove_account(std::int32_t /*account*/) {}
  // What a session of the account is now.
  virtual void account_state(std::int32_t /*account*/, AccountState) {}
  virtual void refresh_symbols() {}
  virtual void prices(SymbolHandle, const Symbol&) {}
  virtual void result(std::int64_t /*ticket*/, std::int32_t /*account*/, std::string_view /*text*/) {}
};

class PendingDesk {
 public:
  virtual ~PendingDesk() = default;
  // A text about an order: what became of a request for it.
  virtual void order_text(std::int64_t /*order*/, std::int32_t /*account*/, std::string_view /*text*/) {}
};

class MarketWatchDesk {
 public:
  virtual ~MarketWatchDesk() = default;
  virtual void clear() {}
  // `time` is the last quote as "hh:mm".
  virtual void symbol(SymbolHandle, const Symbol&, std::string_view /*time*/) {}
  virtual void prices(SymbolHandle, const Symbol&) {}
};

class RequoteDesk {
 public:
  virtual ~RequoteDesk() = default;
  virtual void tick(CClientAPIManager&, const Requote&) {}
  // A market request was accepted or rejected by the dealer.
  virtual void order_accepted(std::int64_t /*order*/, std::int32_t /*account*/) {}
  virtual void order_rejected(std::int64_t /*order*/, std::int32_t /*account*/) {}
  // The session is disconnected or removed: nobody counts its requotes down any more.
  virtual void session_gone(const CClientAPIManager&) {}
};

// Panes and command-bar controls of the main window.
class StatusDesk {
 public:
  // Command-bar controls by identifier. The trade controls become available when an account has logged in.
  static constexpr int first_trade_control = 100017;
  static constexpr int last_trade_control = 100020;
  static constexpr int waiting_control = 100025;
  static constexpr int connected_control = 100026;

  virtual ~StatusDesk() = default;
  virtual void server_time(std::string_view /*text*/) {}
  virtual void control_text(int /*control*/, std::string_view /*text*/) {}
  virtual void control_enabled(int /*control*/, bool /*enabled*/) {}
};

// One receiver of each kind. Start-up makes the desk before the windows, with receivers that ignore, and
// attaches them before the first account is loaded. The sessions end before the first window goes.
struct Desk {
 private:
  AccountsDesk no_accounts_;
  MarketOrderDesk no_market_order_;
  EntryOrderDesk no_entry_order_;
  ClosePositionsDesk no_close_positions_;
  PendingDesk no_pending_;
  MarketWatchDesk no_market_watch_;
  RequoteDesk no_requote_;
  StatusDesk no_status_;

 public:
  Desk() = default;
  Desk(const Desk&) = delete;
  Desk& operator=(const Desk&) = delete;

  AccountsDesk* accounts = &no_accounts_;
  MarketOrderDesk* market_order = &no_market_order_;
  EntryOrderDesk* entry_order = &no_entry_order_;
  ClosePositionsDesk* close_positions = &no_close_positions_;
  PendingDesk* pending = &no_pending_;
  MarketWatchDesk* market_watch = &no_market_watch_;
  RequoteDesk* requote = &no_requote_;
  StatusDesk* status = &no_status_;
};

}  // namespace tutti
