#include "views/frmPending.h"

#include <algorithm>
#include <utility>

#include "core/texts.h"
#include "views/lot_sums.h"

namespace tutti {

frmPending::frmPending(MGeneral& general, CClientAPIManagers& sessions)
    : general_(general), sessions_(sessions) {
  ColumnWidthsPer("");
  lvwPending.set_column_tip(Column::time, server_time_tip);
  lvwPending.on_activate = [this](Row& row) { edit(row); };
  lbbCancel.on_click = [this] { CloseIoID(); };
}

void frmPending::ColumnWidthsPer(std::string widths) {
  column_widths_ = std::move(widths);
  general_.column_widths(lvwPending, column_widths_);
}

std::int32_t frmPending::account_of(const Row& row) {
  return static_cast<std::int32_t>(row.cell(Column::account).stored_number());
}

int frmPending::digits(std::int32_t number, std::string_view name) const {
  const CClientAPIManager* session = sessions_.logged_in(number);
  const Symbol* record = session == nullptr ? nullptr : session->ClientAPIF().SymbolRecord(name);
  return record == nullptr ? 5 : record->digits;
}

Row& frmPending::Add(std::int64_t number, std::int32_t account_number) {
  const RowKey key = order_key(number, account_number);
  Row* row = lvwPending.find(key);
  if (row == nullptr) row = lvwPending.add(key);
  row->set_whole(Column::order_number, number);
  Updateaccount(*row, account_number);
  return *row;
}

void frmPending::Updateaccount(Row& row, std::int32_t number) {
  row.set_number(Column::account, number);
}

void frmPending::UpdateSlTp(Row& row, double stop, double profit, int decimals) {
  row.set_fixed_or_empty(Column::stop_loss, stop, decimals);
  row.set_fixed_or_empty(Column::take_profit, profit, decimals);
}

void frmPending::AddOrder(const PendingOrder& order) {
  Row& row = Add(order.order, order.account);
  const int decimals = digits(order.account, order.symbol);
  row.set_text(Column::type, TypeDesc(order.kind, order.reference));
  row.set_number(Column::amount, order.amount);
  row.set_text(Column::symbol, order.symbol);
  row.set_fixed(Column::price, order.price, decimals);
  UpdateSlTp(row, order.stop_loss, order.take_profit, decimals);
  row.set_text(Column::time, general_.full_time_text(order.time));
  auto& data = row.data<RowData>();
  data.kind = order.kind;
  data.operation = order.operation;
  data.reference = order.reference;
}

void frmPending::Removeorder(std::int64_t number, std::int32_t of_account) {
  if (Row* row = lvwPending.find(order_key(number, of_account))) Remove(*row);
}

void frmPending::removeClientinfo(std::int32_t number, const Numbers& kept) {
  lvwPending.remove_if(
      [&](const Row& row) { return row.key().account() == number && !kept.contains(row.key().number()); });
}

void frmPending::order_text(std::int64_t number, std::int32_t of_account, std::string_view text) {
  if (Row* row = lvwPending.find(order_key(number, of_account))) row->data<RowData>().note = text;
}

std::string frmPending::note(const Row& row) {
  const auto* data = row.data_if<RowData>();
  return data == nullptr ? std::string{} : data->note;
}

std::string frmPending::TypeDesc(std::string_view kind, std::int64_t reference) {
  const std::string ticket = std::to_string(reference);
  if (kind == "OP") return "New";
  if (kind == "CP") return "Liq (" + ticket + ")";
  if (kind == "LO") return "Limit/Stop";
  if (kind == "ST") return "SL/TP (" + ticket + ")";
  return "";
}

std::string frmPending::OrderTypeDesc(std::string_view kind, std::int32_t op) {
  if (kind == "ST") return op > 0 ? "Buy(Manage)" : "Sell(Manage)";
  if (kind != "LO") return "";
  switch (op) {
    case operation::buy:
      return "Buy limit";
    case operation::sell:
      return "Sell limit";
    case operation::buy_stop:
      return "Buy stop";
    case operation::sell_stop:
      return "Sell stop";
    default:
      return "";
  }
}

std::int32_t frmPending::side(const Row& row) {
  const auto* data = row.data_if<RowData>();
  if (data == nullptr || data->operation == 0) return 0;
  // Of a close it is the side of the position.
  return (data->operation > 0) == (data->kind != "CP") ? operation::buy : operation::sell;
}

std::string frmPending::side_text(const Row& row) {
  const std::int32_t does = side(row);
  if (does == 0) return {};
  const auto& data = *row.data_if<RowData>();
  if (data.kind == "LO") return OrderTypeDesc(data.kind, data.operation);
  std::string out = does == operation::buy ? "Buy" : "Sell";
  if (data.kind == "OP") return out + " at market";
  const char* position = does == operation::buy ? " a sold position" : " a bought position";
  return out + (data.kind == "CP" ? ", closes" : ", SL/TP of") + position;
}

frmPending::Category frmPending::OrderType(std::string_view type_text) {
  const std::string text = upper(type_text);
  if (text.starts_with("NEW") || text.starts_with("LIQ")) return in_dealing;
  return text.starts_with("SL/TP") ? stops_of_position : limit_or_stop;
}

void frmPending::edit(const Row& row) {
  const std::string name = row.text(Column::symbol);
  const auto sessions = sessions_.Children();
  const bool visible = std::any_of(sessions.begin(), sessions.end(), [&](const auto& session) {
    return sessions_.Check_Visibility(name, session->account());
  });
  if (!visible) return general_.message_box(name + " is not visible for any of the connected accounts");
  const auto* data = row.data_if<RowData>();
  if (data == nullptr || !EdirMode) return;
  const bool stops = OrderType(row.text(Column::type)) == stops_of_position;
  EdirMode({.mode = stops ? "SLTP " : "Limit Orders",
            .type_text = OrderTypeDesc(data->kind, data->operation),
            .symbol = name,
            .account = account_of(row),
            .number = stops ? data->reference : row.key().number(),
            .amount = row.cell(Column::amount).number(),
            .price = row.cell(Column::price).number(),
            .stop_loss = row.cell(Column::stop_loss).number(),
            .take_profit = row.cell(Column::take_profit).number()});
}

std::vector<frmPending::Cancel> frmPending::ticked() const {
  std::vector<Cancel> out;
  for (const Row& row : lvwPending) {
    const auto* data = row.data_if<RowData>();
    if (row.checked() && data != nullptr) out.push_back({row.key().number(), account_of(row), data->kind});
  }
  return out;
}

std::int32_t frmPending::send(const Cancel& cancel) {
  CClientAPIManager* session = sessions_.logged_in(cancel.account);
  if (session == nullptr) return request::invalid_account;
  return session->cancel_order(cancel.order, cancel.kind == "ST").request_code;
}

void frmPending::CloseIoID() {
  if (ticked().empty()) return general_.message_box("No selected orders");
  constexpr int yes = 1;
  LotSums sums{"order"};
  for (const Row& row : lvwPending)
    if (row.checked()) sums.add(row.text(Column::symbol), row.cell(Column::amount).number());
  if (general_.msg_box.GeneralQuestionMsg("Are you sure you want to cancel selected order(s)?",
                                          sums.text()) != yes)
    return;
  int refused = 0;
  // Read again after the question, and whole before the first request, since events go on.
  const std::vector<Cancel> orders = ticked();
  for (const Cancel& cancel : orders) {
    std::string why;
    if (cancel.kind != "LO" && cancel.kind != "ST") {
      why = "it is in dealing";
    } else if (const std::int32_t code = send(cancel); code != request::taken) {
      const std::string_view text = trim(request::text(code));
      why = text.empty() ? "request code " + std::to_string(code) : std::string{text};
    }
    if (why.empty()) continue;
    ++refused;
    general_.log("Unable to cancel order #" + std::to_string(cancel.order) + ", account " +
                     std::to_string(cancel.account) + ": " + why,
                 cancel.account);
  }
  if (refused > 0) {
    general_.message_box(std::to_string(refused) + " of " + std::to_string(orders.size()) +
                         " orders could not be cancelled; the journal has the reasons");
  }
}

}  // namespace tutti
