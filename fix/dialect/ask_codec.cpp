#include "fix/dialect/ask_codec.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>

#include "core/checksum.h"
#include "core/numbers.h"
#include "fix/dialect/field_reader.h"
#include "fix/dialect/tags.h"
#include "fix/dialect/wire_values.h"
#include "fix/dialect/words.h"

namespace tutti {
namespace {

constexpr int unit_decimals = 8;

// Of the contract's operations, each message as docs/fix.md has it.
class AskEncoder {
 public:
  AskEncoder(const SymbolSizes& sizes, std::string_view stamp) : sizes_(sizes), stamp_(stamp) {}

  FixMessage operator()(const WireRequest& request) const {
    switch (request.kind) {
      case RequestKind::open:
      case RequestKind::close:
        return market(request);
      case RequestKind::entry:
      case RequestKind::update_entry:
        return entry(request);
      case RequestKind::cancel_entry:
        return cancel(request);
      case RequestKind::set_stops:
      case RequestKind::cancel_stops:
        return stops(request);
      case RequestKind::accept_requote:
      case RequestKind::reject_requote:
        break;
    }
    return requote(request);
  }
  FixMessage operator()(const ask::Symbols&) const {
    FixMessage message{.type = "x"};
    message.set(tag::security_request, stamp_);
    message.set(tag::list_type, "4");
    return message;
  }
  FixMessage operator()(const ask::Prices& prices) const {
    FixMessage message{.type = "V"};
    message.set(tag::market_request, stamp_);
    message.set(tag::subscription, "1");
    message.set(tag::depth, "1");
    message.set(tag::update_type, "0");
    FixGroup types{tag::entry_types, {}}, symbols{tag::symbols, {}};
    for (const char* type : {"0", "1", "7", "8"})
      types.entries.emplace_back().set(tag::entry_type, type);
    for (const std::string& symbol : prices.symbols)
      symbols.entries.emplace_back().set(tag::symbol, symbol);
    message.groups = {std::move(types), std::move(symbols)};
    return message;
  }
  FixMessage operator()(const ask::Positions&) const {
    FixMessage message{.type = "AN"};
    message.set(tag::position_request, stamp_);
    message.set(tag::position_request_type, "0");
    message.set(tag::subscription, "1");
    return message;
  }
  FixMessage operator()(const ask::Orders&) const {
    FixMessage message{.type = "AF"};
    message.set(tag::mass_request, stamp_);
    message.set(tag::mass_type, "7");
    return message;
  }
  FixMessage operator()(const ask::Summary&) const {
    FixMessage message{.type = "BB"};
    message.set(tag::collateral_inquiry, stamp_);
    message.set(tag::subscription, "1");
    return message;
  }
  FixMessage operator()(const ask::Request& request) const {
    FixMessage message{.type = "H"};
    message.set(tag::id, request.id_text.empty() ? wire_id(request.id) : request.id_text);
    message.set(tag::era, std::to_string(request.era));
    return message;
  }
  FixMessage operator()(const ask::Fills& fills) const {
    FixMessage message{.type = "UE"};
    message.set(tag::transact_time, wire_time(fills.since));
    return message;
  }

 private:
  FixMessage begin(const char* type, const WireRequest& request) const {
    FixMessage message{.type = type};
    message.set(tag::id, request.id_text);
    message.set(tag::transact_time, wire_time(request.time));
    return message;
  }
  void set_order(FixMessage& message, const WireRequest& request) const {
    message.set(tag::symbol, request.symbol);
    message.set(tag::side, wire::side(request.operation));
    const double units = request.lots * sizes_(request.symbol);
    message.set(tag::quantity, wire_number(round_half_even(units, unit_decimals)));
  }
  static void set_stops(FixMessage& message, const StopPrices& stops) {
    if (stops.has_stop_loss) message.set(tag::stop_loss, wire_number(stops.stop_loss));
    if (stops.has_take_profit) message.set(tag::take_profit, wire_number(stops.take_profit));
  }
  static void set_original(FixMessage& message, const WireRequest& request) {
    const bool known = !request.original_text.empty();
    message.set(tag::original_id, known ? request.original_text : std::string{wire::no_original});
    message.set(tag::order, std::to_string(request.number));
  }
  FixMessage market(const WireRequest& request) const {
    FixMessage message = begin("D", request);
    set_order(message, request);
    message.set(tag::order_type, std::string{wire::market});
    if (request.kind == RequestKind::close) {
      message.set(tag::position_effect, "C");
      message.set(tag::position, std::to_string(request.number));
    }
    return message;
  }
  FixMessage entry(const WireRequest& request) const {
    const bool is_new = request.kind == RequestKind::entry;
    FixMessage message = begin(is_new ? "D" : "G", request);
    if (!is_new) set_original(message, request);
    set_order(message, request);
    message.set(tag::order_type, wire::entry_type(request.operation));
    message.set(wire::is_stop(request.operation) ? tag::stop_price : tag::price, wire_number(request.price));
    set_stops(message, request.stops);
    return message;
  }
  FixMessage cancel(const WireRequest& request) const {
    FixMessage message = begin("F", request);
    set_original(message, request);
    set_order(message, request);
    return message;
  }
  FixMessage stops(const WireRequest& request) const {
    const bool sets = request.kind == RequestKind::set_stops;
    FixMessage message = begin(sets ? "US" : "UC", request);
    message.set(sets ? tag::position : tag::order, std::to_string(request.number));
    if (sets) set_stops(message, request.stops);
    return message;
  }
  FixMessage requote(const WireRequest& request) const {
    FixMessage message = begin("AJ", request);
    message.set(tag::quote_response, request.id_text);
    message.set(tag::quote, std::to_string(request.number));
    message.set(tag::quote_answer, request.kind == RequestKind::accept_requote ? "1" : "6");
    message.set(tag::symbol, request.symbol);
    return message;
  }

