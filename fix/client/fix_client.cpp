#include "fix/client/fix_client.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/numbers.h"
#include "core/texts.h"
#include "fix/dialect/wire_values.h"
#include "fix/dialect/words.h"

namespace tutti {
namespace {

// Amounts closer than this are the same; it lies below anything an operator can type.
constexpr double tolerance = 1e-9;
constexpr std::chrono::milliseconds one_second{1'000};
using Link = ClientFeed::Link;

bool is_side(Operation side) {
  return side == operation::buy || side == operation::sell;
}
bool is_price(double price) {
  return std::isfinite(price) && price > 0.0;
}
bool are_prices(const StopPrices& stops) {
  return (!stops.has_stop_loss || is_price(stops.stop_loss)) &&
         (!stops.has_take_profit || is_price(stops.take_profit));
}

}  // namespace

FixClient::FixClient(ClientDesk& desk) : desk_(desk), feed_(*this, desk) {}

FixClient::~FixClient() {
  if (feed_.line() != 0) desk_.close_line(feed_.line());
  desk_.leave(*this);
}

void FixClient::set_sink(CLAPICLASS* sink) {
  feed_.set_sink(sink);
}

void FixClient::SetLoginData(const LoginData& data) {
  data_ = data.copy();
}

void FixClient::Login() {
  if (feed_.link() != Link::off) return;
  feed_.begin();
  feed_.set_line(desk_.open_line(*this, {data_.account, data_.user, data_.password.copy()}));
}

void FixClient::Logout() {
  if (feed_.link() == Link::off) return;
  // What has come by now is not lost.
  desk_.collect();
  if (feed_.link() == Link::off) return;
  desk_.close_line(feed_.line());
  feed_.log_out();
}

bool FixClient::LoggedIn() const {
  // A user may log in without owning the account number; he can't trade with it.
  return feed_.link() == Link::on && cache_.summary().owned;
}

int FixClient::SymbolCount() const {
  return LoggedIn() ? static_cast<int>(cache_.carried().size()) : 0;
}

const Symbol* FixClient::SymbolItem(int index) const {
  if (index < 1 || index > SymbolCount()) return nullptr;
  return &cache_.symbols()[cache_.carried()[static_cast<std::size_t>(index - 1)]].symbol;
}

const Symbol* FixClient::SymbolRecord(std::string_view symbol) const {
  if (!LoggedIn()) return nullptr;
  const auto place = cache_.place_of(symbol);
  return place ? &cache_.symbols()[*place].symbol : desk_.symbol_of_others(symbol);
}

const Symbol* FixClient::FindSymbol(std::string_view symbol) const {
  const auto place = cache_.place_of(symbol);
  return LoggedIn() && place && cache_.symbols()[*place].carried ? &cache_.symbols()[*place].symbol : nullptr;
}

int FixClient::OpenPositionCount() const {
  return LoggedIn() ? static_cast<int>(cache_.positions().size()) : 0;
}

const OpenPosition* FixClient::OpenPositionItem(int index) const {
  if (index < 1 || index > OpenPositionCount()) return nullptr;
  return &cache_.positions()[static_cast<std::size_t>(index - 1)].record;
}

int FixClient::PendingOrderCount() const {
  return LoggedIn() ? static_cast<int>(cache_.orders().size()) : 0;
}

const PendingOrder* FixClient::PendingOrderItem(int index) const {
  if (index < 1 || index > PendingOrderCount()) return nullptr;
  return &cache_.orders()[static_cast<std::size_t>(index - 1)].record;
}

RequestCode FixClient::send(WireRequest request) {
  // Without a name an answer could not be told from another's.
  if (request.id <= 0) return request::silent;
  request.id_text = wire_id(request.id);
  request.time = desk_.clock().now();
  sent_.push_back(desk_.clock().elapsed());
  while (sent_.front() <= sent_.back() - one_second)
    sent_.pop_front();
  desk_.send(feed_.line(), std::move(request));
  return request::taken;
}

std::optional<int> FixClient::credits() const {
  const int bound = desk_.profile().connection.orders_per_second;
  if (bound == 0) return std::nullopt;
  const auto since = desk_.clock().elapsed() - one_second;
  const auto count = std::count_if(sent_.begin(), sent_.end(), [&](const auto& at) { return at > since; });
  return std::max(bound - static_cast<int>(count), 0);
}

RequestCode FixClient::refuse(RequestCode code, const char* what) {
  desk_.remark(*this, std::string{"This broker "} + what + ": nothing was sent");
  return code;
}

RequestCode FixClient::NewMarketOrder(Operation side, std::int32_t symbol_id, double amount, std::string_view,
                                      std::string_view, RequestId id) {
  if (!LoggedIn()) return request::invalid_account;
  if (!is_side(side)) return request::silent;
  if (!is_price(amount)) return request::invalid_lots;
  const news::SymbolEntry* entry = cache_.symbol_of_id(symbol_id);
  if (entry == nullptr) return request::invalid_price;
  return send(
      {.kind = RequestKind::open, .id = id, .symbol = entry->symbol.name, .operation = side, .lots = amount});
}

RequestCode FixClient::NewEntryOrder(const EntryOrder& order, RequestId id) {
  if (!LoggedIn()) return request::invalid_account;
  if (!is_side(order.side)) return request::silent;
  if (!is_price(order.amount)) return request::invalid_lots;
  const StopPrices stops{order.stop_loss, order.take_profit, order.has_stop_loss, order.has_take_profit};
  const news::SymbolEntry* entry = cache_.symbol_of_id(order.symbol_id);
  if (entry == nullptr || !is_price(order.price) || !are_prices(stops)) return request::invalid_price;
  const bool stopped = stops.has_stop_loss || stops.has_take_profit;
  if (stopped && desk_.profile().orders.stops == BrokerProfile::Orders::Stops::none)
    return refuse(request::cannot_change_price, "takes no stop loss and no take profit");
  const bool bought = order.side == operation::buy;
  const bool stop = order.kind == EntryKind::stop;
  return send({.kind = RequestKind::entry,
               .id = id,
               .symbol = entry->symbol.name,
               .operation = !stop    ? order.side
                            : bought ? operation::buy_stop
                                     : operation::sell_stop,
               .lots = order.amount,
               .price = order.price,
               .stops = stops});
}

WireRequest FixClient::about(const AccountCache::Order& order, RequestKind kind, RequestId id) {
  const PendingOrder& record = order.record;
  return {.kind = kind,
          .id = id,
          .original_text = order.id_text,
          .number = record.order,
          .symbol = record.symbol,
          .operation = record.operation,
          .lots = record.amount};
}

RequestCode FixClient::UpdateEntryOrder(std::int64_t order, double price, const StopPrices& stops,
                                        RequestId id) {
  if (!LoggedIn()) return request::invalid_account;
  const AccountCache::Order* found = cache_.find_order(order, OrderKind::entry);
  if (found == nullptr) return request::invalid_order_id;
  if (!is_price(price) || !are_prices(stops)) return request::invalid_price;
  if (!desk_.profile().orders.replace)
    return refuse(request::cannot_change_price, "does not change entry orders");
  WireRequest request = about(*found, RequestKind::update_entry, id);
  request.price = price;
  request.stops = stops;
  return send(std::move(request));
}

RequestCode FixClient::DeleteEntryOrder(std::int64_t order, RequestId id) {
  if (!LoggedIn()) return request::invalid_account;
  const AccountCache::Order* found = cache_.find_order(order, OrderKind::entry);
  return found != nullptr ? send(about(*found, RequestKind::cancel_entry, id)) : request::invalid_order_id;
}

RequestCode FixClient::DeleteSLTPOrder(std::int64_t order, RequestId id) {
  if (!LoggedIn()) return request::invalid_account;
  if (desk_.profile().orders.stops != BrokerProfile::Orders::Stops::own)
    return refuse(request::cannot_change_price, "takes no stop loss and no take profit of a position");
  const AccountCache::Order* found = cache_.find_order(order, OrderKind::stops);
  return found != nullptr ? send(about(*found, RequestKind::cancel_stops, id)) : request::invalid_order_id;
}

RequestCode FixClient::ClosePosition(std::string_view ticket, std::string_view amount, std::string_view,
                                     RequestId id) {
  if (!LoggedIn()) return request::invalid_account;
  const auto number = read_wire_integer(trim(ticket));
  const AccountCache::Position* position = number ? cache_.find_position(*number) : nullptr;
  if (position == nullptr) return request::invalid_ticket;
  const double lots = parse_number(amount).value_or(0.0);
  if (!is_price(lots) || lots > position->record.amount + tolerance) return request::invalid_lots;
  if (desk_.profile().orders.close != BrokerProfile::Orders::Close::position_id)
    return refuse(request::silent, "closes no position by its ticket");
  return send({.kind = RequestKind::close,
               .id = id,
               .number = *number,
               .symbol = position->record.symbol,
               .operation = opposite(position->record.side),
               .lots = lots});
}

RequestCode FixClient::UpdateSLTP(std::int64_t ticket, const StopPrices& stops, RequestId id) {
  if (!LoggedIn()) return request::invalid_account;
  const AccountCache::Position* position = cache_.find_position(ticket);
  if (position == nullptr) return request::invalid_ticket;
  if (!are_prices(stops)) return request::invalid_price;
  if (desk_.profile().orders.stops != BrokerProfile::Orders::Stops::own)
    return refuse(request::cannot_change_price, "takes no stop loss and no take profit of a position");
  return send({.kind = RequestKind::set_stops,
               .id = id,
               .number = ticket,
               .symbol = position->record.symbol,
               .stops = stops});
}

RequestCode FixClient::answer_requote(std::int64_t order, bool accept, RequestId id) {
  if (!LoggedIn()) return request::invalid_account;
  if (id <= 0) return request::silent;
  const Requote* offer = feed_.requotes().find(order);
  const std::string symbol = offer != nullptr ? offer->symbol : std::string{};
  const RequestCode code = feed_.requotes().answer(order, accept, desk_.clock().elapsed());
  if (code != request::taken) return code;
  const RequestKind kind = accept ? RequestKind::accept_requote : RequestKind::reject_requote;
  return send({.kind = kind, .id = id, .number = order, .symbol = symbol});
}

RequestCode FixClient::AcceptRequote(std::int64_t order, RequestId id) {
  return answer_requote(order, true, id);
}

RequestCode FixClient::RejectRequote(std::int64_t order, RequestId id) {
  return answer_requote(order, false, id);
}

SummaryAnswer FixClient::GetAccountSummary(std::int32_t account) const {
  if (feed_.link() != Link::on) return {{}, result::failed};
  if (account != data_.account || !cache_.summary().owned) return {{}, result::order_not_found};
  const std::chrono::seconds limit{desk_.profile().summary.stale_after_seconds};
  if (limit.count() > 0 && feed_.summary_age() > limit) return {{}, result::bad_connection};
  return {cache_.summary().summary, result::succeeded};
}

double FixClient::EvaluateSLTPPrice(std::int32_t symbol_id, double at_price, std::string_view, double price,
                                    double& value) const {
  const news::SymbolEntry* entry = LoggedIn() ? cache_.symbol_of_id(symbol_id) : nullptr;
  value = entry != nullptr ? cache_.profit(static_cast<std::size_t>(symbol_id - 1), at_price, price) : 0.0;
  return value;
}

double FixClient::SymbolLimitDistance(std::string_view symbol) const {
  const Symbol* found = FindSymbol(symbol);
  return found != nullptr ? cache_.symbols()[*cache_.place_of(symbol)].limit_distance : 0.0;
}

double FixClient::SymbolStopDistance(std::string_view symbol) const {
  const Symbol* found = FindSymbol(symbol);
  return found != nullptr ? cache_.symbols()[*cache_.place_of(symbol)].stop_distance : 0.0;
}

std::optional<AccountInfo> FixClient::FindAccount(std::int32_t number) const {
  if (!LoggedIn() || number != data_.account) return std::nullopt;
  return cache_.summary().info;
}

double FixClient::MinimumLot() const {
  const double given = desk_.profile().orders.smallest_lots;
  return given > 0.0 ? given : cache_.summary().lots.minimum;
}

double FixClient::MaximumLot() const {
  const double given = desk_.profile().orders.largest_lots;
  return given > 0.0 ? given : cache_.summary().lots.maximum;
}

BookEra FixClient::Era() const {
  return LoggedIn() ? cache_.summary().era : 0;
}

RequestCode FixClient::AskRequest(RequestId id, BookEra era) {
  if (!LoggedIn()) return request::invalid_account;
  if (id <= 0 || !desk_.profile().orders.status_request) return request::silent;
  desk_.send(feed_.line(), ask::Request{id, {}, era});
  return request::taken;
}

RequestCode FixClient::AskExecutions(TimePoint since) {
  if (!LoggedIn()) return request::invalid_account;
  if (!desk_.profile().logon.own_fields) return request::silent;
  desk_.send(feed_.line(), ask::Fills{since});
  return request::taken;
}

}  // namespace tutti
