#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tsl/robin_map.h>

#include "fix/client/line_news.h"
#include "pricing/rate_table.h"

namespace tutti {

// What a client knows of its account, as of the last thing its server said. Symbols are numbered by the
// terminal itself, from 1; positions and orders stand in order of their numbers.
class AccountCache {
 public:
  struct Position {
    OpenPosition record;
    std::size_t symbol = 0;  // place
    bool waiting = false;    // the news that its floating profit moved is in the queue
  };
  struct Order {
    PendingOrder record;
    std::string id_text;  // of the request that was accepted last; empty when not known
  };
  enum class Change : std::uint8_t { none, opened, changed, closed };

  // Takes up all that a login brings.
  void fill(line::Ready ready);
  void clear() { *this = AccountCache{}; }

  const std::vector<news::SymbolEntry>& symbols() const { return symbols_; }
  // Places of those that the account carries.
  const std::vector<std::size_t>& carried() const { return carried_; }
  std::optional<std::size_t> place_of(std::string_view name) const;
  const news::SymbolEntry* symbol_of_id(std::int32_t id) const;  // nullptr when there is none
  // Whether the day's high or low changed as well; nothing for a symbol that is not known.
  struct Moved {
    std::size_t place = 0;
    bool high_low = false;
  };
  std::optional<Moved> set_price(const news::Price& price);
  // Values positions anew by the prices that moved since the last call; calls `moved` with each whose
  // floating profit changed.
  template <class Moved>
  void revalue(Moved moved) {
    if (!stale_) return;
    update_rates();
    for (Position& position : positions_)
      if (value(position)) moved(position);
  }
  // Account currency that a lot bought at `from` has made when it is worth `to`; 0 without a rate.
  double profit(std::size_t place, double from, double to);

  const std::vector<Position>& positions() const { return positions_; }
  Position* find_position(std::int64_t ticket);
  // What became of the record is told with it as it is now, or was last.
  Change set_position(OpenPosition& record, bool gone);

  const std::vector<Order>& orders() const { return orders_; }
  const Order* find_order(std::int64_t number) const;
  const Order* find_order(std::int64_t number, OrderKind kind) const;
  Change set_order(news::Order& news);
  // The request of this text was accepted for the order.
  void note_accepted(std::int64_t number, const std::string& id_text);

  const news::Summary& summary() const { return summary_; }
  void set_summary(const news::Summary& summary) { summary_ = summary; }

 private:
  void add_symbol(news::SymbolEntry entry);
  void update_rates();
  bool value(Position& position);
  std::int32_t id_of(std::string_view symbol) const;

  std::vector<news::SymbolEntry> symbols_;
  tsl::robin_map<std::string, std::size_t> places_;
  std::vector<std::size_t> carried_;
  std::vector<Position> positions_;
  std::vector<Order> orders_;
  news::Summary summary_;
  std::optional<RateTable> rates_;
  std::size_t currency_ = 0;
  bool stale_ = false;
};

}  // namespace tutti
