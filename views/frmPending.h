#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "books/order_book.h"
#include "core/MGeneral.h"
#include "core/label.h"
#include "core/row_list.h"
#include "sessions/CClientAPIManagers.h"
#include "sessions/contract/codes.h"
#include "sessions/desk.h"

namespace tutti {

// Pending orders window: market orders in dealing, entry orders, and the SL/TP orders of positions, of all
// logged-in accounts. Rows are keyed "P", the order number and the account, and show their record of the
// book.
class frmPending final : public PendingDesk, public OrderBook::Observer {
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

  using Record = OrderBook::Record;

  frmPending(MGeneral& general, CClientAPIManagers& sessions, const OrderBook& book);

  RowList lvwPending{{"Order", "Account", "Type", "Amount", "Symbol", "Price", "S/L", "T/P", "Date/Time"}};
  Label lbbCancel{"Cancel selected orders"};

  const std::string& ColumnWidthsPer() const { return column_widths_; }
  void ColumnWidthsPer(std::string widths);

  // Adds the order's row, or refreshes it.
  void AddOrder(const Record& order) { Add(order).outdate(); }
  Row& Add(const Record& order);
  static void Updateaccount(Row& row, std::int32_t account);
  static void UpdateSlTp(Row& row, double stop_loss, double take_profit, int decimals);
  void Remove(const Record& order);
  // What an account that was refused, removed or disconnected leaves behind.
  void removeClientinfo(std::span<const Record> gone);
  // The order has ended: its session takes it out of the book.
  void Removeorder(std::int64_t order, std::int32_t account);
  // A request in dealing was settled: its row goes.
  void MarketOrderAccepted(std::int64_t order, std::int32_t account) { Removeorder(order, account); }
  void MarketOrderRejected(std::int64_t order, std::int32_t account) { Removeorder(order, account); }

  // Type column of an order from its kind and the ticket it belongs to.
  static std::string TypeDesc(OrderKind kind, std::int64_t reference);
  // Type text for the entry order window: side and kind of an entry order, the side of an SL/TP order.
  static std::string OrderTypeDesc(OrderKind kind, Operation operation);
  static Category OrderType(std::string_view type_text);
  // What an order does in the market: buy or sell, none when it is not known. A close and
  // the SL/TP of a bought position sell.
  static Operation side(const Record& order);
  // The same with what kind of order it is: "Sell stop", "Buy at market", "Sell, closes a bought position".
  static std::string side_text(const Record& order);
  const Record* record_of(const Row& row) const {
    return book_.find(row.key().number(), row.key().account());
  }

  // "Cancel selected orders": asks, then sends one request per ticked row.
  void CloseIoID();
  // Hands the row's order to the entry order window, when a connected account carries its symbol.
  void edit(const Row& row);
  // Edit mode of the entry order window; set by start-up.
  std::function<void(const EditRequest&)> EdirMode;
  // What was last said about the row's order; empty when nothing.
  static std::string note(const Row& row);

  // PendingDesk
  void order_text(std::int64_t order, std::int32_t account, std::string_view text) override;

  // OrderBook::Observer
  void changed(const Record& order) override { AddOrder(order); }
  void removed(const Record& order) override { Remove(order); }
  void account_left(std::int32_t, std::span<const Record> gone) override { removeClientinfo(gone); }

 private:
  struct RowData {
    std::string note;
  };
  struct Cancel {
    std::int64_t order = 0;
    std::int32_t account = 0;
    OrderKind kind{};
  };

  void make_cells(Row& row) const;
  std::vector<const Record*> ticked() const;

  MGeneral& general_;
  CClientAPIManagers& sessions_;
  const OrderBook& book_;
  std::string column_widths_;
};

}  // namespace tutti
