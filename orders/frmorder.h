#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "accounts/frmMain.h"
#include "accounts/order_window.h"
#include "core/MGeneral.h"
#include "core/button.h"
#include "core/check_box.h"
#include "core/combo_box.h"
#include "core/label.h"
#include "core/text_box.h"
#include "orders/account_rows.h"
#include "orders/order_answer.h"
#include "orders/round_retry.h"
#include "sessions/contract/codes.h"
#include "sessions/desk.h"

namespace tutti {

// Market order window: one market order for many accounts. Distribute computes each ticked account's share,
// then Buy or Sell sends the shares once; every account's result comes back into its row.
//
// Rows are keyed "C" and the account number; sessions add and remove them as accounts come and go.
class frmorder final : public MarketOrderDesk, public OrderWindow {
 public:
  enum Column : std::size_t { account, amount, result_text };

  frmorder(MGeneral& general, frmMain& accounts_list, CClientAPIManagers& sessions,
           SymbolCollection& symbols);

  TextBox txtLvw;
  TextBox txtEditPrice;
  CheckBox chkAllClients;
  Button cmdbuy{"Buy"};
  Button cmdsell{"Sell"};
  ComboBox CBdis;
  TextBox txtammount;
  ComboBox cbsymbols;
  Button cmddis{"Distribute "};
  Label LblCheck{"Check All"};
  Label amount_label{"Amount"};
  Label distribute_label{"Distribute"};
  Label symbol_label{"Symbol"};
  RowList lvwConClients{{"Account", "Amount", "Result"}};
  // What of the last round had no effect, once more.
  RoundRetry retry;

  // Rows. Adding one twice and removing a missing one are ignored.
  void Add(std::int32_t account, std::string_view amount, double result);
  void UpdateResult(std::string_view text, std::int32_t account);
  void updateAmount(std::int32_t account, double amount, RowKey key) override;
  void Remove(std::int32_t account);
  void addNote(Row& row, std::string_view text);
  // A requote of the account's order counts down: its text stands in the Result of the ticked row, until an
  // outcome is written there. When it ends without one, what stood there before comes back.
  void show_requote(std::int32_t account, std::string_view text);
  void end_requote(std::int32_t account);
  const std::string& ColumnWidthsPer() const { return column_widths_; }
  void ColumnWidthsPer(std::string widths);

  // Buttons: Distribute, or Buy and Sell. Never both.
  void Enableds(bool distribute) override;

  // In-place editor of a cell. The operator corrects a share after Distribute; committing writes the trimmed
  // text. False when the cell can't be edited or the row has gone.
  bool open_editor(Row& row, std::size_t column) { return rows_.open_editor(row, column); }
  bool commit_editor() { return rows_.commit_editor(); }
  void cancel_editor() { rows_.cancel_editor(); }
  // Left edge of a column in percent of the list's width, where the editor stands.
  double GetLvwDeltaX(std::size_t column) const { return rows_.left_edge(column); }
  void MoveTxtLvw(RowKey row, std::size_t column) { rows_.move_editor(row, column); }
  RowKey editor_row() const { return rows_.editor_row(); }
  std::size_t editor_column() const { return rows_.editor_column(); }

  // What the window shows beside the list.
  using Shares = tutti::Shares;
  Shares shares() const { return rows_.shares(); }
  ShareFault share_fault(const Row& row) const { return rows_.fault_of(row); }
  double minimum_lot() const { return general_.lots.minimum; }
  double maximum_lot() const { return general_.lots.maximum; }
  std::string left_out_text() const { return rows_.left_out_text(); }
  const AccountBook& account_book() const { return accounts_list_.account_book(); }
  // nullptr when the account has none.
  const Row* account_row(std::int32_t account) const { return lvwConClients.find(client_key(account)); }

  // MarketOrderDesk
  void add_account(std::int32_t account) override { Add(account, "", 0.0); }
  void remove_account(std::int32_t account) override { Remove(account); }
  void result(std::string_view text, std::int32_t account) override { UpdateResult(text, account); }
  void symbols_changed() override { cbsymbols.set_items(symbols_.names()); }
  std::string_view symbol() const override { return cbsymbols.text(); }
  double total() const override { return general_.locale.StringToNumber(txtammount.text()); }
  std::optional<double> ticked_share(std::int32_t account) const override;
  bool wants_lot_limits() const override { return !has_lot_limits_; }
  void lot_limits(double, double) override { has_lot_limits_ = true; }
  void request_ended(std::int32_t account, RequestCode request_code) override;
  void nothing_sent() override { Enableds(true); }

  // Requests of the last Buy or Sell that were not taken.
  int requests_refused() const { return requests_refused_; }

  // What became of the orders of the last Buy or Sell. Distribute begins a new round, which has no orders
  // until the next one.
  using Answer = OrderAnswer;
  using Answers = OrderAnswers;
  Answer answer_of(const Row& row) const;
  Answers answers() const;
  // How many orders that were sent before that for the account of a row nobody knows the outcome of.
  int unknown_before(const Row& row) const;
  static std::string answers_text(const Answers& answers) { return answers.text(); }

  // The operator's command: as a click on the all-accounts box, but where the box is checked while nobody is
  // ticked, as after connections were lost, everybody is ticked again.
  void tick_all();

  // Another window hands a symbol over. The one that is chosen already is not chosen again, since choosing
  // empties amounts and shares.
  void take_symbol(std::string_view name);
  // Brings the window up for that; set by who has a screen.
  std::function<void()> show;

  // OrderWindow
  RowList& account_rows() override { return lvwConClients; }
  std::string_view no_balance_text() const override { return "No Balance"; }
  void clear_all_accounts_box() override { set_all_accounts_box(false); }

 private:
  bool is_of_before(const SentOrder& order) const;
  std::vector<const SentOrder*> round() const;
  void cbsymbols_Click();
  void CBdis_Click();
  void chkAllClients_Click();
  void LblCheck_Click();
  void cmddis_Click();
  void cmdbuy_Click();
  void cmdsell_Click();
  void send(void (CClientAPIManagers::*function)());
  void set_price_box_off();
  void set_all_accounts_box(bool checked);

  struct RowData {
    // The operator ticked the row, or pressed a button with it ticked. If it is not ticked all the same, the
    // account was refused.
    bool wanted = false;
    // Text of a requote, and what it stands in for.
    std::string requote;
    std::string before_requote;
  };
  static void put_back(Row& row);

  MGeneral& general_;
  frmMain& accounts_list_;
  CClientAPIManagers& sessions_;
  SymbolCollection& symbols_;
  SymbolCollection::Entry symbol_;  // the chosen symbol when Distribute was pressed; empty when not found
  std::string column_widths_;
  AccountRows rows_{general_.lots, lvwConClients, txtLvw};
  int requests_refused_ = 0;
  bool has_lot_limits_ = false;
  bool sent_ = false;     // Buy or Sell was pressed since the last Distribute
  RequestId before_ = 0;  // then the last request of all
};

}  // namespace tutti
