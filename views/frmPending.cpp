#include "views/frmPending.h"

#include <algorithm>
#include <utility>

#include "core/numbers.h"
#include "core/texts.h"
#include "core/time_texts.h"
#include "sessions/gate_texts.h"
#include "views/lot_sums.h"

namespace tutti {
namespace {

std::string why_refused(RequestCode code) {
  const std::string_view text = trim(request::text(code));
  return text.empty() ? "request code " + std::to_string(format_as(code)) : std::string{text};
}

}  // namespace

frmPending::frmPending(MGeneral& general, CClientAPIManagers& sessions, const OrderBook& book)
    : general_(general), sessions_(sessions), book_(book) {
  ColumnWidthsPer("");
  lvwPending.set_column_tip(Column::time, server_time_tip);
  lvwPending.set_make_cells([this](Row& row) { make_cells(row); });
  lvwPending.on_activate = [this](Row& row) { edit(row); };
  lbbCancel.on_click = [this] { CloseIoID(); };
}

void frmPending::ColumnWidthsPer(std::string widths) {
  column_widths_ = std::move(widths);
  lvwPending.set_column_widths(column_widths_);
}

Row& frmPending::Add(const Record& order) {
  const RowKey key = order_key(order.order, order.account);
  Row* row = lvwPending.find(key);
  return row != nullptr ? *row : *lvwPending.add(key);
}

void frmPending::Updateaccount(Row& row, std::int32_t account) {
  row.set_number(Column::account, account);
}

void frmPending::UpdateSlTp(Row& row, double stop_loss, double take_profit, int decimals) {
  row.set_fixed_or_empty(Column::stop_loss, stop_loss, decimals);
  row.set_fixed_or_empty(Column::take_profit, take_profit, decimals);
}

void frmPending::make_cells(Row& row) const {
  const Record* order = record_of(row);
  if (order == nullptr) return;
  row.set_whole(Column::order_number, order->order);
  Updateaccount(row, order->account);
  row.set_text(Column::type, TypeDesc(order->kind, order->reference));
  row.set_number(Column::amount, order->amount);
  row.set_text(Column::symbol, order->symbol);
  row.set_fixed(Column::price, order->price, order->digits);
  UpdateSlTp(row, order->stop_loss, order->take_profit, order->digits);
  row.set_text(Column::time, full_time_text(order->time));
}

void frmPending::Remove(const Record& order) {
  if (Row* row = lvwPending.find(order_key(order.order, order.account))) lvwPending.remove(*row);
}

void frmPending::removeClientinfo(std::span<const Record> gone) {
  for (const Record& order : gone)
    Remove(order);
}

void frmPending::Removeorder(std::int64_t order, std::int32_t account) {
  if (CClientAPIManager* session = sessions_.by_account(account)) session->order_ended(order);
}

void frmPending::order_text(std::int64_t order, std::int32_t account, std::string_view text) {
  if (Row* row = lvwPending.find(order_key(order, account))) row->data<RowData>().note = text;
}

std::string frmPending::note(const Row& row) {
  const auto* data = row.data_if<RowData>();
  return data == nullptr ? std::string{} : data->note;
}

std::string frmPending::TypeDesc(OrderKind kind, std::int64_t reference) {
  switch (kind) {
    case OrderKind::open:
      return "New";
    case OrderKind::close:
      return "Liq (" + std::to_string(reference) + ")";
    case OrderKind::entry:
      return "Limit/Stop";
    case OrderKind::stops:
      return "SL/TP (" + std::to_string(reference) + ")";
    case OrderKind::none:
      break;
  }
  return "";
}

std::string frmPending::OrderTypeDesc(OrderKind kind, Operation operation) {
  if (kind == OrderKind::stops) return buys(operation) ? "Buy(Manage)" : "Sell(Manage)";
  if (kind != OrderKind::entry) return "";
  switch (operation) {
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

Operation frmPending::side(const Record& order) {
  if (order.operation == Operation::none) return Operation::none;
  // Of a close it is the side of the position.
  return buys(order.operation) == (order.kind != OrderKind::close) ? operation::buy : operation::sell;
}

std::string frmPending::side_text(const Record& order) {
  const Operation does = side(order);
  if (does == Operation::none) return {};
  if (order.kind == OrderKind::entry) return OrderTypeDesc(order.kind, order.operation);
  std::string out = does == operation::buy ? "Buy" : "Sell";
  if (order.kind == OrderKind::open) return out + " at market";
  const char* position = does == operation::buy ? " a sold position" : " a bought position";
  return out + (order.kind == OrderKind::close ? ", closes" : ", SL/TP of") + position;
}

frmPending::Category frmPending::OrderType(std::string_view type_text) {
  const std::string text = upper(type_text);
  if (text.starts_with("NEW") || text.starts_with("LIQ")) return in_dealing;
  return text.starts_with("SL/TP") ? stops_of_position : limit_or_stop;
}

void frmPending::edit(const Row& row) {
  const Record* order = record_of(row);
  if (order == nullptr) return;
  const auto sessions = sessions_.Children();
  const bool visible = std::any_of(sessions.begin(), sessions.end(), [&](const auto& session) {
    return sessions_.Check_Visibility(order->symbol, session->account());
  });
  if (!visible)
    return general_.message_box(order->symbol + " is not visible for any of the connected accounts");
  if (!EdirMode) return;
  const bool stops = OrderType(TypeDesc(order->kind, order->reference)) == stops_of_position;
  const auto price = [&](double value) { return as_fixed_reads(value, order->digits); };
  EdirMode({.mode = stops ? "SLTP " : "Limit Orders",
            .type_text = OrderTypeDesc(order->kind, order->operation),
            .symbol = order->symbol,
            .account = order->account,
            .number = stops ? order->reference : order->order,
            .amount = as_text_reads(order->amount),
            .price = price(order->price),
            .stop_loss = price(order->stop_loss),
            .take_profit = price(order->take_profit)});
}

std::vector<const frmPending::Record*> frmPending::ticked() const {
  std::vector<const Record*> out;
  for (const Row& row : lvwPending)
    if (row.checked()) out.push_back(record_of(row));
  return out;
}

void frmPending::CloseIoID() {
  if (ticked().empty()) return general_.message_box("No selected orders");
  constexpr int yes = 1;
  LotSums sums{"order"};
  for (const Record* order : ticked())
    sums.add(order->symbol, as_text_reads(order->amount));
  if (general_.msg_box.GeneralQuestionMsg("Are you sure you want to cancel selected order(s)?",
                                          sums.text()) != yes)
    return;
  int refused = 0;
  // Read again after the question, and whole before the first request, since events go on.
  std::vector<Cancel> orders;
  for (const Record* order : ticked())
    orders.push_back({order->order, order->account, order->kind});
  const auto refuse = [&](std::int64_t order, std::int32_t account, std::string_view why) {
    ++refused;
    general_.log("Unable to cancel order #" + std::to_string(order) + ", account " + std::to_string(account) +
                     ": " + std::string{why},
                 account);
  };
  const auto told = [&](const SentOrder& sent) {
    if (const std::string_view kept = gate_texts::row(sent); !kept.empty())
      return refuse(sent.number, sent.account, kept);
    if (sent.request_code != request::taken)
      refuse(sent.number, sent.account, why_refused(sent.request_code));
  };
  sessions_.as_one_ticket([&] {
    for (const Cancel& cancel : orders) {
      const bool stops = cancel.kind == OrderKind::stops;
      if (!stops && cancel.kind != OrderKind::entry) {
        refuse(cancel.order, cancel.account, "it is in dealing");
      } else if (CClientAPIManager* session = sessions_.logged_in(cancel.account)) {
        session->cancel_order(cancel.order, stops, told);
      } else {
        refuse(cancel.order, cancel.account, why_refused(request::invalid_account));
      }
    }
  });
  if (refused > 0) {
    general_.message_box(std::to_string(refused) + " of " + std::to_string(orders.size()) +
                         " orders could not be cancelled; the journal has the reasons");
  }
}

}  // namespace tutti
