#include "orders/frmorder.h"

#include <algorithm>
#include <span>
#include <utility>

#include "orders/symbol_choice.h"

namespace tutti {
namespace {

using Answer = frmorder::Answer;
using Orders = std::span<const SentOrder* const>;

// The orders at the front that are of this account.
Orders of_one_account(Orders orders, std::int32_t account) {
  std::size_t count = 0;
  while (count < orders.size() && orders[count]->account == account)
    ++count;
  return orders.first(count);
}

// The answer of an account. It has more than one order when it is logged in under several user names: what is
// open counts before what is settled, and what was executed before what was not.
Answer combined(Orders own) {
  for (const Answer answer : {Answer::waiting, Answer::held, Answer::unknown, Answer::accepted}) {
    for (const SentOrder* order : own) {
      if (answer_from(order->outcome) == answer) return answer;
    }
  }
  return Answer::refused;
}

}  // namespace

frmorder::frmorder(MGeneral& general, frmMain& accounts_list, CClientAPIManagers& sessions,
                   SymbolCollection& symbols)
    : retry(general.clock, [this] { return round(); }),
      general_(general),
      accounts_list_(accounts_list),
      sessions_(sessions),
      symbols_(symbols) {
  CBdis.set_items({"Distribute as equal parts", "Distribute by margin Ratio", "Distribute by equity Ratio"});
  ColumnWidthsPer("20,12,67");
  Enableds(true);
  txtammount.on_key = [](std::int16_t key, const std::string& text) {
    return frmMain::askycodekeypress(key, text);
  };
  // What was distributed is the shares of another total now.
  txtammount.on_edited = [this] {
    Enableds(true);
    accounts_list_.clearammountfromlistview();
  };
  txtEditPrice.on_key = txtammount.on_key;
  txtLvw.on_key = txtammount.on_key;
  cbsymbols.on_choose = [this] { cbsymbols_Click(); };
  CBdis.on_choose = [this] { CBdis_Click(); };
  lvwConClients.on_tick = [this](Row& row) {
    row.data<RowData>().wanted = row.checked();
    rows_.ticked(row);
    rows_.forget_left_out();
    if (!row.checked()) put_back(row);
  };
  chkAllClients.on_click = [this] { chkAllClients_Click(); };
  LblCheck.on_click = [this] { LblCheck_Click(); };
  cmddis.on_click = [this] { cmddis_Click(); };
  cmdbuy.on_click = [this] { cmdbuy_Click(); };
  cmdsell.on_click = [this] { cmdsell_Click(); };
  symbols_changed();
}

void frmorder::ColumnWidthsPer(std::string widths) {
  column_widths_ = std::move(widths);
  lvwConClients.set_column_widths(column_widths_);
}

void frmorder::Add(std::int32_t account, std::string_view amount, double result) {
  Row* row = rows_.add(account, amount);
  if (row == nullptr) return;
  row->data<RowData>().wanted = rows_.came_back(*row);
  if (result != 0.0) row->set_number(Column::result_text, result);
}

void frmorder::UpdateResult(std::string_view text, std::int32_t account) {
  rows_.update_result(client_key(account), text);
}

void frmorder::updateAmount(std::int32_t, double amount, RowKey key) {
  rows_.update_amount(key, amount);
}

void frmorder::Remove(std::int32_t account) {
  rows_.remove(account);
}

void frmorder::addNote(Row& row, std::string_view text) {
  row.set_text(Column::result_text, text);
}

void frmorder::show_requote(std::int32_t account, std::string_view text) {
  Row* row = rows_.find(account);
  if (row == nullptr) return;
  if (!row->checked()) return put_back(*row);
  auto& data = row->data<RowData>();
  if (data.requote.empty() || !row->reads(Column::result_text, data.requote))
    data.before_requote = row->text(Column::result_text);
  data.requote = text;
  addNote(*row, text);
}

void frmorder::end_requote(std::int32_t account) {
  if (Row* row = rows_.find(account)) put_back(*row);
}

void frmorder::put_back(Row& row) {
  auto& data = row.data<RowData>();
  if (data.requote.empty()) return;
  if (row.reads(Column::result_text, data.requote)) row.set_text(Column::result_text, data.before_requote);
  data.requote.clear();
}

void frmorder::Enableds(bool distribute) {
  cmddis.set_enabled(distribute);
  cmdbuy.set_enabled(!distribute);
  cmdsell.set_enabled(!distribute);
}

void frmorder::set_price_box_off() {
  txtEditPrice.set_enabled(false);
  txtEditPrice.set_text("");
}

void frmorder::cbsymbols_Click() {
  for (Row& row : lvwConClients) {
    row.clear_cells(Column::amount, Column::result_text);
    row.data<RowData>().wanted = row.checked();
  }
  txtammount.set_text("");
  set_price_box_off();
  Enableds(true);
  accounts_list_.clearammountfromlistview();
}

void frmorder::CBdis_Click() {
  accounts_list_.clearammountfromlistview();
}

void frmorder::set_all_accounts_box(bool checked) {
  chkAllClients.set_checked(checked);
  LblCheck.set_text(checked ? "Uncheck all" : "Check all");
}

void frmorder::chkAllClients_Click() {
  set_price_box_off();
  set_all_accounts_box(chkAllClients.checked());
  rows_.forget_left_out();
  if (!chkAllClients.checked()) rows_.forget_ticks();
  for (Row& row : lvwConClients) {
    row.data<RowData>().wanted = chkAllClients.checked();
    if (!chkAllClients.checked()) {
      row.set_checked(false);
      row.set_text(Column::result_text, "");
      continue;
    }
    const SummaryAnswer answer = sessions_.summary_of(static_cast<std::int32_t>(row.key().number()));
    const bool known = answer.result == result::succeeded;
    row.set_checked(known && answer.values.equity > 0.0);
    rows_.ticked(row);
    if (row.checked()) continue;
    rows_.leave_out(row, known ? "No Balance" : CClientAPIManager::ResultDescription(answer.result));
  }
}

void frmorder::tick_all() {
  if (chkAllClients.checked() && lvwConClients.checked_count() == 0) return chkAllClients_Click();
  chkAllClients.click();
}

void frmorder::LblCheck_Click() {
  chkAllClients.click();
  LblCheck.set_text(chkAllClients.checked() ? "Uncheck All" : "Check All");
}

void frmorder::cmddis_Click() {
  set_price_box_off();
  if (txtammount.text().empty() || cbsymbols.text().empty()) {
    return general_.message_box("Please fill the required fields");
  }
  if (!symbol_taken(general_, cbsymbols)) return;
  const SymbolHandle chosen = symbols_.find(cbsymbols.text());
  symbol_ = chosen == no_symbol ? SymbolCollection::Entry{} : symbols_.entry(chosen);
  sent_ = false;
  for (Row& row : lvwConClients) {
    row.set_text(Column::result_text, "");
    row.data<RowData>().wanted = row.checked();
  }
  accounts_list_.Distribute(general_.locale.StringToNumber(txtammount.text()),
                            static_cast<std::int16_t>(CBdis.index()), symbol_);
}

void frmorder::cmdbuy_Click() {
  send(&CClientAPIManagers::BuyFunction);
}

void frmorder::cmdsell_Click() {
  accounts_list_.empty_notes();
  send(&CClientAPIManagers::SellFunction);
}

void frmorder::send(void (CClientAPIManagers::*function)()) {
  if (cbsymbols.text().empty()) return general_.message_box("Please fill the required fields");
  if (!symbol_taken(general_, cbsymbols)) return;
  set_price_box_off();
  // Before anything is sent, so that each distribution goes out once.
  Enableds(true);
  requests_refused_ = 0;
  sent_ = true;
  before_ = sessions_.requests().last_id();
  (sessions_.*function)();
}

std::optional<double> frmorder::ticked_share(std::int32_t account) const {
  const Row* row = account_row(account);
  if (row == nullptr || !row->checked()) return std::nullopt;
  const Cell& amount = row->cell(Column::amount);
  // Distribute has rounded what it put there: its text reads the same, and needs not be made for each
  // account.
  return amount.is_number() ? amount.stored_number() : amount.number();
}

void frmorder::request_ended(std::int32_t, RequestCode) {
  ++requests_refused_;
}

std::vector<const SentOrder*> frmorder::round() const {
  if (!sent_) return {};
  const Orders all = sessions_.last_fan_out();
  return {all.begin(), all.end()};
}

frmorder::Answer frmorder::answer_of(const Row& row) const {
  if (sent_) {
    const auto number = static_cast<std::int32_t>(row.key().number());
    const Orders all = sessions_.last_fan_out();
    const auto first =
        std::lower_bound(all.begin(), all.end(), number,
                         [](const SentOrder* order, auto wanted) { return order->account < wanted; });
    const Orders own = of_one_account({first, all.end()}, number);
    if (!own.empty()) return combined(own);
  }
  const auto* data = row.data_if<RowData>();
  return data != nullptr && data->wanted && !row.checked() ? Answer::left_out : Answer::none;
}

frmorder::Answers frmorder::answers() const {
  Answers out;
  Orders rest = sent_ ? sessions_.last_fan_out() : Orders{};
  out.unknown_before = sessions_.unknown([this](const SentOrder& order) { return is_of_before(order); });
  while (!rest.empty()) {
    const Orders own = of_one_account(rest, rest.front()->account);
    rest = rest.subspan(own.size());
    out.count(combined(own));
  }
  return out;
}

int frmorder::unknown_before(const Row& row) const {
  return sessions_.unknown(static_cast<std::int32_t>(row.key().number()),
                           [this](const SentOrder& order) { return is_of_before(order); });
}

bool frmorder::is_of_before(const SentOrder& order) const {
  return order.kind == RequestKind::open && (!sent_ || order.id <= before_);
}

void frmorder::take_symbol(std::string_view name) {
  if (show) show();
  hand_over(general_, cbsymbols, name);
}

}  // namespace tutti
