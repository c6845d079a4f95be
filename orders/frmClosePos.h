#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "books/account_book.h"
#include "books/position_book.h"
#include "books/symbol_collection.h"
#include "core/CQuestionBox.h"
#include "core/MGeneral.h"
#include "core/check_box.h"
#include "core/combo_box.h"
#include "core/label.h"
#include "core/row_list.h"
#include "orders/close_rows.h"
#include "orders/order_answer.h"
#include "sessions/CClientAPIManagers.h"
#include "sessions/desk.h"
#include "views/frmTrade.h"
#include "views/position_block.h"

namespace tutti {

// Close positions window: the positions of one symbol in all connected accounts. The operator marks some and
// closes them at the market, each one whole, on its own account's connection.
//
// The grid has two kinds of rows: an account, keyed "C" and its number, and right below it its positions,
// keyed "T", the ticket and the account, the one that came last on top. While the window is hidden the grid
// stands still; showing it brings it up to date, and the marks of the positions that are still there stay.
class frmClosePos final : public ClosePositionsDesk, public PositionBook::Observer {
 public:
  using Column = CloseRows::Column;
  using enum CloseRows::Column;
  // Types of the questions whose yes closes the marked positions, and one position.
  static constexpr std::int32_t marked_question = 2;
  static constexpr std::int32_t single_question = 4;
  static constexpr std::string_view waiting_text = CloseRows::waiting_text;

  using Record = PositionBook::Record;

  frmClosePos(MGeneral& general, CQuestionBox& question_box, const CClientAPIManagers& sessions,
              const AccountBook& accounts, const frmTrade& trade, const PositionBook& book,
              const SymbolCollection& symbols);

  ComboBox CloseSymbols;
  RowList MSH;
  CheckBox chkAllClients;
  Label LblCheck{"Close Marked Positions"};
  Label Label2{"Symbol"};
  // Visible while picked blocks of other symbols wait; goes on to the next one.
  Label next_block{""};

  bool Displayed() const { return displayed_; }
  void Displayed(bool displayed);

  // Fills the grid with the positions of the chosen symbol, none of them marked.
  void CloseSymbols_Click();
  // A position that is open now: its row is added under its account's, or brought up to date.
  void Add(const Record& position);
  // Row of a connected account, made at the end of the grid when it has none.
  Row& add_client(std::int32_t account) { return rows_.add(account); }
  // Takes a position out, and its account's row when that has none left.
  void Remove(std::int64_t ticket, std::int32_t account);
  // nullptr when the grid has no such row.
  Row* get_index(std::int32_t account) const { return rows_.find(account); }
  Row* searchpos(std::int64_t ticket, std::int32_t account) const { return rows_.find(ticket, account); }
  // Each position shows the price of its own side: a Buy the ask, a Sell the bid.
  void RefreshPrice(double ask, double bid) { rows_.show_prices(ask, bid); }

  // A click on a cell. On "Close" it asks and closes that position; on any other cell of a position it
  // toggles the mark; on an account it marks all its positions, or unmarks them when all are.
  void click(Row& row, std::size_t column);
  // Marks the positions among these rows and those of the accounts among them; unmarks them when all are.
  void toggle(const std::vector<Row*>& rows);
  void check_all();
  // Asks before anything is sent; refused while no symbol is chosen and while nothing is marked.
  void close_postions();
  void close_single(const Row& row);
  // What the answers yes to these questions do. All rows are collected before the first request is sent. A
  // position whose last close has no answer is not sent again.
  void closepos();
  void closepos1();
  // Sends one close request and reports an immediate refusal; false when nothing was sent. One that is held
  // back, since an answer is awaited, counts as sent. Set by start-up.
  std::function<bool(const frmTrade::Close&)> close_helper;

  // Another window hands over what it has picked: the first block's symbol is chosen and its accounts'
  // positions are marked, the others wait for next_block.
  void take(std::vector<PositionBlock> blocks);
  // Brings the window up, and one of its rows into sight; set by whoever shows them.
  std::function<void()> show;
  std::function<void(const Row&)> reveal;

  static bool is_position(const Row& row) { return CloseRows::is_position(row); }
  static bool marked(const Row& row) { return CloseRows::marked(row); }
  std::size_t marked_count() const { return rows_.marked_count(); }
  // What became of the last close request for a row's position, and what the server said of one that was
  // refused or is in dealing.
  OrderAnswer answer_of(const Row& row) const {
    return is_position(row) ? round_.answer_of(row.key()) : OrderAnswer::none;
  }
  std::string_view answer_text(const Row& row) const {
    return is_position(row) ? round_.text_of(row.key()) : std::string_view{};
  }
  // What an account's row says of it.
  static bool shows_connected(const Row& account) {
    return CloseRows::shows(account, AccountState::connected);
  }
  // The user names that the account of a row stands under.
  std::string user_names(const Row& row) const;
  // What became of all requests of the last close; as CloseRound.
  OrderAnswers answers() { return round_.answers(); }

  // ClosePositionsDesk
  void prepare(const std::vector<std::string>& headers, AccountState logged_out) override;
  void add_account(std::int32_t account) override;
  void remove_account(std::int32_t account) override;
  void account_state(std::int32_t account, AccountState state) override;
  void refresh_symbols() override;
  void prices(SymbolHandle handle, const Symbol& symbol) override;
  void result(std::int64_t ticket, std::int32_t account, std::string_view text) override;

  // PositionBook::Observer. What an account leaves goes with the account.
  void changed(const Record& position) override { Add(position); }
  void removed(const Record& position) override;

 private:
  // frmClosePos.cpp
  // A row of the grid as it should be now: a position that is open, or an account, which has no `open`.
  struct Wanted {
    RowKey key;
    const Record* open = nullptr;
  };
  void rebuild();
  // Brings the rows up to date when they are the ones that there should be; false when others should be.
  bool renew();
  std::vector<Wanted> wanted() const;
  bool connected(std::int32_t account) const { return accounts_.connected(account); }

  // frmClosePos_close.cpp
  void send(const std::vector<frmTrade::Close>& positions);
  void take_block();

  MGeneral& general_;
  CQuestionBox& question_box_;
  const CClientAPIManagers& sessions_;
  const AccountBook& accounts_;
  const frmTrade& trade_;
  const PositionBook& book_;
  const SymbolCollection& symbols_;
  std::vector<std::string> headers_;
  AccountState logged_out_state_ = AccountState::disconnected;
  bool displayed_ = false;
  std::string symbol_name_;
  SymbolHandle symbol_ = no_symbol;                // the one the grid is of
  std::uint64_t names_stamp_ = ~std::uint64_t{0};  // of the symbols that are offered
  std::deque<PositionBlock> blocks_;               // that wait
  CloseRound round_{sessions_};
  CloseRows rows_{MSH, round_};
};

}  // namespace tutti
