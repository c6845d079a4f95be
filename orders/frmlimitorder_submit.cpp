// Submit of the entry order window.

#include <utility>

#include "core/numbers.h"
#include "orders/frmlimitorder.h"
#include "orders/symbol_choice.h"

namespace tutti {

void frmlimitorder::cmdsubmitlimiorder_Click() {
  if (!symbol_taken(general_, cblimitordersymbols)) return;
  cancel_editor();
  clearresult();
  if (!edit_ && !required_fields_filled()) return clearFrmlimit();
  if (rows_.shares().without > 0) return general_.message_box("Please distribute the amount first");
  if (!(edit_ && edit_->stops()) && !prices_accepted()) return;
  round_.begin();
  bool sent = false;
  const auto ask = [&] { sent = !edit_ ? send_new_orders() : edit_->stops() ? send_stops() : send_update(); };
  sessions_.as_one_ticket(
      ask, {.typed_total = edit_ ? 0.0 : general_.locale.StringToNumber(txtlimitorderammount.text())});
  if (sent) clearFrmlimit();
}

bool frmlimitorder::required_fields_filled() {
  if (CBlimitorderdis.index() < 0 || type() == EntryType::none || cblimitordersymbols.text().empty() ||
      txtatprice.text().empty() || txtlimitorderammount.text().empty()) {
    general_.message_box("Please fill the required fields");
    return false;
  }
  return *draft_.price() > 0.0;
}

bool frmlimitorder::prices_accepted() {
  const EntryDraft::Fault fault = draft_.fault();
  if (fault == EntryDraft::Fault::stop_loss) {
    general_.message_box("Invalid Price", type() == EntryType::buy_stop ? "Warning" : default_caption);
  }
  if (fault != EntryDraft::Fault::none && enter) enter(fault == EntryDraft::Fault::stop_loss ? txtsl : txttp);
  return fault == EntryDraft::Fault::none;
}

bool frmlimitorder::send_new_orders() {
  EntryOrder order = draft_.order();
  const bool any = lvwConClients.checked_count() > 0;
  for (Row& row : lvwConClients) {
    if (!row.checked()) continue;
    order.amount = row.cell(Column::amount).number();
    send(row, "Entry Order",
         cblimiordertype.text() + " " + number_text(order.amount) + " " + cblimitordersymbols.text(),
         order.price, [&](CClientAPIManager& session, int round, RequestGate::Then then) {
           order.symbol_id = session.GetIDByName(cblimitordersymbols.text());
           session.place_entry(order, market_.symbol(), round, std::move(then));
         });
  }
  if (!any) general_.message_box("No account selected");
  return any;
}

bool frmlimitorder::send_update() {
  Row* row = rows_.find(edited_account());
  if (row == nullptr || !row->checked()) {
    general_.message_box("No selected account");
    return false;
  }
  const double price = draft_.price().value_or(0.0);
  if (price <= 0.0) {
    general_.message_box("Please fill the required fields");
    return false;
  }
  send(*row, edit_order,
       "#" + std::to_string(edited()) + " " + cblimiordertype.text() + " " + edit_->request.symbol, price,
       [&](CClientAPIManager& session, int round, RequestGate::Then then) {
         session.update_entry(edited(), price, draft_.stops(), round, std::move(then));
       });
  return true;
}

bool frmlimitorder::send_stops() {
  const bool any = lvwConClients.checked_count() > 0;
  for (Row& row : lvwConClients) {
    if (!row.checked()) continue;
    send(row, edit_stops,
         "#" + std::to_string(edited()) + " " + std::string{edit_->side} + " " + edit_->request.symbol,
         edit_->request.price, [&](CClientAPIManager& session, int round, RequestGate::Then then) {
           session.set_stops(edited(), draft_.stops(), round, std::move(then));
         });
  }
  if (!any) general_.message_box("No account selected");
  return any;
}

void frmlimitorder::send(Row& row, std::string_view kind, std::string description, double price,
                         const EntryRound::Send& send) {
  round_.send(row, {kind, std::move(description), price, txtsl.text(), txttp.text()}, send);
}

}  // namespace tutti
