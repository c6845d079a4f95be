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
#include "core/displayable.h"
#include "core/label.h"
#include "core/text_box.h"
#include "orders/account_rows.h"
#include "orders/entry_draft.h"
#include "orders/entry_edit.h"
#include "orders/entry_hints.h"
#include "orders/entry_market.h"
#include "orders/entry_round.h"
#include "orders/entry_ticks.h"
#include "orders/round_retry.h"
#include "sessions/desk.h"
#include "views/frmPending.h"

namespace tutti {

// Entry order window: one limit or stop order, with stop loss and take profit if wanted, for many accounts.
// Distribute computes each ticked account's share, Submit sends. In its edit modes Submit sends the new
// prices of an existing entry order, or the SL/TP of an open position.
//
// Rows are keyed "C" and the account number; sessions add and remove them as accounts come and go.
class frmlimitorder final : public EntryOrderDesk, public OrderWindow, public Displayable {
 public:
  enum Column : std::size_t { account, amount, result_text };
  using EditRequest = frmPending::EditRequest;

  // The mode string: "" is a new order.
  static constexpr std::string_view edit_order = "Limit Orders";
  static constexpr std::string_view edit_stops = "SLTP ";

  frmlimitorder(MGeneral& general, frmMain& accounts_list, CClientAPIManagers& sessions,
                SymbolCollection& symbols);

  ComboBox cblimitordersymbols;
  ComboBox cblimiordertype;
  ComboBox CBlimitorderdis;
  TextBox txtlimitorderammount;
  TextBox txtatprice;
  TextBox txtsl;
  TextBox txttp;
  Label lblpricecondition;
  Label lblcondition;
  Label lblslcondition;
  Label lbltpcondition;
  Label lblslbound;
  Label lbltpbound;
  // What one close at the stop loss (take profit) brings, in account currency, for the typed amount.
  Label lblslchanged;
  Label lbltpchanged;
  RowList lvwConClients{{"Account", "Amount", "Result"}};
  TextBox txtLvw;        // never shown: shares are numbers, and their editor is txtEditPrice
  TextBox txtEditPrice;  // in-place editor of a share
  CheckBox chkAllClients;
  Label LblCheck{"Check All"};
  Button cmdlimiorderdis{"Distribute"};
  Button cmdsubmitlimiorder{"Submit"};
  Button cmdcancel{"Cancel"};
  // What of the last Submit had no effect, once more.
  RoundRetry retry;

  // Whether the window is shown. Showing it chooses the first type and symbol where none is, and has the
  // symbol looked up anew.
  using Displayable::Displayed;
  void Displayed(bool displayed);
  // Brings the window up, for an order to be edited or a symbol that is handed over; set by who has a screen.
  std::function<void()> show;
  // Puts the caret into the box whose price is refused; set by who has a screen.
  std::function<void(TextBox& box)> enter;

  // Rows. Adding one twice and removing a missing one are ignored.
  void Add(std::int32_t account);
  void Remove(std::int32_t account) { rows_.remove(account); }
  void UpdateResult(RowKey account, std::string_view text) { rows_.update_result(account, text); }
  void updateAmount(RowKey account, double amount) { rows_.update_amount(account, amount); }
  void addNote(Row& row, std::string_view text) { row.set_text(Column::result_text, text); }
  void clearresult();
  void uncheckall() { ticks_.untick_all(); }
  void tick_all() { ticks_.tick_all(); }
  // Another window hands a symbol over. The one that is chosen already is not chosen again, and nothing is
  // chosen while something is edited.
  void take_symbol(std::string_view name);
  const std::string& ColumnWidthsPer() const { return column_widths_; }
  void ColumnWidthsPer(std::string widths);
  // The widths of a narrow and of a wide window.
  void Form_Load() { ColumnWidthsPer("20,12,67"); }
  void Form_Resize() { ColumnWidthsPer("14,12,73"); }

  // Tells the side and the bounds for the prices from the market, and from the at-price when there is one.
  void limitorderpricechange();
  // Tells what the stop loss and the take profit would bring, as the first session reckons.
  void sltpprice();
  // Key filter of the amount and price boxes.
  static std::int16_t checkkey(std::int16_t key, const std::string& text) {
    return frmMain::askycodekeypress(key, text);
  }
  void Distribute();
  // Fills the form with an order, or with a position for its SL/TP, by the type text. A text that is none of
  // the six is as Cancel.
  void EdirMode(const EditRequest& request);
  void cmdcancel_Click() { clearFrmlimit(); }
  // Back to a new order, with nothing typed and nothing ticked. Results stay.
  void clearFrmlimit();
  // An SL/TP request of this window was carried out.
  void ManageSuccSLTPResult(std::int64_t, std::int32_t account) { round_.stops_carried_out(account); }
  std::string mode() const { return std::string{!edit_ ? "" : edit_->stops() ? edit_stops : edit_order}; }
  // The order or ticket in edit mode, and its account.
  std::int64_t edited() const { return edit_ ? edit_->request.number : 0; }
  std::int32_t edited_account() const { return edit_ ? edit_->request.account : 0; }

