#include "orders/frmlimitorder.h"

#include <utility>

#include "accounts/distribution.h"
#include "core/numbers.h"
#include "orders/symbol_choice.h"

namespace tutti {

frmlimitorder::frmlimitorder(MGeneral& general, frmMain& accounts_list, CClientAPIManagers& sessions,
                             SymbolCollection& symbols)
    : retry(general.clock, [this] { return round_.requests(); }),
      general_(general),
      accounts_list_(accounts_list),
      sessions_(sessions),
      symbols_(symbols) {
  cblimiordertype.set_items({"Buy Limit", "Sell Limit", "Buy Stop", "Sell Stop"});
  CBlimitorderdis.set_items(
      {"Distribute as equal parts", "Distribute by margin Ratio", "Distribute by equity Ratio"});
  txtLvw.set_visible(false);
  Form_Load();
  for (TextBox* box : {&txtlimitorderammount, &txtatprice, &txtsl, &txttp, &txtEditPrice})
    box->on_key = checkkey;
  for (TextBox* box : {&txtlimitorderammount, &txtsl, &txttp})
    box->on_edited = [this] { sltpprice(); };
  txtatprice.on_edited = [this] { cblimiordertype_Click(); };
  cblimitordersymbols.on_choose = [this] { cblimitordersymbols_Click(); };
  cblimiordertype.on_choose = [this] { cblimiordertype_Click(); };
  cmdlimiorderdis.on_click = [this] { Distribute(); };
  cmdsubmitlimiorder.on_click = [this] { cmdsubmitlimiorder_Click(); };
  cmdcancel.on_click = [this] { cmdcancel_Click(); };
  symbols_changed();
}

void frmlimitorder::ColumnWidthsPer(std::string widths) {
  column_widths_ = std::move(widths);
  lvwConClients.set_column_widths(column_widths_);
}

void frmlimitorder::Displayed(bool displayed) {
  Displayable::Displayed(displayed);
  if (!displayed) return;
  if (cblimiordertype.index() < 0) cblimiordertype.set_index(0);
  // While something is edited, no symbol but its own belongs here.
  if (!edit_ && cblimitordersymbols.index() < 0) cblimitordersymbols.set_index(0);
  cblimitordersymbols_Click();
}

void frmlimitorder::Add(std::int32_t account) {
  Row* row = rows_.add(account, "");
  if (row == nullptr) return;
  row->data<EntryRound::RowData>().wanted = rows_.came_back(*row);
  market_.outdate();
}

void frmlimitorder::clearresult() {
  for (Row& row : lvwConClients)
    row.set_text(Column::result_text, "");
}

void frmlimitorder::symbols_changed() {
  cblimitordersymbols.set_items(symbols_.names());
  market_.choose(cblimitordersymbols.text());
}

void frmlimitorder::distribute_available() {
  cmdlimiorderdis.set_enabled(!edit_);
  cmdsubmitlimiorder.set_enabled(true);
}

void frmlimitorder::cblimitordersymbols_Click() {
  rows_.remove_if([&](const Row& row) {
    return !account_book().connected(static_cast<std::int32_t>(row.key().number()));
  });
  market_.choose(cblimitordersymbols.text());
  cblimiordertype_Click();
}

void frmlimitorder::cblimiordertype_Click() {
  limitorderpricechange();
  sltpprice();
}

void frmlimitorder::prices(SymbolHandle symbol, const Symbol&) {
  if (symbol == market_.symbol() && Displayed() && market_.moved()) limitorderpricechange();
}

void frmlimitorder::limitorderpricechange() {
  if (cblimitordersymbols.index() < 0 || !market_.chosen()) return;
  market_.take(sessions_);
  hints_.tell_bounds(edit_);
}

void frmlimitorder::sltpprice() {
  hints_.tell_profits(sessions_, edit_);
}

void frmlimitorder::Distribute() {
  if (!symbol_taken(general_, cblimitordersymbols)) return;
  round_.begin();
  ticks_.take_as_wanted();
  Distribution{general_, general_.amount_decimals(), sessions_, *this}.run(
      draft_.lots(), static_cast<std::int16_t>(CBlimitorderdis.index()), cblimitordersymbols.text());
}

void frmlimitorder::set_edit_controls() {
  const bool editing = edit_.has_value();
  for (ComboBox* box : {&cblimiordertype, &cblimitordersymbols, &CBlimitorderdis})
    box->set_enabled(!editing);
  cmdlimiorderdis.set_enabled(!editing);
  cmdcancel.set_enabled(true);
  // An existing order keeps its amount.
  txtlimitorderammount.set_enabled(!editing);
  txtatprice.set_enabled(!editing || !edit_->stops());
}

void frmlimitorder::clearFrmlimit() {
  cancel_editor();
  edit_.reset();
  set_edit_controls();
  hints_.tell_no_bounds();
  for (TextBox* box : {&txtlimitorderammount, &txtatprice, &txtsl, &txttp})
    box->set_text("");
  sltpprice();
  for (Row& row : lvwConClients)
    row.set_text(Column::amount, "");
  ticks_.reset();
}

void frmlimitorder::EdirMode(const EditRequest& request) {
  clearFrmlimit();
  edit_ = EntryEdit::of(request, cblimiordertype.items());
  if (!edit_) return;
  cblimiordertype.set_index(static_cast<int>(edit_->type));
  cblimitordersymbols.set_index(cblimitordersymbols.find(request.symbol));
  cblimitordersymbols_Click();
  set_edit_controls();

  // As many decimals as the lists have, since Submit compares texts.
  const int digits = market_.digits(5);
  const auto price = [&](double value) { return value == 0.0 ? "" : fixed_text(value, digits); };
  txtlimitorderammount.set_text(number_text(request.amount));
  if (!edit_->stops()) txtatprice.set_text(price(request.price));
  txtsl.set_text(price(request.stop_loss));
  txttp.set_text(price(request.take_profit));
  if (Row* row = rows_.find(request.account)) {
    EntryTicks::tick(*row);
    row->set_text(Column::amount, txtlimitorderammount.text());
  }
  cblimiordertype_Click();
  if (show) show();
}

void frmlimitorder::take_symbol(std::string_view name) {
  if (show) show();
  if (edit_) {
    return general_.message_box(std::string{"An order or position of "} + edit_->request.symbol +
                                " is being edited. Submit or cancel it before you choose " +
                                std::string{name});
  }
  hand_over(general_, cblimitordersymbols, name);
}

}  // namespace tutti
