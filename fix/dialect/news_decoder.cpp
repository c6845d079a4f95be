#include "fix/dialect/news_decoder.h"

#include <charconv>
#include <limits>
#include <utility>

#include "core/numbers.h"
#include "fix/dialect/ask_codec.h"
#include "fix/dialect/tags.h"
#include "fix/dialect/words.h"

namespace tutti {
namespace {

constexpr int lot_decimals = 8;

RequestId read_id(const std::string& text) {
  return text.empty() ? 0 : id_of_text(text);
}

// A code that the contract does not name is kept as it came; one that no code can be is a fault.
template <class Code>
Code read_code(FieldReader& reader, int tag, Code missing) {
  const std::int64_t value = reader.integer_or(tag, static_cast<std::int64_t>(missing));
  if (value < std::numeric_limits<std::int32_t>::min() || value > std::numeric_limits<std::int32_t>::max())
    reader.complain(tag, "is no code");
  return static_cast<Code>(value);
}

Operation read_operation(FieldReader& reader, bool closes) {
  const auto told = wire::operation(reader.text_or_empty(tag::side), reader.text_or_empty(tag::order_type));
  const Operation operation = read_code(reader, tag::operation, closes ? opposite(told) : told);
  switch (operation) {
    case Operation::none:
    case Operation::buy:
    case Operation::sell:
    case Operation::buy_stop:
    case Operation::sell_stop:
      break;
    default:
      reader.complain(tag::operation, "is no operation");
  }
  return operation;
}

std::optional<Realised> read_realised(FieldReader& reader) {
  if (!reader.has(tag::realised_profit)) return std::nullopt;
  return Realised{reader.number(tag::realised_profit), reader.number_or(tag::realised_commission, 0.0)};
}

void keep_fault(FieldReader& reader, const FieldReader& part, int tag) {
  if (part.fault()) reader.complain(tag, "has an entry whose " + *part.fault());
}

// What a report is when it doesn't say so itself.
Answer answer_of(const FieldReader& reader) {
  const std::string type = reader.text_or_empty(tag::exec_type);
  const std::string kind = reader.text_or_empty(tag::order_type);
  const bool entry = kind == wire::limit || kind == wire::stop;
  if (type == "4" || type == "C")
    return reader.has(tag::original_id) ? Answer::cancel_entry : Answer::cancelled;
  if (type == "5") return Answer::update_entry;
  if (entry) return type == "F" ? Answer::entry_done : Answer::entry;
  return reader.text_or_empty(tag::position_effect) == "C" ? Answer::close : Answer::order;
}

}  // namespace

tl::expected<std::optional<WireNews>, std::string> NewsDecoder::decode(const FixMessage& message) const {
  FieldReader reader(message.fields);
  std::optional<WireNews> news;
  const std::string& type = message.type;
  if (type == "y")
    news = symbols(message, reader);
  else if (type == "W")
    news = price(message, reader);
  else if (type == "AO")
    news = news::PositionList{reader.integer(tag::position_count)};
  else if (type == "AP")
    news = position(message, reader);
  else if (type == "8")
    news = execution_report(reader);
  else if (type == "9")
    news = reader.has(tag::request_code) ? refused(reader, tag::id) : cancel_reject(reader);
  else if (type == "UR")
    news = stops_report(reader);
  else if (type == "j")
    news = refused(reader, tag::business_reference);
  else if (type == "UX")
    news = fills(message, reader);
  else if (type == "BA")
    news = summary(reader);
  else if (type == "S")
    news = offer(reader);
  else if (type == "UT")
    news = news::Time{reader.time_or(tag::transact_time, {})};
  if (reader.fault()) return tl::unexpected(*reader.fault());
  return news;
}

double NewsDecoder::lots(FieldReader& reader, int tag, const std::string& symbol) const {
  const double units = reader.number(tag);
  if (units < 0.0) reader.complain(tag, "is below 0");
  if (units == 0.0) return 0.0;
  const double size = sizes_(symbol);
  if (size <= 0.0) reader.complain(tag::symbol, "names a symbol that is not in the list of symbols");
  return size > 0.0 ? round_half_even(units / size, lot_decimals) : 0.0;
}

WireNews NewsDecoder::symbols(const FixMessage& message, FieldReader& reader) const {
  news::Symbols out;
  out.last = !reader.has(tag::last_fragment) || reader.flag(tag::last_fragment);
  for (const FixFields& fields : message.entries(tag::symbols)) {
    FieldReader part(fields);
    news::SymbolEntry& entry = out.entries.emplace_back();
    Symbol& symbol = entry.symbol;
    symbol.name = part.text(tag::symbol);
    symbol.profit = part.text_or_empty(tag::currency);
    symbol.base = part.text_or_empty(tag::base_currency);
    symbol.contract_size = part.positive(tag::contract_size);
    const std::int64_t digits = part.integer(tag::digits);
    if (digits < 0 || digits > 10) part.complain(tag::digits, "is no number of decimals");
    symbol.digits = static_cast<std::int32_t>(digits);
    symbol.margin_rate = part.number_or(tag::margin_rate, 0.0);
    entry.limit_distance = part.number_or(tag::limit_distance, 0.0);
    entry.stop_distance = part.number_or(tag::stop_distance, 0.0);
    entry.carried = !part.has(tag::carried) || part.flag(tag::carried);
    keep_fault(reader, part, tag::symbols);
  }
  return out;
}

WireNews NewsDecoder::price(const FixMessage& message, FieldReader& reader) const {
  news::Price out;
  out.symbol = reader.text(tag::symbol);
  out.time = reader.time_or(tag::transact_time, {});
  for (const FixFields& fields : message.entries(tag::entries)) {
    FieldReader part(fields);
    const std::string type = part.text(tag::entry_type);
    double* const target = type == "0"   ? &out.bid
                           : type == "1" ? &out.ask
                           : type == "7" ? &out.high
                           : type == "8" ? &out.low
                                         : nullptr;
    if (target != nullptr) *target = part.positive(tag::entry_price);
    keep_fault(reader, part, tag::entries);
  }
  return out;
}

WireNews NewsDecoder::position(const FixMessage& message, FieldReader& reader) const {
  news::Position out;
  OpenPosition& position = out.position;
  position.account = account_;
  position.ticket = reader.integer(tag::position);
  out.gone = reader.flag(tag::gone);
  if (out.gone) return out;
  position.symbol = reader.text(tag::symbol);
  out.listed = !reader.flag(tag::unsolicited);
  out.count = reader.integer_or(tag::position_count, 0);
  const auto& amounts = message.entries(tag::position_list);
  if (amounts.size() != 1) reader.complain(tag::position_list, "is not 1");
  if (amounts.size() == 1) {
    FieldReader part(amounts[0]);
    const bool bought = part.has(tag::long_quantity);
    position.side = bought ? operation::buy : operation::sell;
    position.amount = lots(part, bought ? tag::long_quantity : tag::short_quantity, position.symbol);
    keep_fault(reader, part, tag::position_list);
  }
  out.gone = position.amount == 0.0;
  position.open_price = reader.number_or(tag::settle_price, 0.0);
  if (!out.gone && position.open_price <= 0.0) reader.complain(tag::settle_price, "is not above 0");
  position.open_time = reader.time_or(tag::transact_time, {});
  position.stop_loss = reader.number_or(tag::stop_loss, 0.0);
  position.take_profit = reader.number_or(tag::take_profit, 0.0);
  position.current_price = reader.number_or(tag::current_price, position.open_price);
  position.commission = reader.number_or(tag::commission, 0.0);
  position.interest = reader.number_or(tag::interest, 0.0);
  position.floating_pl = reader.number_or(tag::position_profit, 0.0);
  return out;
}

WireNews NewsDecoder::execution_report(FieldReader& reader) const {
  const std::string type = reader.text(tag::exec_type);
  if (type == "I") {
    const bool row = reader.has(tag::order_kind) || reader.has(tag::mass_request) || reader.has(tag::gone);
    return row ? order(reader) : status(reader);
  }
  if (reader.has(tag::request_code)) return refused(reader, tag::id);
  return report(reader);
}

WireNews NewsDecoder::status(FieldReader& reader) const {
  news::Told out;
  out.id_text = reader.text(tag::id);
  out.id = read_id(out.id_text);
  const std::string letter = reader.text(tag::order_status);
  // A server that does not know an order says so with the letter of a refusal.
  const std::string reason = reader.text_or_empty(tag::reject_reason);
  const bool refused = letter == "8" && !reason.empty() && reason != "5";
  const RequestState told = refused ? RequestState::refused : wire::state_of(letter);
  const std::int64_t code = reader.integer_or(tag::request_state, static_cast<std::int64_t>(told));
  if (code < 0 || code > static_cast<std::int64_t>(RequestState::another_book))
    reader.complain(tag::request_state, "is no state");
  else
    out.state = static_cast<RequestState>(code);
  if (reader.has(tag::executed_lots))
    out.lots = reader.number(tag::executed_lots);
  else if (reader.has(tag::symbol))
    out.lots = lots(reader, tag::filled_all, reader.text(tag::symbol));
  return out;
}

WireNews NewsDecoder::order(FieldReader& reader) const {
  news::Order out;
  out.listed = reader.has(tag::mass_request);
  out.count = reader.integer_or(tag::report_count, out.listed ? 1 : 0);
  out.last = reader.flag(tag::last_report);
  if (out.listed && out.count == 0) return out;
  out.gone = reader.flag(tag::gone);
  out.id_text = reader.text_or_empty(tag::id);
  PendingOrder& order = out.order;
  order.account = account_;
  order.order = reader.integer(tag::order);
  const bool closes = reader.text_or_empty(tag::position_effect) == "C";
  const bool market = reader.text_or_empty(tag::order_type) == wire::market;
  order.kind = closes ? OrderKind::close : market ? OrderKind::open : OrderKind::entry;
  if (reader.has(tag::order_kind)) order.kind = order_kind::of_text(reader.text(tag::order_kind));
  if (order.kind == OrderKind::none) reader.complain(tag::order_kind, "is none of OP, CP, LO, ST");
  order.reference = reader.integer_or(tag::position, 0);
  order.operation = read_operation(reader, closes);
  // Of one that is gone its number is enough.
  if (out.gone) return out;
  order.symbol = reader.text(tag::symbol);
  order.amount = lots(reader, tag::quantity, order.symbol);
  order.price = reader.number_or(tag::price, reader.number_or(tag::stop_price, 0.0));
  order.stop_loss = reader.number_or(tag::stop_loss, 0.0);
  order.take_profit = reader.number_or(tag::take_profit, 0.0);
  order.time = reader.time_or(tag::transact_time, {});
  return out;
}

WireNews NewsDecoder::report(FieldReader& reader) const {
  news::Report out;
  OrderReport& report = out.report;
  report.account = account_;
  const std::string type = reader.text(tag::exec_type);
  const auto answer = read_code(reader, tag::answer, static_cast<std::int32_t>(answer_of(reader)));
  if (answer < 1 || answer > static_cast<std::int32_t>(last_answer))
    reader.complain(tag::answer, "is none that is known");
  else
    out.answer = static_cast<Answer>(answer);
  const bool fills = type == "F";
  const bool closes = reader.text_or_empty(tag::position_effect) == "C";
  out.id_text = reader.text_or_empty(tag::id);
  out.original_text = reader.text_or_empty(tag::original_id);
  report.id = read_id(out.id_text);
  report.number = reader.integer(closes ? tag::position : tag::order);
  report.request_kind = closes ? request_kind::close : request_kind::open;
  report.result = read_code(reader, tag::result, type == "8" ? result::failed : result::succeeded);
  if (type == "A") report.state = order_state::pending;
  if (fills && out.answer != Answer::entry_done) report.state = order_state::executed;
  report.operation = read_operation(reader, closes);
  report.symbol = reader.text_or_empty(tag::symbol);
  report.amount = reader.has(tag::quantity) ? lots(reader, tag::quantity, report.symbol) : 0.0;
  report.price = fills ? reader.positive(tag::last_price)
                       : reader.number_or(tag::price, reader.number_or(tag::stop_price, 0.0));
  if (fills) {
    report.execution = reader.text(tag::execution);
    if (report.execution == "0") report.execution.clear();
    report.filled = lots(reader, tag::last_quantity, report.symbol);
    report.realised = read_realised(reader);
  }
  if (reader.has(tag::filled_all)) report.filled_all = lots(reader, tag::filled_all, report.symbol);
  if (reader.has(tag::left)) report.left = lots(reader, tag::left, report.symbol);
  report.time = reader.time_or(tag::transact_time, {});
  report.text = reader.text_or_empty(tag::text);
  return out;
}

WireNews NewsDecoder::cancel_reject(FieldReader& reader) const {
  news::Report out;
  const std::string answers = reader.text(tag::answers_to);
  if (answers != "1" && answers != "2") reader.complain(tag::answers_to, "is neither 1 nor 2");
  out.answer = answers == "1" ? Answer::cancel_entry : Answer::update_entry;
  out.id_text = reader.text(tag::id);
  out.report.id = read_id(out.id_text);
  out.report.account = account_;
  out.report.number = reader.integer(tag::order);
  const bool unknown = reader.text_or_empty(tag::cancel_reason) == "1";
  out.report.result = read_code(reader, tag::result, unknown ? result::order_not_found : result::failed);
  out.report.text = reader.text_or_empty(tag::text);
  return out;
}

WireNews NewsDecoder::stops_report(FieldReader& reader) const {
  news::Report out;
  const std::int64_t answer = reader.integer(tag::answer);
  const bool known = (answer >= static_cast<std::int64_t>(Answer::new_stops) &&
                      answer <= static_cast<std::int64_t>(Answer::update_stops)) ||
                     answer == static_cast<std::int64_t>(Answer::cancel_stops) ||
                     answer == static_cast<std::int64_t>(Answer::stops_done) ||
                     answer == static_cast<std::int64_t>(Answer::stops_no_money);
  if (known)
    out.answer = static_cast<Answer>(answer);
  else
    reader.complain(tag::answer, "is none of stops");
  out.id_text = reader.text_or_empty(tag::id);
  out.report.id = read_id(out.id_text);
  out.report.account = account_;
  out.report.number = reader.integer(tag::order);
  out.report.result = read_code(reader, tag::result, ResultCode::none);
  out.report.time = reader.time_or(tag::transact_time, {});
  return out;
}

WireNews NewsDecoder::refused(FieldReader& reader, int id_tag) const {
  news::Refused out;
  out.id_text = reader.text_or_empty(id_tag);
  out.id = read_id(out.id_text);
  out.code = read_code(reader, tag::request_code, request::silent);
  out.text = reader.text_or_empty(tag::text);
  if (out.code == request::taken) reader.complain(tag::request_code, "is no refusal");
  return out;
}

WireNews NewsDecoder::fills(const FixMessage& message, FieldReader& reader) const {
  news::Fills out;
  out.last = reader.flag(tag::last_fragment);
  out.complete = reader.flag(tag::complete);
  for (const FixFields& fields : message.entries(tag::fills)) {
    FieldReader part(fields);
    Execution& fill = out.fills.emplace_back();
    fill.account = account_;
    fill.execution = part.text(tag::execution);
    fill.id = read_id(part.text_or_empty(tag::id));
    fill.number = part.integer(tag::order);
    fill.closes = part.flag(tag::closes);
    fill.operation = read_operation(part, false);
    fill.symbol = part.text(tag::symbol);
    fill.lots = lots(part, tag::quantity, fill.symbol);
    fill.price = part.positive(tag::price);
    fill.time = part.time_or(tag::transact_time, {});
    fill.realised = read_realised(part);
    keep_fault(reader, part, tag::fills);
  }
  return out;
}

WireNews NewsDecoder::summary(FieldReader& reader) const {
  news::Summary out;
  out.owned = !reader.has(tag::owned) || reader.flag(tag::owned);
  AccountSummary& summary = out.summary;
  summary.balance = reader.number(tag::balance);
  summary.equity = reader.number(tag::equity);
  summary.free_margin = reader.number(tag::free_margin);
  summary.floating_pl = reader.number_or(tag::floating_profit, 0.0);
  summary.credit = reader.number_or(tag::credit, 0.0);
  const double used = reader.number_or(tag::used_margin, 0.0);
  summary.used_margin = used > 0.0 ? -used : 0.0;
  summary.margin_level = reader.number_or(tag::margin_level, 0.0);
  out.info.number = account_;
  out.info.currency = reader.text_or_empty(tag::currency);
  out.info.name = reader.text_or_empty(tag::holder);
  out.info.leverage = reader.number_or(tag::leverage, 0.0);
  const std::string era = reader.text_or_empty(tag::era);
  const auto [end, error] = std::from_chars(era.data(), era.data() + era.size(), out.era);
  if (!era.empty() && (error != std::errc{} || end != era.data() + era.size()))
    reader.complain(tag::era, "is no era");
  out.lots = {reader.number_or(tag::smallest_lots, 0.0), reader.number_or(tag::largest_lots, 0.0)};
  return out;
}

WireNews NewsDecoder::offer(FieldReader& reader) const {
  news::Offer out;
  Requote& requote = out.requote;
  requote.account = account_;
  requote.order = reader.integer(reader.has(tag::order) ? tag::order : tag::quote);
  requote.symbol = reader.text(tag::symbol);
  requote.operation = wire::operation(reader.text(tag::side), wire::market);
  if (requote.operation == Operation::none) reader.complain(tag::side, "is neither 1 nor 2");
  requote.amount = lots(reader, tag::quantity, requote.symbol);
  requote.price = reader.positive(tag::price);
  requote.new_price = reader.positive(buys(requote.operation) ? tag::offer : tag::bid);
  const std::int64_t seconds = reader.integer(tag::seconds_all);
  const std::int64_t left = reader.integer_or(tag::seconds_left, seconds);
  if (seconds < 0 || seconds > 3'600 || left < 0 || left > seconds)
    reader.complain(tag::seconds_all, "is no time to think");
  requote.seconds_all = static_cast<std::int16_t>(seconds);
  requote.seconds_left = static_cast<std::int16_t>(left);
  return out;
}

}  // namespace tutti
