#pragma once

#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/numbers.h"
#include "sessions/CClientAPIManager.h"
#include "sessions/desk.h"

namespace tutti::testing {

// What was heard, as lines of words.
using Heard = std::vector<std::string>;

inline std::string word(std::string_view text) {
  return std::string{text};
}
template <class Number>
requires std::is_arithmetic_v<Number> std::string word(Number number) {
  return number_text(static_cast<double>(number));
}

// A receiver that writes lines under its name.
class Voice {
 public:
  Voice(std::string name, Heard& heard) : name_(std::move(name)), heard_(heard) {}

 protected:
  template <class... Words>
  void say(const Words&... words) {
    std::string line = name_;
    ((line += " " + word(words)), ...);
    heard_.push_back(std::move(line));
  }

 private:
  std::string name_;
  Heard& heard_;
};

template <class OrderDesk>
struct RecordingOrderRows : OrderDesk, protected Voice {
  using Voice::Voice;
  void add_account(std::int32_t account) override { say("adds", account); }
  void remove_account(std::int32_t account) override { say("removes", account); }
  void result(std::string_view text, std::int32_t account) override { say(word(account) + ":", text); }
  void symbols_changed() override { say("symbols"); }
};

// All windows at once: what sessions tell them goes into `heard`, and they have the rows a test gives them.
class RecordingDesk {
 public:
  RecordingDesk() {
    desk.accounts = &accounts;
    desk.market_order = &market_order;
    desk.entry_order = &entry_order;
    desk.close_positions = &close_positions;
    desk.pending = &pending;
    desk.market_watch = &market_watch;
    desk.requote = &requote;
    desk.status = &status;
  }

  Heard heard;
  Desk desk;

  struct Accounts final : AccountsDesk, Voice {
    using Voice::Voice;
    std::string supplied_symbol;
    bool one_chosen = false;
    std::vector<std::string> taken_keys;

    void select_client(const CClientAPIManager& session) override { say("selects", session.key()); }
    void record_connected(const CClientAPIManager& session) override {
      say("records", session.duplicate_key());
    }
    void replace_account(std::string_view key, const CClientAPIManager& session) override {
      say("replaces", std::string{key} + " by " + session.duplicate_key());
    }
    bool has_account(std::string_view key) const override {
      return std::find(taken_keys.begin(), taken_keys.end(), key) != taken_keys.end();
    }
    bool has_selection() const override { return one_chosen; }
    std::string visibility_symbol() const override { return supplied_symbol; }
  } accounts{"accounts", heard};

  struct MarketOrder final : RecordingOrderRows<MarketOrderDesk> {
    using RecordingOrderRows::RecordingOrderRows;
    bool asks_lots = false;
    bool wants_lot_limits() const override { return asks_lots; }
    void lot_limits(double low, double high) override { say("lots", low, high); }
    void request_ended(std::int32_t account, RequestCode code) override {
      say("ended", account, format_as(code));
    }
  } market_order{"market", heard};

  struct EntryOrders final : RecordingOrderRows<EntryOrderDesk> {
    using RecordingOrderRows::RecordingOrderRows;
    std::vector<std::int32_t> listed;
    std::vector<std::int32_t> accounts() const override { return listed; }
    void submit_available(bool on) override { say("submit", on ? "on" : "off"); }
    void distribute_available() override { say("distribute on"); }
    void prices(SymbolHandle, const Symbol& symbol) override { say("prices", symbol.name); }
    void stop_request_succeeded(std::int64_t order, std::int32_t) override { say("stops", order); }
  } entry_order{"entry", heard};

  struct ClosePositions final : ClosePositionsDesk, Voice {
    using Voice::Voice;
    void add_account(std::int32_t account) override { say("adds", account); }
    void remove_account(std::int32_t account) override { say("removes", account); }
    void refresh_symbols() override { say("symbols"); }
    void prices(SymbolHandle, const Symbol& symbol) override { say("prices", symbol.name); }
    void result(std::int64_t ticket, std::int32_t, std::string_view text) override {
      say(word(ticket) + ":", text);
    }
  } close_positions{"close", heard};

  template <class Book>
  struct Records : Book::Observer, protected Voice {
    using Record = typename Book::Record;
    using Voice::Voice;
    void account_left(std::int32_t account, std::span<const Record>) override { say("removes", account); }
  };

  struct Positions final : Records<PositionBook> {
    using Records::Records;
    void changed(const Record& position) override { say("has", position.ticket); }
    void worth_changed(const Record& position) override { say(position.ticket, position.floating_pl); }
    void removed(const Record& position) override { say("drops", position.ticket); }
  } positions{"positions", heard};

  struct Orders final : Records<OrderBook> {
    using Records::Records;
    void changed(const Record& order) override {
      say("has", order_kind::text(order.kind), order.order, order.account);
    }
    void removed(const Record& order) override { say("drops", order.order); }
  } orders{"pending", heard};

  struct Pending final : PendingDesk, Voice {
    using Voice::Voice;
    void order_text(std::int64_t order, std::int32_t, std::string_view text) override {
      say(word(order) + ":", text);
    }
  } pending{"pending", heard};

  struct MarketWatch final : MarketWatchDesk, Voice {
    using Voice::Voice;
    void symbol(SymbolHandle, const Symbol& symbol, std::string_view time) override {
      say(symbol.name, time);
    }
    void prices(SymbolHandle, const Symbol& symbol) override { say("prices", symbol.name); }
  } market_watch{"watch", heard};

  struct RequoteDialog final : RequoteDesk, Voice {
    using Voice::Voice;
    void tick(CClientAPIManager& session, const Requote& requote) override {
      say(requote.order, "of", session.account());
    }
    void order_accepted(std::int64_t order, std::int32_t) override { say("accepted", order); }
    void order_rejected(std::int64_t order, std::int32_t) override { say("rejected", order); }
    void session_gone(const CClientAPIManager& session) override { say("gone", session.account()); }
  } requote{"requote", heard};

  struct Status final : StatusDesk, Voice {
    using Voice::Voice;
    void server_time(std::string_view text) override { say("time", text); }
    void control_text(int control, std::string_view text) override { say(control, "reads", text); }
    void control_enabled(int control, bool on) override { say(control, on ? "on" : "off"); }
  } status{"status", heard};
};

}  // namespace tutti::testing
