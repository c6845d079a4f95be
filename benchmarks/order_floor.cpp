#include "benchmarks/order_floor.h"

#include <utility>

#include "core/numbers.h"

namespace tutti::bench {

OrderFloor::OrderFloor(const BenchMarket& market, std::vector<ClientAPI*> clients)
    : clients_(std::move(clients)),
      identifiers_(clients_.size(), market.by_name),
      shares_(clients_.size()),
      orders_(clients_.size()) {}

void OrderFloor::distribute(double amount, std::string_view symbol, int decimals) {
  double sum = 0.0;
  for (const ClientAPI* client : clients_) {
    if (!client->LoggedIn() || client->FindSymbol(symbol) == nullptr) continue;
    const SummaryAnswer answer = client->GetAccountSummary(0);
    if (answer.result == result::succeeded && answer.values.equity >= 0.0) sum += answer.values.equity;
  }
  for (std::size_t i = 0; i < clients_.size(); ++i) {
    const ClientAPI& client = *clients_[i];
    if (!client.LoggedIn() || client.FindSymbol(symbol) == nullptr) continue;
    const SummaryAnswer answer = client.GetAccountSummary(0);
    if (answer.result != result::succeeded) continue;
    shares_[i] = round_half_even(amount * answer.values.equity / sum, decimals);
  }
}

void OrderFloor::fan_out(Operation side, std::string_view symbol) {
  for (std::size_t i = 0; i < clients_.size(); ++i) {
    const auto at = identifiers_[i].find(symbol);
    Order& order = orders_[i];
    order = {.amount = shares_[i], .side = side, .symbol_id = at == identifiers_[i].end() ? 0 : at->second};
    order.request_code = clients_[i]->NewMarketOrder(order.side, order.symbol_id, order.amount, "", "", 0);
  }
}

}  // namespace tutti::bench
