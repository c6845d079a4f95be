// Submit of the entry order window, and what becomes of what it sent.

#include <utility>

#include "core/numbers.h"
#include "core/texts.h"
#include "orders/frmlimitorder.h"
#include "orders/symbol_choice.h"
#include "sessions/result_texts.h"

namespace tutti {

void frmlimitorder::cmdsubmitlimiorder_Click() {
  if (!symbol_taken(general_, cblimitordersymbols)) return;
  cancel_editor();
  clearresult();
  if (!editing_ && !required_fields_filled()) return clearFrmlimit();
  if (!every_share_there()) return general_.message_box("Please distribute the amount first");
  if (mode_ != edit_stops && !prices_accepted()) return;
  begin_round();
  const bool sent = mode_ == edit_order   ? send_update()
                    : mode_ == edit_stops ? send_stops()
                                          : send_new_orders();
  if (sent) clearFrmlimit();
}

bool frmlimitorder::required_fields_filled() {
  if (CBlimitorderdis.index() < 0 || type() == EntryType::none || cblimitordersymbols.text().empty() ||
      txtatprice.text().empty() || txtlimitorderammount.text().empty()) {
    general_.message_box("Please fill the required fields");
    return false;
  }
  return number(txtatprice) > 0.0;
}

bool frmlimitorder::every_share_there() {
  for (const Row& row : lvwConClients) {
    if (row.checked() && row.text(Column::amount).empty()) return false;
  }
  return true;
}

frmlimitorder::Check frmlimitorder::check_stops() const {
  // Texts by their characters' codes, as they stand in the boxes: "10.5" comes before "9.8". Only the take
  // profit of a Sell Limit is a number.
  const std::string &at = txtatprice.text(), &sl = txtsl.text(), &tp = txttp.text();
  const bool buy = type() == EntryType::buy_limit || type() == EntryType::buy_stop;
  if (!sl.empty() && !(buy ? sl < at : sl > at)) return Check::stop_loss_bad;
  if (tp.empty()) return Check::good;
  const bool good = buy                               ? tp > at
                    : type() == EntryType::sell_limit ? number(txttp) <= number(txtatprice)
                                                      : tp < at;
  return good ? Check::good : Check::take_profit_bad;
}

bool frmlimitorder::prices_accepted() {
  const Check check = check_stops();
  if (check == Check::stop_loss_bad) {
    general_.message_box("Invalid Price", type() == EntryType::buy_stop ? "Warning" : default_caption);
  }
  if (check != Check::good && enter) enter(check == Check::stop_loss_bad ? txtsl : txttp);
  return check == Check::good;
}

StopPrices frmlimitorder::stop_prices() const {
  const auto stop_loss = typed(txtsl), take_profit = typed(txttp);
  return {.stop_loss = stop_loss.value_or(0.0),
          .take_profit = take_profit.value_or(0.0),
          .has_stop_loss = stop_loss.has_value(),
          .has_take_profit = take_profit.has_value()};
}

void frmlimitorder::begin_round() {
  ++round_;
  answers_.clear();
}

bool frmlimitorder::send_new_orders() {
  const EntryType kind = type();
  const StopPrices stops = stop_prices();
  EntryOrder order{
      .side = kind == EntryType::buy_limit || kind == EntryType::buy_stop ? operation::buy : operation::sell,
      .kind =
          kind == EntryType::buy_limit || kind == EntryType::sell_limit ? EntryKind::limit : EntryKind::stop,
      .price = number(txtatprice),
      .stop_loss = stops.stop_loss,
      .take_profit = stops.take_profit,
      .has_stop_loss = stops.has_stop_loss,
      .has_take_profit = stops.has_take_profit};
  bool any = false;
  for (Row& row : lvwConClients) {
    if (!row.checked()) continue;
    any = true;
    order.amount = row.cell(Column::amount).number();
    send(row, "Entry Order",
         cblimiordertype.text() + " " + number_text(order.amount) + " " + cblimitordersymbols.text(),
         order.price, [&](CClientAPIManager& session) {
           order.symbol_id = session.GetIDByName(cblimitordersymbols.text());
           return session.place_entry(order, symbol_, round_).request_code;
         });
  }
  if (!any) general_.message_box("No account selected");
  return any;
}

bool frmlimitorder::send_update() {
  Row* row = rows_.find(edit_.account);
  if (row == nullptr || !row->checked()) {
    general_.message_box("No selected account");
    return false;
  }
  const double price = number(txtatprice);
  if (price <= 0.0) {
    general_.message_box("Please fill the required fields");
    return false;
  }
  send(*row, edit_order,
       "#" + std::to_string(edit_.number) + " " + cblimiordertype.text() + " " + edit_.symbol, price,
       [&](CClientAPIManager& session) {
         return session.update_entry(edit_.number, price, stop_prices(), round_).request_code;
       });
  return true;
}

bool frmlimitorder::send_stops() {
  bool any = false;
  for (Row& row : lvwConClients) {
    if (!row.checked()) continue;
    any = true;
    send(row, edit_stops, "#" + std::to_string(edit_.number) + " " + side_ + " " + edit_.symbol, edit_.price,
         [&](CClientAPIManager& session) {
           return session.set_stops(edit_.number, stop_prices(), round_).request_code;
         });
  }
  if (!any) general_.message_box("No account selected");
  return any;
}

void frmlimitorder::send(Row& row, std::string_view kind, const std::string& description, double price,
                         const std::function<RequestCode(CClientAPIManager&)>& send) {
  const auto number = static_cast<std::int32_t>(row.key().number());
  auto& data = row.data<RowData>();
  data.stop_loss = txtsl.text();
  data.take_profit = txttp.text();
  data.description = description;
  data.price = price;
  data.round = round_;
  CClientAPIManager* session = accounts_list_.sessions().logged_in(number);
  const RequestCode code = session == nullptr ? request::invalid_account : send(*session);
  answers_[number] = code == request::taken ? OrderAnswer::waiting : OrderAnswer::refused;
  // SL/TP that are taken are journaled when they are carried out.
  if (code == request::taken && kind == edit_stops) return;
  const std::string text =
      accounts_list_.Result(code, number, kind, description, price, data.stop_loss, data.take_profit);
  // A refusal without a text is counted and nothing more.
  if (code == request::taken || text.empty()) return;
  addNote(row, text);
  general_.log("Request " + std::string{trim(kind)} + " " + description + " at " + number_text(price) +
                   " was not taken: " + text,
               number);
}

void frmlimitorder::request_settled(const SentOrder& order, std::int32_t number) {
  const auto at = answers_.find(number);
  if (order.round == round_ && at != answers_.end()) at->second = answer_from(order.outcome);
  Row* row = rows_.find(number);
  if (row == nullptr) return;
  // Of an update some refusals say nothing.
  if (order.kind == RequestKind::update && order.outcome == SentOrder::Outcome::refused &&
      result_texts::update_entry(order.result_code).empty())
    return addNote(*row, "");
  // Handlers that have a text of their own write it over this one.
  addNote(*row, order.outcome == SentOrder::Outcome::unknown
                    ? "unknown"
                    : CClientAPIManager::ResultDescription(order.result_code));
  auto& data = row->data<RowData>();
  if (order.kind == RequestKind::stops && order.round == data.round)
    data.stops_done = order.outcome == SentOrder::Outcome::accepted;
}

void frmlimitorder::ManageSuccSLTPResult(std::int64_t, std::int32_t number) {
  Row* row = rows_.find(number);
  if (row == nullptr) return;
  auto& data = row->data<RowData>();
  if (!std::exchange(data.stops_done, false)) return;
  addNote(*row, accounts_list_.Result(request::taken, number, edit_stops, data.description, data.price,
                                      data.stop_loss, data.take_profit));
}

}  // namespace tutti