  const SymbolSizes& sizes_;
  std::string stamp_;
};

StopPrices read_stops(FieldReader& reader) {
  StopPrices stops;
  stops.has_stop_loss = reader.has(tag::stop_loss);
  stops.has_take_profit = reader.has(tag::take_profit);
  if (stops.has_stop_loss) stops.stop_loss = reader.positive(tag::stop_loss);
  if (stops.has_take_profit) stops.take_profit = reader.positive(tag::take_profit);
  return stops;
}

void read_order(FieldReader& reader, const LotsOf& lots_of, WireRequest& request) {
  request.symbol = reader.text(tag::symbol);
  const std::string type = reader.text(tag::order_type), side = reader.text(tag::side);
  request.operation = wire::operation(side, type);
  if (request.operation == Operation::none) reader.complain(tag::side, "is neither 1 nor 2");
  if (type != wire::market && type != wire::limit && type != wire::stop)
    reader.complain(tag::order_type, "is none of 1, 2, 3");
  if (type != wire::market)
    request.price = reader.positive(type == wire::stop ? tag::stop_price : tag::price);
  if (request.kind != RequestKind::update_entry)
    request.lots = lots_of({request.symbol, request.number, reader.positive(tag::quantity)});
  request.stops = read_stops(reader);
}

void read_new_order(FieldReader& reader, const LotsOf& lots_of, WireRequest& request) {
  const std::string effect = reader.text_or_empty(tag::position_effect);
  const bool market = reader.text_or_empty(tag::order_type) == wire::market;
  if (reader.has(tag::position)) request.number = reader.integer(tag::position);
  if ((effect == "C") != (request.number != 0))
    reader.complain(tag::position, "and field 77 name a position to close together, or neither is there");
  if (effect == "C" && !market) reader.complain(tag::order_type, "must be 1 where a position is closed");
  request.kind = request.number != 0 ? RequestKind::close : market ? RequestKind::open : RequestKind::entry;
  read_order(reader, lots_of, request);
}

WireAsk read_prices(const FixMessage& message, FieldReader& reader) {
  ask::Prices prices;
  if (reader.text(tag::subscription) != "1") reader.complain(tag::subscription, "must be 1");
  for (const FixFields& entry : message.entries(tag::symbols))
    prices.symbols.emplace_back(entry.text(tag::symbol));
  if (prices.symbols.empty()) reader.complain(tag::symbols, "is missing");
  return prices;
}

WireAsk read_ask(const FixMessage& message, FieldReader& reader, const LotsOf& lots_of) {
  const std::string& type = message.type;
  if (type == "x") return ask::Symbols{};
  if (type == "V") return read_prices(message, reader);
  if (type == "AN") return ask::Positions{};
  if (type == "AF") return ask::Orders{};
  if (type == "BB") return ask::Summary{};
  if (type == "UE") {
    if (!reader.has(tag::transact_time)) reader.complain(tag::transact_time, "is missing");
    return ask::Fills{reader.time_or(tag::transact_time, {})};
  }
  if (type == "H") {
    ask::Request asked;
    asked.id_text = reader.text(tag::id);
    asked.id = id_of_text(asked.id_text);
    const std::string era = reader.text_or_empty(tag::era);
    const auto [end, error] = std::from_chars(era.data(), era.data() + era.size(), asked.era);
    if (!era.empty() && (error != std::errc{} || end != era.data() + era.size()))
      reader.complain(tag::era, "is no era");
    return asked;
  }
  WireRequest request;
  request.time = reader.time_or(tag::transact_time, {});
  request.id_text = reader.text(type == "AJ" ? tag::quote_response : tag::id);
  request.id = id_of_text(request.id_text);
  if (type == "D") {
    read_new_order(reader, lots_of, request);
  } else if (type == "G" || type == "F") {
    request.kind = type == "G" ? RequestKind::update_entry : RequestKind::cancel_entry;
    request.original_text = reader.text(tag::original_id);
    request.number = reader.integer_or(tag::order, 0);
    if (type == "G") read_order(reader, lots_of, request);
  } else if (type == "US" || type == "UC") {
    request.kind = type == "US" ? RequestKind::set_stops : RequestKind::cancel_stops;
    request.number = reader.integer(type == "US" ? tag::position : tag::order);
    request.stops = read_stops(reader);
  } else if (type == "AJ") {
    request.number = reader.integer(tag::quote);
    const std::string answer = reader.text(tag::quote_answer);
    if (answer != "1" && answer != "6") reader.complain(tag::quote_answer, "is neither 1 nor 6");
    request.kind = answer == "1" ? RequestKind::accept_requote : RequestKind::reject_requote;
  } else {
    reader.complain(35, "is no message for a dealing server");
  }
  return request;
}

}  // namespace

FixMessage encode_ask(const WireAsk& ask, const SymbolSizes& sizes, std::string_view stamp) {
  return std::visit(AskEncoder{sizes, stamp}, ask);
}

tl::expected<WireAsk, std::string> decode_ask(const FixMessage& message, const LotsOf& lots_of) {
  FieldReader reader(message.fields);
  WireAsk ask = read_ask(message, reader, lots_of);
  if (reader.fault()) return tl::unexpected(*reader.fault());
  return ask;
}

RequestId id_of_text(std::string_view text) {
  if (const auto own = read_wire_id(text)) return *own;
  const std::string digits = checksum(text);
  std::uint64_t value = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
  return static_cast<RequestId>((value >> 1) | 1);
}

}  // namespace tutti
