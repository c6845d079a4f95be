#include "dealer/link/dealer_client.h"

#include <charconv>

#include "core/numbers.h"
#include "core/texts.h"
#include "sessions/contract/codes.h"

namespace tutti {

DealerClient::DealerClient(ServerGate& gate) : gate_(gate), session_(gate.make_session()) {}

DealerClient::~DealerClient() {
  session_->set_sink(nullptr);
  gate_.logout(*session_);
}

void DealerClient::set_sink(CLAPICLASS* sink) {
  session_->set_sink(sink);
}

void DealerClient::SetLoginData(const LoginData& data) {
  data_ = data.copy();
  ledger_ = ledger_tag(data.ledger);
}

void DealerClient::Login() {
  if (session_->link() == DealerSession::Link::off) gate_.login(*session_, data_);
}

void DealerClient::Logout() {
  gate_.logout(*session_);
}

bool DealerClient::LoggedIn() const {
  // A user may log in without owning the account number; he can't trade with it.
  return session_->link() == DealerSession::Link::on && session_->account() != nullptr;
}

int DealerClient::SymbolCount() const {
  return session_->account() == nullptr ? 0 : static_cast<int>(session_->account()->carried().size());
}

const Symbol* DealerClient::SymbolItem(int index) const {
  if (index < 1 || index > SymbolCount()) return nullptr;
  return &session_->symbol(session_->account()->carried()[static_cast<std::size_t>(index - 1)]);
}

const Symbol* DealerClient::SymbolRecord(std::string_view symbol) const {
  if (!LoggedIn()) return nullptr;
  const auto place = session_->place_of(symbol);
  return place ? &session_->symbol(*place) : nullptr;
}

const Symbol* DealerClient::FindSymbol(std::string_view symbol) const {
  const Symbol* record = SymbolRecord(symbol);
  return record != nullptr && record->id != 0 ? record : nullptr;
}

int DealerClient::OpenPositionCount() const {
  return session_->account() == nullptr ? 0 : static_cast<int>(session_->account()->positions().size());
}

const OpenPosition* DealerClient::OpenPositionItem(int index) const {
  if (index < 1 || index > OpenPositionCount()) return nullptr;
  return &session_->account()->positions()[static_cast<std::size_t>(index - 1)].record;
}

int DealerClient::PendingOrderCount() const {
  return session_->account() == nullptr ? 0 : static_cast<int>(session_->account()->orders().size());
}

const PendingOrder* DealerClient::PendingOrderItem(int index) const {
  if (index < 1 || index > PendingOrderCount()) return nullptr;
  return &session_->account()->orders()[static_cast<std::size_t>(index - 1)];
}

RequestCode DealerClient::send(Instruction wanted) {
  wanted.ledger = ledger_;
  TradingAccount* account = session_->account();
  return account != nullptr ? gate_.send(*account, wanted) : request::invalid_account;
}

RequestCode DealerClient::answer_requote(std::int64_t order, bool accept, RequestId id) {
  TradingAccount* account = session_->account();
  return account != nullptr ? gate_.answer_requote(*account, order, accept, id) : request::invalid_account;
}

RequestCode DealerClient::NewMarketOrder(Operation side, std::int32_t symbol_id, double amount,
                                         std::string_view, std::string_view, RequestId id) {
  return send({.id = id, .side = side, .symbol = place_of(symbol_id), .amount = amount});
}

RequestCode DealerClient::ClosePosition(std::string_view ticket, std::string_view amount, std::string_view,
                                        RequestId id) {
  const std::string_view digits = trim(ticket);
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc{} || end != digits.data() + digits.size()) number = 0;
  return send({.kind = TradeKind::close,
               .id = id,
               .reference = number,
               .amount = parse_number(amount).value_or(0.0)});
}

RequestCode DealerClient::NewEntryOrder(const EntryOrder& order, RequestId id) {
  return send({.kind = TradeKind::entry,
               .id = id,
               .side = order.side,
               .entry = order.kind,
               .symbol = place_of(order.symbol_id),
               .amount = order.amount,
               .price = order.price,
               .stops = {order.stop_loss, order.take_profit, order.has_stop_loss, order.has_take_profit}});
}

