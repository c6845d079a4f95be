#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/MGeneral.h"
#include "core/label.h"
#include "core/row_list.h"
#include "sessions/CClientAPIManagers.h"
#include "sessions/desk.h"

namespace tutti {

// Pending orders window: market orders in dealing, entry orders, and the SL/TP orders of positions, of all
// logged-in accounts. Rows are keyed "P", the order number and the account.
class frmPending final : public PendingBook {
 public:
  enum Column : std::size_t {
    order_number,
    account,
    type,
    amount,
    symbol,
    price,
    stop_loss,
    take_profit,
    time
  };
  // What a row is, by its type text.
  enum Category : int { in_dealing = 1, limit_or_stop = 2, stops_of_position = 3 };

  // A pending order on its way into the entry order window.
  struct EditRequest {
    std::string mode;       // "SLTP " or "Limit Orders"
    std::string type_text;  // "Buy limit" and the like; "Buy(Manage)" or "Sell(Manage)" for SL/TP
    std::string symbol;
    std::int32_t account = 0;
    std::int64_t number = 0;  // order, or the position of an SL/TP order
    double amount = 0.0;      // lots
    double price = 0.0;
    double stop_loss = 0.0;  // 0 when none
    double take_profit = 0.0;
  };

  frmPending(MGeneral& general, CClientAPIManagers& sessions);

  RowList lvwPending{{"Order", "Account", "Type", "Amount", "Symbol", "Price", "S/L", "T/P", "Date/Time"}};
  Label lbbCancel{"Cancel selected orders"};

  const std::string& ColumnWidthsPer() const { return column_widths_; }
  void ColumnWidthsPer(std::string widths);

  // Adds the order's row, or refreshes it.
  void AddOrder(const PendingOrder& order);
  Row& Add(std::int64_t order, std::int32_t account);
  void Updateaccount(Row& row, std::int32_t account);
  void UpdateSlTp(Row& row, double stop_loss, double take_profit, int decimals);
  void Remove(Row& row) { lvwPending.remove(row); }
  void Removeorder(std::int64_t order, std::int32_t account);
  // Every row of an account that was refused, removed or disconnected, but those.
  void removeClientinfo(std::int32_t account, const Numbers& kept = {});
  // A request in dealing was settled: its row goes.
  void MarketOrderAccepted(std::int64_t order, std::int32_t account) { Removeorder(order, account); }
  void MarketOrderRejected(std::int64_t order, std::int32_t account) { Removeorder(order, account); }

  // Type column of an order from its kind code and the ticket it belongs to.
  static std::string TypeDesc(std::string_view kind, std::int64_t reference);
  // Type text for the entry order window: side and kind of an entry order, the side of an SL/TP order.
  static std::string OrderTypeDesc(std::string_view kind, std::int32_t operation);
  static Category OrderType(std::string_view type_text);
  // What a row's order does in the market: operation::buy or operation::sell, 0 when it is not known. A close
  // and the SL/TP of a bought position sell.
  static std::int32_t side(const Row& row);
  // The same with what kind of order it is: "Sell stop", "Buy at market", "Sell, closes a bought position".
  static std::string side_text(const Row& row);

  // "Cancel selected orders": asks, then sends one request per ticked row.
  void CloseIoID();
  // Hands the row's order to the entry order window, when a connected account carries its symbol.
  void edit(const Row& row);
  // Edit mode of the entry order window; set by start-up.
  std::function<void(const EditRequest&)> EdirMode;
  // What was last said about the row's order; empty when nothing.
  static std::string note(const Row& row);

  // PendingBook
  void order(const PendingOrder& order) override { AddOrder(order); }
  void remove_order(std::int64_t order, std::int32_t account) override { Removeorder(order, account); }
  void remove_account(std::int32_t account, const Numbers& kept) override { removeClientinfo(account, kept); }
  void order_text(std::int64_t order, std::int32_t account, std::string_view text) override;

 private:
  struct RowData {
    std::string kind;
    std::int32_t operation = 0;
    std::int64_t reference = 0;
    std::string note;
  };
  struct Cancel {
    std::int64_t order = 0;
    std::int32_t account = 0;
    std::string kind;
  };

  static std::int32_t account_of(const Row& row);
  int digits(std::int32_t account, std::string_view symbol) const;
  std::vector<Cancel> ticked() const;
  // Request code of one cancel request.
  std::int32_t send(const Cancel& cancel);

  MGeneral& general_;
  CClientAPIManagers& sessions_;
  std::string column_widths_;
};

}  // namespace tutti
