#include "orders/frmlimitorder.h"

#include <utility>

#include "accounts/distribution.h"
#include "core/numbers.h"
#include "core/texts.h"
#include "orders/symbol_choice.h"

namespace tutti {

frmlimitorder::frmlimitorder(MGeneral& general, frmMain& accounts_list, SymbolCollection& symbols)
    : general_(general), accounts_list_(accounts_list), symbols_(symbols) {
  cblimiordertype.set_items({"Buy Limit", "Sell Limit", "Buy Stop", "Sell Stop"});
  CBlimitorderdis.set_items(
      {"Distribute as equal parts", "Distribute by margin Ratio", "Distribute by equity Ratio"});
  txtLvw.set_visible(false);
  Form_Load();
  for (TextBox* box : {&txtlimitorderammount, &txtatprice, &txtsl, &txttp, &txtEditPrice})
    box->on_key = checkkey;
  for (TextBox* box : {&txtlimitorderammount, &txtsl, &txttp})
    box->on_edited = [this] { sltpprice(); };
  txtatprice.on_edited = [this] {
    limitorderpricechange();
    sltpprice();
  };
  cblimitordersymbols.on_choose = [this] { cblimitordersymbols_Click(); };
  cblimiordertype.on_choose = [this] { cblimiordertype_Click(); };
  lvwConClients.on_tick = [this](Row& row) { ticked(row); };
  chkAllClients.on_click = [this] { chkAllClients_Click(); };
  LblCheck.on_click = [this] { LblCheck_Click(); };
  cmdlimiorderdis.on_click = [this] { Distribute(); };
  cmdsubmitlimiorder.on_click = [this] { cmdsubmitlimiorder_Click(); };
  cmdcancel.on_click = [this] { cmdcancel_Click(); };
  symbols_changed();
}

void frmlimitorder::ColumnWidthsPer(std::string widths) {
  column_widths_ = std::move(widths);
  general_.column_widths(lvwConClients, column_widths_);
}

void frmlimitorder::Displayed(bool displayed) {
  Displayable::Displayed(displayed);
  if (!displayed) return;
  if (cblimiordertype.index() < 0) cblimiordertype.set_index(0);
  // While something is edited, no symbol but its own belongs here.
  if (!editing_ && cblimitordersymbols.index() < 0) cblimitordersymbols.set_index(0);
  cblimitordersymbols_Click();
}

void frmlimitorder::Add(std::int32_t number) {
  Row* row = rows_.add(number, "");
  if (row == nullptr) return;
  row->data<RowData>().wanted = rows_.came_back(*row);
  offsets_stale_ = true;
}

void frmlimitorder::remove_account(std::int32_t number) {
  Remove(number);
  offsets_stale_ = true;
}

void frmlimitorder::clearresult() {
  for (Row& row : lvwConClients)
    row.set_text(Column::result_text, "");
}

void frmlimitorder::uncheckall() {
  for (Row& row : lvwConClients) {
    row.set_checked(false);
    row.data<RowData>().wanted = false;
  }
  rows_.forget_ticks();
}

void frmlimitorder::symbols_changed() {
  cblimitordersymbols.set_items(symbols_.names());
  symbol_ = symbols_.find(cblimitordersymbols.text());
  offsets_stale_ = true;
}

void frmlimitorder::distribute_available() {
  cmdlimiorderdis.set_enabled(!editing_);
  cmdsubmitlimiorder.set_enabled(true);
}

std::vector<std::int32_t> frmlimitorder::accounts() const {
  std::vector<std::int32_t> out;
  for (const Row& row : lvwConClients)
    out.push_back(static_cast<std::int32_t>(row.key().number()));
  return out;
}

void frmlimitorder::cblimitordersymbols_Click() {
  rows_.remove_if([&](const Row& row) {
    return !account_book().connected(static_cast<std::int32_t>(row.key().number()));
  });
  symbol_ = symbols_.find(cblimitordersymbols.text());
  offsets_stale_ = true;
  limitorderpricechange();
  sltpprice();
}

void frmlimitorder::cblimiordertype_Click() {
  limitorderpricechange();
  sltpprice();
}

void frmlimitorder::chkAllClients_Click() {
  const bool checked = chkAllClients.checked();
  LblCheck.set_text(checked ? "Uncheck All" : "Check All");
  if (!checked) return uncheckall();
  for (Row& row : lvwConClients) {
    row.set_checked(true);
    ticked(row);
  }
}

void frmlimitorder::ticked(Row& row) {
  row.data<RowData>().wanted = row.checked();
  rows_.ticked(row);
}

void frmlimitorder::tick_all() {
  if (chkAllClients.checked() && lvwConClients.checked_count() == 0) return chkAllClients_Click();
  chkAllClients.click();
}

void frmlimitorder::LblCheck_Click() {
  chkAllClients.click();
}

void frmlimitorder::prices(SymbolHandle symbol, const Symbol&) {
  if (symbol != symbol_ || !Displayed()) return;
  // Every account tells the same price.
  const SymbolCollection::Entry& now = symbols_.entry(symbol);
  if (now.bid != market_.bid || now.ask != market_.ask || offsets_stale_) limitorderpricechange();
}

void frmlimitorder::look_up_offsets() {
  if (!std::exchange(offsets_stale_, false)) return;
  const std::string& symbol = cblimitordersymbols.text();
  market_.limit_offset = accounts_list_.sessions().Limit_Offset(symbol);
  market_.stop_offset = accounts_list_.sessions().Stop_Offset(symbol);
}

std::optional<double> frmlimitorder::typed(const TextBox& box) const {
  return box.text().empty() ? std::nullopt : std::optional{number(box)};
}

std::optional<PriceConditions> frmlimitorder::conditions() const {
  if (mode_ == edit_stops) return position_conditions(side_, market_);
  return entry_conditions(type(), market_, typed(txtatprice));
}

void frmlimitorder::limitorderpricechange() {
  if (cblimitordersymbols.index() < 0 || symbol_ == no_symbol) return;
  look_up_offsets();
  const SymbolCollection::Entry& now = symbols_.entry(symbol_);
  market_.bid = now.bid;
  market_.ask = now.ask;
  if (const auto told = conditions()) write(*told);
}

void frmlimitorder::write(const PriceConditions& shown) {
  const int digits = symbol_ == no_symbol ? 0 : symbols_.entry(symbol_).digits;
  const auto price = [digits](std::string_view sign, double bound) {
    return sign.empty() ? std::string{} : bound_text(bound, digits);
  };
  lblpricecondition.set_text(shown.price_sign);
  lblcondition.set_text(price(shown.price_sign, shown.price_limit));
  lblslcondition.set_text(shown.stop_loss_sign);
  lbltpcondition.set_text(shown.take_profit_sign);
  lblslbound.set_text(price(shown.stop_loss_sign, shown.stop_loss_bound));
  lbltpbound.set_text(price(shown.take_profit_sign, shown.take_profit_bound));
}

std::string frmlimitorder::brings(std::string_view tag, const TextBox& box) const {
  const auto price = typed(box);
  const double at_price = mode_ == edit_stops ? edit_.price : number(txtatprice);
  const CClientAPIManager* first = accounts_list_.sessions().Item(1);
  if (!price || at_price <= 0.0 || first == nullptr || symbol_ == no_symbol) return {};
  // What is not known is not 0.
  if (!first->ClientAPIF().LoggedIn() || first->symbol_id(symbol_) == 0) return {};
  double of_one_lot = 0.0;
  first->ClientAPIF().EvaluateSLTPPrice(first->symbol_id(symbol_), at_price, tag, *price, of_one_lot);
  const bool sold = mode_ == edit_stops ? side_ == "Sell"
                                        : type() == EntryType::sell_limit || type() == EntryType::sell_stop;
  return summary_text(of_one_lot * number(txtlimitorderammount) * (sold ? -1.0 : 1.0));
}

void frmlimitorder::sltpprice() {
  lblslchanged.set_text(brings(evaluate::stop_loss, txtsl));
  lbltpchanged.set_text(brings(evaluate::take_profit, txttp));
}

void frmlimitorder::Distribute() {
  if (!symbol_taken(general_, cblimitordersymbols)) return;
  begin_round();
  for (Row& row : lvwConClients)
    row.data<RowData>().wanted = row.checked();
  Distribution{general_, accounts_list_.sessions(), *this}.run(
      number(txtlimitorderammount), static_cast<std::int16_t>(CBlimitorderdis.index()),
      cblimitordersymbols.text());
}

void frmlimitorder::set_edit_controls(bool editing) {
  editing_ = editing;
  for (ComboBox* box : {&cblimiordertype, &cblimitordersymbols, &CBlimitorderdis})
    box->set_enabled(!editing);
  cmdlimiorderdis.set_enabled(!editing);
  cmdcancel.set_enabled(true);
  // An existing order keeps its amount.
  txtlimitorderammount.set_enabled(!editing);
  txtatprice.set_enabled(!editing || mode_ != edit_stops);
}

void frmlimitorder::clearFrmlimit() {
  cancel_editor();
  mode_.clear();
  side_.clear();
  edit_ = {};
  set_edit_controls(false);
  write({});
  for (TextBox* box : {&txtlimitorderammount, &txtatprice, &txtsl, &txttp})
    box->set_text("");
  sltpprice();
  chkAllClients.set_checked(false);
  LblCheck.set_text("Check All");
  for (Row& row : lvwConClients)
    row.set_text(Column::amount, "");
  uncheckall();
}

void frmlimitorder::EdirMode(const EditRequest& request) {
  clearFrmlimit();
  const std::string wanted = upper(request.type_text);
  int type_index = -1;
  if (wanted == "SELL(MANAGE)" || wanted == "BUY(MANAGE)") {
    const bool bought = wanted == "SELL(MANAGE)";  // what is managed by a sale was bought
    mode_ = edit_stops;
    side_ = bought ? "Buy" : "Sell";
    type_index = cblimiordertype.find(bought ? "Buy Limit" : "Sell Limit");
  } else {
    for (std::size_t i = 0; i < cblimiordertype.items().size(); ++i) {
      if (upper(cblimiordertype.items()[i]) == wanted) type_index = static_cast<int>(i);
    }
    if (type_index < 0) return cmdcancel_Click();
    mode_ = edit_order;
  }
  edit_ = request;
  cblimiordertype.set_index(type_index);
  cblimitordersymbols.set_index(cblimitordersymbols.find(request.symbol));
  cblimitordersymbols_Click();
  set_edit_controls(true);

  // As many decimals as the lists have, since Submit compares texts.
  const int digits = symbol_ == no_symbol ? 5 : symbols_.entry(symbol_).digits;
  const auto price = [&](double value) { return value == 0.0 ? "" : fixed_text(value, digits); };
  txtlimitorderammount.set_text(number_text(request.amount));
  if (mode_ == edit_order) txtatprice.set_text(price(request.price));
  txtsl.set_text(price(request.stop_loss));
  txttp.set_text(price(request.take_profit));
  if (Row* row = rows_.find(request.account)) {
    row->set_checked(true);
    row->data<RowData>().wanted = true;
    row->set_text(Column::amount, txtlimitorderammount.text());
  }
  limitorderpricechange();
  sltpprice();
  if (show) show();
}

void frmlimitorder::take_symbol(std::string_view name) {
  if (show) show();
  if (editing_) {
    return general_.message_box(std::string{"An order or position of "} + edit_.symbol +
                                " is being edited. Submit or cancel it before you choose " +
                                std::string{name});
  }
  hand_over(general_, cblimitordersymbols, name);
}

PriceSketch frmlimitorder::sketch() const {
  PriceSketch out;
  if (symbol_ == no_symbol) return out;
  const auto known = [](double price) { return price > 0.0 ? std::optional{price} : std::nullopt; };
  const SymbolCollection::Entry& now = symbols_.entry(symbol_);
  out.digits = now.digits;
  out.bid = known(now.bid);
  out.ask = known(now.ask);
  out.entry = known(mode_ == edit_stops ? edit_.price : number(txtatprice));
  out.stop_loss = known(number(txtsl));
  out.take_profit = known(number(txttp));
  const auto told = conditions();
  if (!told || !out.bid || !out.ask) return out;
  out.price_sign = told->price_sign;
  if (!told->price_sign.empty()) out.price_limit = told->price_limit;
  out.stop_loss_bound = told->stop_loss_bound;
  out.take_profit_bound = told->take_profit_bound;
  return out;
}

OrderAnswer frmlimitorder::answer_of(const Row& row) const {
  const auto at = answers_.find(static_cast<std::int32_t>(row.key().number()));
  if (at != answers_.end()) return at->second;
  const auto* data = row.data_if<RowData>();
  return data != nullptr && data->wanted && !row.checked() ? OrderAnswer::left_out : OrderAnswer::none;
}

OrderAnswers frmlimitorder::answers() const {
  OrderAnswers out;
  for (const auto& [number, answer] : answers_)
    out.count(answer);
  return out;
}

}  // namespace tutti
