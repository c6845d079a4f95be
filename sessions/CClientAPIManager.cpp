#include "sessions/CClientAPIManager.h"

#include <cmath>
#include <utility>

#include "core/numbers.h"
#include "sessions/result_texts.h"

namespace tutti {
template <class Step>
void CClientAPIManager::carry_on(Step&& step) {
  try {
    step();
  } catch (const std::exception& error) {
    scope_.log(std::string{"A step of an event could not be done: "} + error.what());
  }
}

CClientAPIManager::CClientAPIManager(std::unique_ptr<ClientAPI> client, const LoginData& login,
                                     const Shared& shared)
    : scope_(*client, shared.general, shared.desk, shared.books,
             shared.books.accounts.add(login.user, login.account, login.server)),
      connection_(scope_, shared.options),
      market_(scope_),
      records_(scope_),
      requests_(scope_, records_, shared.book, shared.gate, *client),
      unknown_(scope_, requests_.sent(), shared.gate.ledger()),
      windows_(shared.windows),
      book_(shared.book),
      gate_(shared.gate),
      password_(login.password.copy()) {
  client_ = std::move(client);
  client_->set_sink(this);
  LoginData data = login.copy();
  data.ledger = shared.gate.ledger().id();
  client_->SetLoginData(data);
}

CClientAPIManager::~CClientAPIManager() {
  requests_.leave();
  client_->set_sink(nullptr);
  client_->Logout();
}

void CClientAPIManager::shut_down() {
  client_->set_sink(nullptr);
  client_->Logout();
  connection_.release_totals();
  journal_unanswered("lost");
  connection_.shut_down();
}

void CClientAPIManager::enter_list(std::string_view notes, bool connected) {
  scope_.book.show_state(scope_.record, connected ? AccountState::connected : AccountState::disconnected,
                         connected ? Ink::green : Ink::red);
  write_note(notes);
}

std::string CClientAPIManager::SummaryDesc(double balance, double equity, double effective_margin) const {
  return "Balance: " + summary_text(balance) + "  Equity: " + summary_text(equity) +
         "  EffMargin: " + summary_text(effective_margin);
}

const SentOrder& CClientAPIManager::market_order(Operation side, SymbolHandle symbol, double amount,
                                                 Then&& then) {
  return gate_.request(sender(), RequestKind::open, std::move(then), [&](SentOrder& request) {
    request.side = side;
    request.symbol = symbol;
    request.symbol_id = symbol_id(symbol);
    request.amount = amount;
  });
}

const SentOrder& CClientAPIManager::close_position(std::int64_t ticket, double amount, Then&& then) {
  return gate_.request(sender(), RequestKind::close, std::move(then), [&](SentOrder& request) {
    request.number = ticket;
    request.amount = amount;
  });
}

const SentOrder& CClientAPIManager::cancel_order(std::int64_t order, bool stops_of_position, Then&& then) {
  return gate_.request(sender(), RequestKind::cancel, std::move(then), [&](SentOrder& request) {
    request.number = order;
    request.stops_of_position = stops_of_position;
  });
}

const SentOrder& CClientAPIManager::place_entry(const EntryOrder& order, SymbolHandle symbol, int round,
                                                Then&& then) {
  return gate_.request(sender(), RequestKind::entry, std::move(then), [&](SentOrder& request) {
    const bool stop = order.kind == EntryKind::stop;
    request.side = buys(order.side) ? (stop ? operation::buy_stop : operation::buy)
                                    : (stop ? operation::sell_stop : operation::sell);
    request.symbol = symbol;
    request.symbol_id = order.symbol_id;
    request.amount = order.amount;
    request.price = order.price;
    request.stops = {order.stop_loss, order.take_profit, order.has_stop_loss, order.has_take_profit};
    request.round = round;
  });
}

const SentOrder& CClientAPIManager::update_entry(std::int64_t order, double price, const StopPrices& stops,
                                                 int round, Then&& then) {
  return gate_.request(sender(), RequestKind::update, std::move(then), [&](SentOrder& request) {
    request.number = order;
    request.price = price;
    request.stops = stops;
    request.round = round;
  });
}

const SentOrder& CClientAPIManager::set_stops(std::int64_t ticket, const StopPrices& stops, int round,
                                              Then&& then) {
  return gate_.request(sender(), RequestKind::stops, std::move(then), [&](SentOrder& request) {
    request.number = ticket;
    request.stops_order = records_.stops_order_of(ticket);
    request.stops = stops;
    request.round = round;
  });
}

const SentOrder& CClientAPIManager::answer_requote(std::int64_t order, bool accept, Then&& then) {
  return gate_.request(sender(), RequestKind::requote, std::move(then), [&](SentOrder& request) {
    request.number = order;
    request.accepts = accept;
  });
}

const SentOrder& CClientAPIManager::send_stored(SentOrder as) {
  as.sender = sender();
  if (as.kind == RequestKind::stops) as.stops_order = records_.stops_order_of(as.number);
  return gate_.send_stored(as);
}

void CClientAPIManager::ConnectionState(bool connected) {
  carry_on([&] { connection_.show_state(connected); });
  const auto tell_state = [&](AccountState state) {
    scope_.desk.close_positions->account_state(account(), state);
  };
  if (connected) {
    carry_on([&] { connection_.connected(); });
    carry_on([&] { tell_state(AccountState::connected); });
    return;
  }
  carry_on([&] { connection_.lost(); });
  carry_on([&] { connection_.release_totals(); });
  carry_on([&] { journal_unanswered("lost"); });
  carry_on([&] {
    if (lists_account()) windows_.leave(*this);
    records_.lists_account(false);
    tell_state(AccountState::disconnected);
  });
  carry_on([&] { scope_.desk.requote->session_gone(*this); });
}

void CClientAPIManager::AllDataAreLoaded() {
  MGeneral& general = scope_.general;
  Desk& desk = scope_.desk;
  general.play_sound("\\sounds\\Connect.WAV");
  const bool found = client_->FindAccount(account()).has_value();
  if (found) records_.lists_account(true);
  if (!found) {
    connection_.invalid_account();
    windows_.leave_pending(*this);
    scope_.log(std::to_string(account()) + " is invalid account");
    DisInvalidAcc(std::to_string(key_));
  } else {
    if (desk.market_order->wants_lot_limits()) {
      general.lots.minimum = client_->MinimumLot();
      general.lots.maximum = client_->MaximumLot();
      desk.market_order->lot_limits(general.lots.minimum, general.lots.maximum);
    }
    desk.market_order->add_account(account());
    desk.close_positions->add_account(account());
    desk.entry_order->add_account(account());
    desk.close_positions->refresh_symbols();
    unknown_.ask(is_whole());
    if (scope_.record.connected()) {
      desk.accounts->record_connected(*this);
      general.play_sound("\\sounds\\Connect.wav");
    }
  }
  general.outdate_settings();
}

// A server that has taken more than this home knows of shows that the home is older.
bool CClientAPIManager::is_whole() {
  const auto known = client_->RequestsKnown();
  const std::int64_t missing = known ? *known - gate_.ledger().left(sender()) : 0;
  gate_.admission().home_lacks(sender(), account(), missing);
  return missing <= 0;
}

void CClientAPIManager::DisInvalidAcc(std::string_view key_text) {
  const auto key = parse_int32(key_text);
  if (!key || *key != key_) return;
  scope_.desk.accounts->select_client(*this);
  write_note(unknown_account_note);
}

std::string_view CClientAPIManager::ResultDescription(ResultCode code) {
  return result_texts::general(code);
}

std::string_view CClientAPIManager::BuySellDesc(Operation operation) {
  return result_texts::buy_or_sell(operation);
}

void CClientAPIManager::OrderTimer(const Requote& requote) {
  // Nobody may accept a price that is none. The server rejects the request itself when its time is over.
  if (!std::isfinite(requote.amount) || !std::isfinite(requote.price) || !std::isfinite(requote.new_price))
    return scope_.refuse("The new price of order #", requote.order);
  requests_.requote_tick(requote);
  scope_.desk.requote->tick(*this, requote);
}

void CClientAPIManager::SlTpOrderAccepted(std::int64_t order) {
  scope_.log_order(order, "SL/TP request #" + std::to_string(order) + " is accepted");
  // What was closed by it comes without a report.
  unknown_.read_fills(std::chrono::minutes{10});
}

void CClientAPIManager::SlTpOrderCanceledNoMoney(std::int64_t order) {
  scope_.log_order(order, "SL/TP request #" + std::to_string(order) + " is canceled - no money");
}

}  // namespace tutti
