// What the other end asks for, and what it is answered.

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "core/numbers.h"
#include "fix/dialect/ask_codec.h"
#include "fix/dialect/tags.h"
#include "fix/dialect/words.h"
#include "fix/server/fix_seat.h"

namespace tutti {
namespace {

constexpr int lot_decimals = 8;

std::string refusal_text(RequestCode code) {
  switch (code) {
    case request::other_request:
      return "Another request was sent under this id before";
    case request::id_burnt:
      return "The id was asked about before the request came, and told as never taken";
    case request::invalid_symbol_id:
      return "There is no such symbol";
    default: {
      const std::string_view text = request::text(code);
      return text.empty() ? std::string{"Refused"} : std::string{text};
    }
  }
}

}  // namespace

double FixSeat::lots_of(const UnitsAsked& asked) const {
  const OpenPosition* closed = asked.ticket != 0 ? position(asked.ticket) : nullptr;
  const double size = news_->size_of(closed != nullptr ? std::string_view{closed->symbol} : asked.symbol);
  return size > 0.0 ? round_half_even(asked.units / size, lot_decimals) : 0.0;
}

void FixSeat::hear(const session_event::Received& received) {
  if (!on()) return;
  const FixMessage& message = received.message;
  const auto asked = decode_ask(message, [this](const UnitsAsked& units) { return lots_of(units); });
  if (asked) return std::visit([&](const auto& each) { carry_out(each, message); }, *asked);
  remark(fmt::format("A message of type {} can't be read: {}", message.type, asked.error()));
  news::Refused refused;
  refused.id_text = message.text(message.type == "AJ" ? tag::quote_response : tag::id);
  refused.text = asked.error();
  news_->tell(refused, message.type);
}

news::SymbolEntry FixSeat::entry_of(const Symbol& symbol) const {
  const bool carried = client_->FindSymbol(symbol.name) != nullptr;
  return {symbol, client_->SymbolLimitDistance(symbol.name), client_->SymbolStopDistance(symbol.name),
          carried};
}

void FixSeat::carry_out(const ask::Symbols&, const FixMessage& message) {
  news::Symbols list;
  std::set<std::string, std::less<>> named;
  const auto add = [&](const Symbol* symbol) {
    if (symbol == nullptr || !named.insert(symbol->name).second) return;
    const Symbol copy = *symbol;  // the next question may take its place
    list.entries.push_back(entry_of(copy));
  };
  for (int i = 1; i <= client_->SymbolCount(); ++i)
    add(client_->SymbolItem(i));
  // What the account does not carry, but has.
  for (int i = 1; i <= client_->OpenPositionCount(); ++i)
    add(client_->SymbolRecord(client_->OpenPositionItem(i)->symbol));
  for (int i = 1; i <= client_->PendingOrderCount(); ++i)
    add(client_->SymbolRecord(client_->PendingOrderItem(i)->symbol));
  news_->tell(list, message.text(tag::security_request));
}

void FixSeat::carry_out(const ask::Prices& prices, const FixMessage& message) {
  const std::string_view stamp = message.text(tag::market_request);
  for (const std::string& name : prices.symbols) {
    const Symbol* symbol = client_->FindSymbol(name);
    if (symbol == nullptr) {
      FixMessage reject{.type = "Y"};
      reject.set(tag::market_request, std::string{stamp});
      reject.set(tag::market_reason, "0");
      reject.set(tag::text, fmt::format("There is no symbol {}", name));
      session_.send(reject);
      continue;
    }
    news_->want_price(name);
    if (symbol->bid > 0.0) news_->tell_price(*symbol, stamp);
  }
  pump();
}

void FixSeat::carry_out(const ask::Positions&, const FixMessage& message) {
  news_->want_positions();
  const std::string stamp{message.text(tag::position_request)};
  const int count = client_->OpenPositionCount();
  news_->tell(news::PositionList{count}, stamp);
  for (int i = 1; i <= count; ++i)
    news_->tell(news::Position{*client_->OpenPositionItem(i), true, false}, stamp);
}

void FixSeat::carry_out(const ask::Orders&, const FixMessage& message) {
  news_->want_orders();
  const std::string stamp{message.text(tag::mass_request)};
  const int count = client_->PendingOrderCount();
  news::Order news;
  news.listed = news.last = true;
  if (count == 0) news_->tell(news, stamp);
  for (int i = 1; i <= count; ++i) {
    news.order = *client_->PendingOrderItem(i);
    news.id_text = memory_->accepted_of(news.order.order);
    news.count = count;
    news.last = i == count;
    news_->tell(news, stamp);
  }
}

void FixSeat::carry_out(const ask::Summary&, const FixMessage& message) {
  news_->want_summary();
  news_->tell_summary(message.text(tag::collateral_inquiry));
}

void FixSeat::carry_out(const ask::Request& request, const FixMessage& message) {
  const RequestCode code = client_->AskRequest(request.id, request.era == 0 ? client_->Era() : request.era);
  if (code != request::taken)
    news_->tell(news::Refused{request.id, request.id_text, code, refusal_text(code)}, message.type);
}

void FixSeat::carry_out(const ask::Fills& fills, const FixMessage& message) {
  const RequestCode code = client_->AskExecutions(fills.since);
  if (code != request::taken) news_->tell(news::Refused{0, {}, code, refusal_text(code)}, message.type);
}

void FixSeat::carry_out(const WireRequest& asked, const FixMessage& message) {
  WireRequest request = asked;
  if (request.number == 0 && !request.original_text.empty())
    request.number = memory_->order_of(request.original_text);
  // A repetition brings back what became of the first, and is about the same.
  if (memory_->find(request.id) == nullptr) memory_->note(request);
  const RequestCode code = perform(request);
  if (code == request::taken) return;
  if (code != request::other_request) memory_->end(request.id);
  news_->tell(news::Refused{request.id, request.id_text, code, refusal_text(code)}, message.type);
}

RequestCode FixSeat::perform(WireRequest& request) {
  switch (request.kind) {
    case RequestKind::open: {
      const Symbol* symbol = client_->FindSymbol(request.symbol);
      if (symbol == nullptr) return request::invalid_symbol_id;
      return client_->NewMarketOrder(request.operation, symbol->id, request.lots, "", "", request.id);
    }
    case RequestKind::close: {
      const OpenPosition* closed = position(request.number);
      // Whoever names another side or symbol than the position has does not mean this one.
      if (closed != nullptr &&
          (closed->symbol != request.symbol || buys(closed->side) == buys(request.operation)))
        return request::invalid_ticket;
      return client_->ClosePosition(std::to_string(request.number), number_text(request.lots), "",
                                    request.id);
    }
    case RequestKind::entry: {
      const Symbol* symbol = client_->FindSymbol(request.symbol);
      if (symbol == nullptr) return request::invalid_symbol_id;
      const StopPrices& stops = request.stops;
      return client_->NewEntryOrder(
          {buys(request.operation) ? operation::buy : operation::sell,
           wire::is_stop(request.operation) ? EntryKind::stop : EntryKind::limit, symbol->id, request.lots,
           request.price, stops.stop_loss, stops.take_profit, stops.has_stop_loss, stops.has_take_profit},
          request.id);
    }
    case RequestKind::update_entry: {
      const PendingOrder* changed = order(request.number);
      if (changed != nullptr &&
          (changed->symbol != request.symbol || changed->operation != request.operation))
        return request::invalid_order_id;
      return client_->UpdateEntryOrder(request.number, request.price, request.stops, request.id);
    }
    case RequestKind::cancel_entry:
      return client_->DeleteEntryOrder(request.number, request.id);
    case RequestKind::set_stops:
      return client_->UpdateSLTP(request.number, request.stops, request.id);
    case RequestKind::cancel_stops:
      return client_->DeleteSLTPOrder(request.number, request.id);
    case RequestKind::accept_requote:
      return client_->AcceptRequote(request.number, request.id);
    case RequestKind::reject_requote:
      return client_->RejectRequote(request.number, request.id);
  }
  return request::silent;
}

}  // namespace tutti