RequestCode DealerClient::UpdateEntryOrder(std::int64_t order, double price, const StopPrices& stops,
                                           RequestId id) {
  return send(
      {.kind = TradeKind::update_entry, .id = id, .reference = order, .price = price, .stops = stops});
}

RequestCode DealerClient::UpdateSLTP(std::int64_t ticket, const StopPrices& stops, RequestId id) {
  return send({.kind = TradeKind::set_stops, .id = id, .reference = ticket, .stops = stops});
}

RequestCode DealerClient::AcceptRequote(std::int64_t order, RequestId id) {
  return answer_requote(order, true, id);
}

RequestCode DealerClient::RejectRequote(std::int64_t order, RequestId id) {
  return answer_requote(order, false, id);
}

RequestCode DealerClient::DeleteEntryOrder(std::int64_t order, RequestId id) {
  return send({.kind = TradeKind::cancel_entry, .id = id, .reference = order});
}

RequestCode DealerClient::DeleteSLTPOrder(std::int64_t order, RequestId id) {
  return send({.kind = TradeKind::cancel_stops, .id = id, .reference = order});
}

std::optional<std::int64_t> DealerClient::RequestsKnown() const {
  if (!LoggedIn() || ledger_ == 0) return std::nullopt;
  return gate_.requests_known(*session_->account(), ledger_);
}

BookEra DealerClient::Era() const {
  return LoggedIn() ? gate_.era() : 0;
}

RequestCode DealerClient::AskRequest(RequestId id, BookEra era) {
  TradingAccount* account = session_->account();
  return account != nullptr ? gate_.ask_request(*account, id, era) : request::invalid_account;
}

RequestCode DealerClient::AskExecutions(TimePoint since) {
  TradingAccount* account = session_->account();
  return account != nullptr ? gate_.ask_executions(*account, since) : request::invalid_account;
}

const TradingAccount* DealerClient::own(std::int32_t number) const {
  return LoggedIn() ? gate_.owned_account(data_.user, number) : nullptr;
}

SummaryAnswer DealerClient::GetAccountSummary(std::int32_t account) const {
  const TradingAccount* found = own(account);
  if (found == nullptr) return {{}, result::order_not_found};
  return {found->summary(), result::succeeded};
}

double DealerClient::EvaluateSLTPPrice(std::int32_t symbol_id, double at_price, std::string_view,
                                       double price, double& value) const {
  const auto place = place_of(symbol_id);
  value = place ? session_->account()->profit(*place, operation::buy, 1.0, at_price, price) : 0.0;
  return value;
}

std::optional<std::size_t> DealerClient::place_of(std::int32_t symbol_id) const {
  const TradingAccount* account = session_->account();
  return account != nullptr ? account->symbol_of_id(symbol_id) : std::nullopt;
}

std::optional<std::size_t> DealerClient::carried(std::string_view symbol) const {
  const auto place = session_->place_of(symbol);
  return LoggedIn() && place && session_->carries(*place) ? place : std::nullopt;
}

double DealerClient::SymbolLimitDistance(std::string_view symbol) const {
  const auto place = carried(symbol);
  return place ? session_->account()->limit_distance(*place) : 0.0;
}

double DealerClient::SymbolStopDistance(std::string_view symbol) const {
  const auto place = carried(symbol);
  return place ? session_->account()->stop_distance(*place) : 0.0;
}

std::optional<AccountInfo> DealerClient::FindAccount(std::int32_t number) const {
  const TradingAccount* found = own(number);
  if (found == nullptr) return std::nullopt;
  const AccountConfig& config = found->config();
  return AccountInfo{config.number, config.name, config.currency, config.leverage};
}

double DealerClient::MinimumLot() const {
  return gate_.smallest_lot();
}

double DealerClient::MaximumLot() const {
  return gate_.largest_lot();
}

}  // namespace tutti
