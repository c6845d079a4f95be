#include "fix/dialect/news_encoder.h"

#include <cmath>
#include <utility>

#include "core/numbers.h"
#include "fix/dialect/tags.h"
#include "fix/dialect/wire_values.h"
#include "fix/dialect/words.h"

namespace tutti {
namespace {

constexpr int unit_decimals = 8;
constexpr int first_own_tag = 20'000;

// A message on its way. A value that is no number spoils the whole: the other end is told nothing rather than
// something made up.
constexpr int spoilt = -1;

void set_number(FixFields& fields, int tag, double value) {
  if (std::isfinite(value))
    fields.set(tag, wire_number(value));
  else
    fields.set(spoilt, "");
}
void set_number(FixMessage& message, int tag, double value) {
  set_number(message.fields, tag, value);
}
template <class Code>
std::string code_text(Code code) {
  return std::to_string(static_cast<std::int32_t>(code));
}
std::string flag_text(bool flag) {
  return flag ? "Y" : "N";
}
std::string shown_id(const std::string& text, RequestId id) {
  return !text.empty() || id <= 0 ? text : wire_id(id);
}
void set_nothing_filled(FixMessage& message) {
  for (const int each : {tag::filled_all, tag::average_price, tag::left})
    message.set(each, "0");
}

}  // namespace

std::optional<FixMessage> NewsEncoder::encode(const WireNews& news, std::string_view stamp) const {
  FixMessage made = std::visit([&](const auto& each) { return message(each, stamp); }, news);
  bool whole = true;
  // Texts that are empty were not told.
  made.each_fields([&](FixFields& fields) {
    whole = whole && !fields.has(spoilt);
    fields.remove_empty();
    if (!own_fields_) fields.remove_from(first_own_tag);
  });
  const bool own_message = made.type.size() == 2 && made.type[0] == 'U';
  if (!whole || (own_message && !own_fields_)) return std::nullopt;
  if (!own_fields_)
    std::erase_if(made.groups, [](const FixGroup& group) { return group.count_tag >= first_own_tag; });
  return made;
}

std::string NewsEncoder::units(std::string_view symbol, double lots) const {
  const double units = lots * sizes_(symbol);
  return std::isfinite(units) ? wire_number(round_half_even(units, unit_decimals)) : "0";
}

FixMessage NewsEncoder::message(const news::Symbols& symbols, std::string_view stamp) const {
  FixMessage out{.type = "y"};
  out.set(tag::security_request, std::string{stamp});
  out.set(tag::security_response, std::string{stamp});
  out.set(tag::list_result, "0");
  out.set(tag::symbol_count, std::to_string(symbols.entries.size()));
  out.set(tag::last_fragment, flag_text(symbols.last));
  FixGroup group{tag::symbols, {}};
  for (const news::SymbolEntry& each : symbols.entries) {
    const Symbol& symbol = each.symbol;
    FixFields& entry = group.entries.emplace_back();
    entry.set(tag::symbol, symbol.name);
    entry.set(tag::currency, symbol.profit);
    set_number(entry, tag::contract_size, symbol.contract_size);
    entry.set(tag::carried, flag_text(each.carried));
    entry.set(tag::digits, std::to_string(symbol.digits));
    set_number(entry, tag::limit_distance, each.limit_distance);
    set_number(entry, tag::stop_distance, each.stop_distance);
    set_number(entry, tag::margin_rate, symbol.margin_rate);
    entry.set(tag::base_currency, symbol.base);
  }
  if (!group.entries.empty()) out.groups.push_back(std::move(group));
  return out;
}

FixMessage NewsEncoder::message(const news::Price& price, std::string_view stamp) const {
  FixMessage out{.type = "W"};
  if (!stamp.empty()) out.set(tag::market_request, std::string{stamp});
  out.set(tag::symbol, price.symbol);
  out.set(tag::transact_time, wire_time(price.time));
  FixGroup group{tag::entries, {}};
  const auto add = [&](const char* type, double value) {
    if (value == 0.0) return;
    FixFields& entry = group.entries.emplace_back();
    entry.set(tag::entry_type, type);
    set_number(entry, tag::entry_price, value);
  };
  add("0", price.bid);
  add("1", price.ask);
  add("7", price.high);
  add("8", price.low);
  out.groups.push_back(std::move(group));
  return out;
}

FixMessage NewsEncoder::message(const news::PositionList& list, std::string_view stamp) const {
  FixMessage out{.type = "AO"};
  out.set(tag::position, std::string{stamp});
  out.set(tag::position_request, std::string{stamp});
  out.set(tag::position_count, std::to_string(list.count));
  out.set(tag::position_result, list.count > 0 ? "0" : "2");
  out.set(tag::position_status, "0");
  return out;
}

FixMessage NewsEncoder::message(const news::Position& news, std::string_view stamp) const {
  const OpenPosition& position = news.position;
  FixMessage out{.type = "AP"};
  out.set(tag::position, std::to_string(position.ticket));
  if (news.listed) out.set(tag::position_request, std::string{stamp});
  out.set(tag::unsolicited, flag_text(!news.listed));
  out.set(tag::position_result, "0");
  out.set(tag::symbol, position.symbol);
  set_number(out, tag::settle_price, position.open_price);
  out.set(tag::transact_time, wire_time(position.open_time));
  FixFields amount;
  const bool bought = buys(position.side);
  amount.set(tag::position_type, "TQ");
  if (!std::isfinite(position.amount)) amount.set(spoilt, "");
  amount.set(bought ? tag::long_quantity : tag::short_quantity,
             news.gone ? "0" : units(position.symbol, position.amount));
  out.groups.push_back({tag::position_list, {std::move(amount)}});
  out.set(tag::gone, flag_text(news.gone));
  if (position.stop_loss != 0.0) set_number(out, tag::stop_loss, position.stop_loss);
  if (position.take_profit != 0.0) set_number(out, tag::take_profit, position.take_profit);
  set_number(out, tag::current_price, position.current_price);
  set_number(out, tag::commission, position.commission);
  set_number(out, tag::interest, position.interest);
  set_number(out, tag::position_profit, position.floating_pl);
  return out;
}

FixMessage NewsEncoder::message(const news::Order& news, std::string_view stamp) const {
  const PendingOrder& order = news.order;
  const bool none = news.listed && news.count == 0;
  const bool market = order.kind == OrderKind::open || order.kind == OrderKind::close;
  FixMessage out{.type = "8"};
  out.set(tag::order, none ? "NONE" : std::to_string(order.order));
  out.set(tag::execution, "0");
  out.set(tag::exec_type, "I");
  out.set(tag::order_status, none ? "8" : news.gone ? "4" : market ? "A" : "0");
  if (news.listed) {
    out.set(tag::mass_request, std::string{stamp});
    out.set(tag::report_count, std::to_string(news.count));
    out.set(tag::last_report, flag_text(news.last));
  }
  if (none) return out;
  out.set(tag::id, news.id_text);
  out.set(tag::symbol, order.symbol);
  const bool closes = order.kind == OrderKind::close;
  out.set(tag::side, wire::side(closes ? opposite(order.operation) : order.operation));
  out.set(tag::quantity, units(order.symbol, order.amount));
  out.set(tag::left, units(order.symbol, order.amount));
  out.set(tag::filled_all, "0");
  out.set(tag::average_price, "0");
  out.set(tag::order_type, market ? std::string{wire::market} : wire::entry_type(order.operation));
  if (order.price != 0.0)
    set_number(out, wire::is_stop(order.operation) ? tag::stop_price : tag::price, order.price);
  if (closes) out.set(tag::position_effect, "C");
  if (order.reference != 0) out.set(tag::position, std::to_string(order.reference));
  out.set(tag::transact_time, wire_time(order.time));
  out.set(tag::order_kind, std::string{order_kind::text(order.kind)});
  out.set(tag::operation, code_text(order.operation));
  out.set(tag::gone, flag_text(news.gone));
  if (order.stop_loss != 0.0) set_number(out, tag::stop_loss, order.stop_loss);
  if (order.take_profit != 0.0) set_number(out, tag::take_profit, order.take_profit);
  return out;
}

FixMessage NewsEncoder::message(const news::Report& report, std::string_view) const {
  const bool done = report.report.result == result::succeeded;
  switch (report.answer) {
    case Answer::update_entry:
    case Answer::cancel_entry:
      return done ? execution_report(report) : cancel_reject(report);
    case Answer::new_stops:
    case Answer::update_stops:
    case Answer::cancel_stops:
    case Answer::stops_done:
    case Answer::stops_no_money:
      return stops_report(report);
    default:
      return execution_report(report);
  }
}

FixMessage NewsEncoder::execution_report(const news::Report& news) const {
  const OrderReport& report = news.report;
  const bool done = report.result == result::succeeded;
  const bool rejects = news.answer == Answer::rejected;
  const bool cancels = news.answer == Answer::cancel_entry || news.answer == Answer::entry_no_money ||
                       news.answer == Answer::entry_no_hedging || news.answer == Answer::cancelled;
  const bool closes = news.answer == Answer::close || report.request_kind == request_kind::close;
  const bool is_entry = news.answer == Answer::entry || news.answer == Answer::update_entry ||
                        news.answer == Answer::cancel_entry || news.answer == Answer::entry_done;
  const bool fills = news.answer == Answer::entry_done || news.answer == Answer::accepted ||
                     (done && report.state == order_state::executed &&
                      (news.answer == Answer::order || news.answer == Answer::close));
  const bool pending = done && report.state == order_state::pending;
  FixMessage out{.type = "8"};
  out.set(tag::order, std::to_string(report.number));
  out.set(tag::id, shown_id(news.id_text, report.id));
  out.set(tag::original_id, news.original_text);
  out.set(tag::execution, report.execution.empty() ? "0" : report.execution);
  const char* type = cancels                               ? "4"
                     : rejects || (!fills && !done)        ? "8"
                     : fills                               ? "F"
                     : pending                             ? "A"
                     : news.answer == Answer::update_entry ? "5"
                                                           : "0";
  out.set(tag::exec_type, type);
  out.set(tag::order_status, fills ? (report.left > 0.0 ? "1" : "2") : type[0] == '5' ? "0" : type);
  if (type[0] == '8') out.set(tag::reject_reason, "99");
  out.set(tag::symbol, report.symbol);
  if (report.operation != Operation::none)
    out.set(tag::side, wire::side(closes ? opposite(report.operation) : report.operation));
  out.set(tag::quantity, units(report.symbol, report.amount));
  out.set(tag::order_type, is_entry ? wire::entry_type(report.operation) : std::string{wire::market});
  if (fills) {
    out.set(tag::last_quantity, units(report.symbol, report.filled));
    set_number(out, tag::last_price, report.price);
  } else if (report.price != 0.0) {
    set_number(out, tag::price, report.price);
  }
  out.set(tag::filled_all, units(report.symbol, report.filled_all));
  set_number(out, tag::average_price, fills ? report.price : 0.0);
  out.set(tag::left, units(report.symbol, report.left));
  out.set(tag::position_effect, closes ? "C" : "");
  out.set(tag::position, closes ? std::to_string(report.number) : "");
  out.set(tag::transact_time, wire_time(report.time));
  out.set(tag::text, report.text);
  out.set(tag::answer, code_text(news.answer));
  out.set(tag::result, code_text(report.result));
  out.set(tag::operation, code_text(report.operation));
  if (report.realised) {
    set_number(out, tag::realised_profit, report.realised->profit);
    set_number(out, tag::realised_commission, report.realised->commission);
  }
  return out;
}

FixMessage NewsEncoder::cancel_reject(const news::Report& news) const {
  const OrderReport& report = news.report;
  FixMessage out{.type = "9"};
  out.set(tag::order, std::to_string(report.number));
  out.set(tag::id, shown_id(news.id_text, report.id));
  out.set(tag::original_id, news.original_text.empty() ? std::string{wire::no_original} : news.original_text);
  out.set(tag::order_status, report.result == result::order_not_found ? "8" : "0");
  out.set(tag::answers_to, news.answer == Answer::cancel_entry ? "1" : "2");
  out.set(tag::cancel_reason, report.result == result::order_not_found ? "1" : "99");
  out.set(tag::text, report.text);
  out.set(tag::answer, code_text(news.answer));
  out.set(tag::result, code_text(report.result));
  return out;
}

FixMessage NewsEncoder::stops_report(const news::Report& news) const {
  const OrderReport& report = news.report;
  FixMessage out{.type = "UR"};
  out.set(tag::order, std::to_string(report.number));
  out.set(tag::id, shown_id(news.id_text, report.id));
  out.set(tag::answer, code_text(news.answer));
  out.set(tag::result, code_text(report.result));
  out.set(tag::transact_time, wire_time(report.time));
  return out;
}

// Of an order that was never taken there is no number.
FixMessage NewsEncoder::message(const news::Refused& refused, std::string_view stamp) const {
  const std::string id = shown_id(refused.id_text, refused.id);
  const bool is_order = stamp == "D", is_change = stamp == "F" || stamp == "G";
  FixMessage out{.type = is_order ? "8" : is_change ? "9" : "j"};
  if (is_order) {
    out.set(tag::order, "NONE");
    out.set(tag::id, id);
    out.set(tag::execution, "0");
    out.set(tag::exec_type, "8");
    out.set(tag::order_status, "8");
    out.set(tag::reject_reason, refused.code == request::other_request ? "6" : "99");
    set_nothing_filled(out);
  } else if (is_change) {
    out.set(tag::order, "NONE");
    out.set(tag::id, id);
    out.set(tag::original_id, std::string{wire::no_original});
    out.set(tag::order_status, "8");
    out.set(tag::answers_to, stamp == "F" ? "1" : "2");
    out.set(tag::cancel_reason, refused.code == request::other_request ? "6" : "99");
  } else {
    out.set(tag::reference_type, stamp.empty() ? std::string{"D"} : std::string{stamp});
    out.set(tag::business_reference, id);
    out.set(tag::business_reason, "0");
  }
  out.set(tag::text, refused.text);
  out.set(tag::request_code, code_text(refused.code));
  return out;
}

FixMessage NewsEncoder::message(const news::Told& told, std::string_view) const {
  FixMessage out{.type = "8"};
  out.set(tag::order, "NONE");
  out.set(tag::id, shown_id(told.id_text, told.id));
  out.set(tag::execution, "0");
  out.set(tag::exec_type, "I");
  out.set(tag::order_status, std::string{wire::letter_of(told.state)});
  set_nothing_filled(out);
  out.set(tag::request_state, code_text(told.state));
  set_number(out, tag::executed_lots, told.lots);
  return out;
}

FixMessage NewsEncoder::message(const news::Fills& fills, std::string_view) const {
  FixMessage out{.type = "UX"};
  out.set(tag::last_fragment, flag_text(fills.last));
  out.set(tag::complete, flag_text(fills.complete));
  FixGroup group{tag::fills, {}};
  for (const Execution& fill : fills.fills) {
    FixFields& entry = group.entries.emplace_back();
    entry.set(tag::execution, fill.execution);
    if (fill.id > 0) entry.set(tag::id, wire_id(fill.id));
    entry.set(tag::order, std::to_string(fill.number));
    entry.set(tag::closes, flag_text(fill.closes));
    entry.set(tag::operation, code_text(fill.operation));
    entry.set(tag::symbol, fill.symbol);
    entry.set(tag::quantity, units(fill.symbol, fill.lots));
    set_number(entry, tag::price, fill.price);
    entry.set(tag::transact_time, wire_time(fill.time));
    if (!fill.realised) continue;
    set_number(entry, tag::realised_profit, fill.realised->profit);
    set_number(entry, tag::realised_commission, fill.realised->commission);
  }
  if (!group.entries.empty()) out.groups.push_back(std::move(group));
  return out;
}

FixMessage NewsEncoder::message(const news::Summary& news, std::string_view stamp) const {
  const AccountSummary& summary = news.summary;
  FixMessage out{.type = "BA"};
  out.set(tag::collateral_report, "0");
  if (!stamp.empty()) out.set(tag::collateral_inquiry, std::string{stamp});
  out.set(tag::collateral_status, "3");
  out.set(tag::currency, news.info.currency);
  set_number(out, tag::balance, summary.balance);
  set_number(out, tag::equity, summary.equity);
  set_number(out, tag::free_margin, summary.free_margin);
  set_number(out, tag::floating_profit, summary.floating_pl);
  set_number(out, tag::credit, summary.credit);
  set_number(out, tag::used_margin, summary.shown_used_margin());
  set_number(out, tag::margin_level, summary.margin_level);
  set_number(out, tag::leverage, news.info.leverage);
  out.set(tag::holder, news.info.name);
  out.set(tag::owned, flag_text(news.owned));
  out.set(tag::era, std::to_string(news.era));
  set_number(out, tag::smallest_lots, news.lots.minimum);
  set_number(out, tag::largest_lots, news.lots.maximum);
  return out;
}

FixMessage NewsEncoder::message(const news::Offer& offer, std::string_view) const {
  const Requote& requote = offer.requote;
  FixMessage out{.type = "S"};
  const std::string number = std::to_string(requote.order);
  out.set(tag::quote, number);
  out.set(tag::order, number);
  out.set(tag::symbol, requote.symbol);
  out.set(tag::side, wire::side(requote.operation));
  out.set(tag::quantity, units(requote.symbol, requote.amount));
  set_number(out, tag::price, requote.price);
  set_number(out, tag::bid, requote.new_price);
  set_number(out, tag::offer, requote.new_price);
  out.set(tag::seconds_all, std::to_string(requote.seconds_all));
  out.set(tag::seconds_left, std::to_string(requote.seconds_left));
  return out;
}

FixMessage NewsEncoder::message(const news::Time& time, std::string_view) const {
  FixMessage out{.type = "UT"};
  out.set(tag::transact_time, wire_time(time.time));
  return out;
}

}  // namespace tutti