  // In-place editor of a share, for new orders only; as that of the market order window.
  bool open_editor(Row& row, std::size_t column) { return !edit_ && rows_.open_editor(row, column); }
  bool commit_editor() { return rows_.commit_editor(); }
  void cancel_editor() { rows_.cancel_editor(); }
  double GetLvwDeltaX(std::size_t column) const { return rows_.left_edge(column); }
  RowKey editor_row() const { return rows_.editor_row(); }

  // What the window shows beside the controls.
  PriceSketch sketch() const { return hints_.sketch(edit_); }
  Shares shares() const { return rows_.shares(); }
  ShareFault share_fault(const Row& row) const { return rows_.fault_of(row); }
  double minimum_lot() const { return general_.lots.minimum; }
  double maximum_lot() const { return general_.lots.maximum; }
  std::string left_out_text() const { return rows_.left_out_text(); }
  const AccountBook& account_book() const { return accounts_list_.account_book(); }
  // What became of the last Submit. Distribute begins a new round, which has no orders until the next one.
  OrderAnswer answer_of(const Row& row) const { return round_.answer_of(row); }
  int unknown_before(const Row& row) const { return round_.unknown_before(row); }
  OrderAnswers answers() const { return round_.answers(); }
  // Submit would take the stop loss and the take profit as they are typed.
  bool stops_accepted() const { return draft_.fault() == EntryDraft::Fault::none; }
  // The last press of Submit sent something, be it that it was not taken.
  bool submitted() const { return !round_.empty(); }

  // EntryOrderDesk
  void add_account(std::int32_t account) override { Add(account); }
  void remove_account(std::int32_t account) override {
    Remove(account);
    market_.outdate();
  }
  void result(std::string_view text, std::int32_t account) override {
    UpdateResult(client_key(account), text);
  }
  void symbols_changed() override;
  std::vector<std::int32_t> accounts() const override { return rows_.accounts(); }
  void submit_available(bool available) override { cmdsubmitlimiorder.set_enabled(available); }
  void distribute_available() override;
  void prices(SymbolHandle symbol, const Symbol& record) override;
  void stop_request_succeeded(std::int64_t order, std::int32_t account) override {
    ManageSuccSLTPResult(order, account);
  }
  void request_settled(const SentOrder& order, std::int32_t account) override {
    round_.settled(order, account);
  }

  // OrderWindow
  RowList& account_rows() override { return lvwConClients; }
  void updateAmount(std::int32_t, double share, RowKey key) override { updateAmount(key, share); }
  std::string_view no_balance_text() const override { return " no Balance  "; }

 private:
  void cblimitordersymbols_Click();
  void cblimiordertype_Click();
  void cmdsubmitlimiorder_Click();

  EntryType type() const { return draft_.type(); }
  void set_edit_controls();

  bool required_fields_filled();
  bool prices_accepted();
  bool send_new_orders();
  bool send_update();
  bool send_stops();
  void send(Row& row, std::string_view kind, std::string description, double price,
            const EntryRound::Send& send);

  MGeneral& general_;
  frmMain& accounts_list_;
  CClientAPIManagers& sessions_;
  SymbolCollection& symbols_;
  AccountRows rows_{general_.lots, lvwConClients, txtEditPrice};
  EntryTicks ticks_{rows_, lvwConClients, chkAllClients, LblCheck};
  EntryRound round_{general_, accounts_list_, sessions_, rows_, edit_stops};
  EntryDraft draft_{general_.locale, cblimiordertype, txtlimitorderammount, txtatprice, txtsl, txttp};
  EntryMarket market_{symbols_};
  EntryHints hints_{draft_,
                    market_,
                    {lblpricecondition, lblcondition, lblslcondition, lblslbound, lblslchanged,
                     lbltpcondition, lbltpbound, lbltpchanged}};
  std::string column_widths_;
  std::optional<EntryEdit> edit_;  // nothing for a new order
};

}  // namespace tutti
