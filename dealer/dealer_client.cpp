#include "dealer/dealer_client.h"

#include <charconv>

#include "core/numbers.h"
#include "core/texts.h"
#include "sessions/contract/codes.h"

namespace tutti {

DealerClient::DealerClient(DealingServer& server, EventQueue& queue)
    : server_(server), session_(queue, server.market(), server.faults()) {}

DealerClient::~DealerClient() {
  session_.set_sink(nullptr);
  server_.logout(session_);
}

void DealerClient::set_sink(CLAPICLASS* sink) {
  session_.set_sink(sink);
}

void DealerClient::SetLoginData(const LoginData& data) {
  data_ = data.copy();
}

void DealerClient::Login() {
  if (session_.link() == DealerSession::Link::off) server_.login(session_, data_);
}

void DealerClient::Logout() {
  server_.logout(session_);
}

bool DealerClient::LoggedIn() const {
  // A user may log in without owning the account number; he can't trade with it.
  return session_.link() == DealerSession::Link::on && session_.account() != nullptr;
}

int DealerClient::SymbolCount() const {
  return session_.account() == nullptr ? 0 : static_cast<int>(session_.account()->carried().size());
}

const Symbol* DealerClient::SymbolItem(int index) const {
  if (index < 1 || index > SymbolCount()) return nullptr;
  return &session_.symbol(session_.account()->carried()[static_cast<std::size_t>(index - 1)]);
}

const Symbol* DealerClient::SymbolRecord(std::string_view symbol) const {
  if (!LoggedIn()) return nullptr;
  const auto place = server_.market().find(symbol);
  return place ? &session_.symbol(*place) : nullptr;
}

const Symbol* DealerClient::FindSymbol(std::string_view symbol) const {
  const Symbol* record = SymbolRecord(symbol);
  return record != nullptr && record->id != 0 ? record : nullptr;
}

int DealerClient::OpenPositionCount() const {
  return session_.account() == nullptr ? 0 : static_cast<int>(session_.account()->positions().size());
}

const OpenPosition* DealerClient::OpenPositionItem(int index) const {
  if (index < 1 || index > OpenPositionCount()) return nullptr;
  return &session_.account()->positions()[static_cast<std::size_t>(index - 1)].record;
}

int DealerClient::PendingOrderCount() const {
  return session_.account() == nullptr ? 0 : static_cast<int>(session_.account()->orders().size());
}

const PendingOrder* DealerClient::PendingOrderItem(int index) const {
  if (index < 1 || index > PendingOrderCount()) return nullptr;
  return &session_.account()->orders()[static_cast<std::size_t>(index - 1)];
}

std::int32_t DealerClient::NewMarketOrder(std::int32_t side, std::int32_t symbol_id, double amount,
                                          std::string_view, std::string_view, RequestId) {
  TradingAccount* account = session_.account();
  if (account == nullptr) return request::invalid_account;
  return server_.desk().open(*account, side, account->symbol_of_id(symbol_id), amount, server_.now());
}

std::int32_t DealerClient::ClosePosition(std::string_view ticket, std::string_view amount, std::string_view,
                                         RequestId) {
  TradingAccount* account = session_.account();
  if (account == nullptr) return request::invalid_account;
  const std::string_view digits = trim(ticket);
  std::int64_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc{} || end != digits.data() + digits.size()) number = 0;
  return server_.desk().close(*account, number, parse_number(amount).value_or(0.0), server_.now());
}

std::int32_t DealerClient::NewEntryOrder(const EntryOrder& order, RequestId) {
  TradingAccount* account = session_.account();
  if (account == nullptr) return request::invalid_account;
  return server_.desk().place(*account, order, account->symbol_of_id(order.symbol_id), server_.now());
}

std::int32_t DealerClient::UpdateEntryOrder(std::int64_t order, double price, const StopPrices& stops,
                                            RequestId) {
  TradingAccount* account = session_.account();
  if (account == nullptr) return request::invalid_account;
  return server_.desk().update(*account, order, price, stops, server_.now());
}

std::int32_t DealerClient::UpdateSLTP(std::int64_t ticket, const StopPrices& stops, RequestId) {
  TradingAccount* account = session_.account();
  if (account == nullptr) return request::invalid_account;
  return server_.desk().set_stops(*account, ticket, stops, server_.now());
}

std::int32_t DealerClient::AcceptRequote(std::int64_t order, RequestId) {
  TradingAccount* account = session_.account();
  if (account == nullptr) return request::invalid_account;
  return server_.desk().accept_requote(*account, order, server_.now());
}

std::int32_t DealerClient::RejectRequote(std::int64_t order, RequestId) {
  TradingAccount* account = session_.account();
  if (account == nullptr) return request::invalid_account;
  return server_.desk().reject_requote(*account, order, server_.now());
}

std::int32_t DealerClient::DeleteEntryOrder(std::int64_t order, RequestId) {
  TradingAccount* account = session_.account();
  if (account == nullptr) return request::invalid_account;
  return server_.desk().cancel(*account, TradeKind::cancel_entry, order, server_.now());
}

std::int32_t DealerClient::DeleteSLTPOrder(std::int64_t order, RequestId) {
  TradingAccount* account = session_.account();
  if (account == nullptr) return request::invalid_account;
  return server_.desk().cancel(*account, TradeKind::cancel_stops, order, server_.now());
}

SummaryAnswer DealerClient::GetAccountSummary(std::int32_t account) const {
  const TradingAccount* own = LoggedIn() ? server_.owned_account(data_.user, account) : nullptr;
  if (own == nullptr) return {{}, result::order_not_found};
  return {own->summary(), result::succeeded};
}

double DealerClient::EvaluateSLTPPrice(std::int32_t symbol_id, double at_price, std::string_view,
                                       double price, double& value) const {
  const TradingAccount* account = session_.account();
  const auto place = account != nullptr ? account->symbol_of_id(symbol_id) : std::nullopt;
  value = place ? account->profit(*place, operation::buy, 1.0, at_price, price) : 0.0;
  return value;
}

std::optional<std::size_t> DealerClient::carried(std::string_view symbol) const {
  if (FindSymbol(symbol) == nullptr) return std::nullopt;
  return server_.market().find(symbol);
}

double DealerClient::SymbolLimitDistance(std::string_view symbol) const {
  const auto place = carried(symbol);
  return place ? session_.account()->limit_distance(*place) : 0.0;
}

double DealerClient::SymbolStopDistance(std::string_view symbol) const {
  const auto place = carried(symbol);
  return place ? session_.account()->stop_distance(*place) : 0.0;
}

std::optional<AccountInfo> DealerClient::FindAccount(std::int32_t number) const {
  const TradingAccount* own = LoggedIn() ? server_.owned_account(data_.user, number) : nullptr;
  if (own == nullptr) return std::nullopt;
  const AccountConfig& config = own->config();
  return AccountInfo{config.number, config.name, config.currency, config.leverage};
}

double DealerClient::MinimumLot() const {
  return server_.config().min_lot;
}

double DealerClient::MaximumLot() const {
  return server_.config().max_lot;
}

}  // namespace tutti
