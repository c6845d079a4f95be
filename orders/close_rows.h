#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "books/account_book.h"
#include "books/position_book.h"
#include "core/row_list.h"
#include "orders/close_round.h"
#include "views/frmTrade.h"

namespace tutti {

// The rows of the close positions window: an account, keyed "C" and its number, and right below it its
// positions, keyed "T", the ticket and the account. Works on the form's list.
class CloseRows {
 public:
  enum Column : std::size_t { account, status, amount, action };
  using Record = PositionBook::Record;

  // What Action reads from a request on until its answer, or the next price.
  static constexpr std::string_view waiting_text = " Waiting.....";
  // The mark of a position is the ground of its Status cell and nothing else. Both look the same.
  static constexpr Rgb marked_ground{254, 255, 255};
  static constexpr Rgb unmarked_ground{255, 255, 255};

  // Keeps references.
  CloseRows(RowList& list, const CloseRound& round) : list_(list), round_(round) {}

  static bool is_position(const Row& row) { return row.key().prefix() == ticket_key(0, 0).prefix(); }
  // The state that an account's row says.
  static bool shows(const Row& above, AccountState state);
  static void show_state(Row& above, AccountState state);
  static std::int32_t account_of(const Row& row);
  static std::int64_t ticket_of(const Row& row);

  // nullptr when there is no such row.
  Row* find(std::int32_t number) const { return list_.find(client_key(number)); }
  Row* find(std::int64_t ticket, std::int32_t number) const { return list_.find(ticket_key(ticket, number)); }
  std::vector<Row*> positions_of(const Row& above) const;
  // The row of a connected account, made at the end when it has none.
  Row& add(std::int32_t number);
  // Writes a position into its row, which may be new.
  void write(Row& row, const Record& open);
  // Takes an account's row out when it has no positions left; or with those that it has.
  void remove_if_empty(Row& above);
  void take_out(Row& above);

  static bool marked(const Row& row) { return row.cell(Column::status).ground() == marked_ground; }
  static void mark(Row& row, bool marked);
  // Marks the positions among these rows and those of the accounts among them, or unmarks them when all are;
  // true when it did the latter.
  bool toggle(const std::vector<Row*>& rows);
  std::size_t marked_count() const;
  // In the order of their rows.
  std::vector<frmTrade::Close> marked_positions() const;

  // Each position shows the price of its own side: a Buy the ask, a Sell the bid.
  void show_prices(double ask, double bid);
  // Whether these stand in all rows.
  bool shows_prices(double ask, double bid) const { return ask == ask_ && bid == bid_ && !overwritten_; }
  // None has come yet for what the rows are of.
  void forget_prices() { ask_ = bid_ = 0.0; }
  // What stands in Action until a price comes; or the last one, or that a request waits.
  void write_no_price(Row& row);
  // Of a request, until the next price.
  void write_action(Row& row, std::string_view text);

 private:
  // What a row is, by its texts; kept in the row so that a price need not read them.
  enum class Kind : std::uint8_t { account, buy, sell, other };
  struct RowData {
    Kind kind = Kind::other;
    AccountState state = AccountState::disconnected;  // that an account's row shows
  };

  // In the header, since a price is written into thousands of rows.
  void write_price(Row& row) const {
    const auto* data = row.data_if<RowData>();
    if (data == nullptr) return;
    if (data->kind == Kind::sell && bid_ != 0.0) row.set_number(Column::action, bid_, NumberFormat::close_at);
    if (data->kind == Kind::buy && ask_ != 0.0) row.set_number(Column::action, ask_, NumberFormat::close_at);
  }

  RowList& list_;
  const CloseRound& round_;
  double ask_ = 0.0;  // 0 until one comes
  double bid_ = 0.0;
  bool overwritten_ = false;  // something else stands where the price did
};

}  // namespace tutti
