#include "fix/client/translation.h"

#include <cmath>
#include <utility>

#include "core/texts.h"
#include "fix/dialect/ask_codec.h"
#include "fix/dialect/tags.h"
#include "fix/dialect/wire_values.h"
#include "fix/dialect/words.h"

namespace tutti {
namespace {

using Symbols = BrokerProfile::Symbols;

constexpr int security_id = 48, id_source = 22, time_in_force = 59, handling = 21, parties = 453;
constexpr int first_own_tag = 20'000;

// The value of one field under the name of another; none of it stays.
void rename(FixFields& fields, int from, int to) {
  if (from == to || from == 0) return;
  const std::string* value = fields.find(from);
  if (value == nullptr) return;
  std::string moved = *value;
  fields.remove(from);
  fields.set(to, std::move(moved));
}

bool is_order(const FixMessage& message) {
  return message.type == "D" || message.type == "G" || message.type == "F";
}

}  // namespace

Translation::Translation(const BrokerProfile& profile, std::int32_t account)
    : profile_(profile),
      account_(std::to_string(account)),
      by_id_(profile.symbols.key == Symbols::Key::security_id || profile.symbols.name_tag != tag::symbol ||
             !profile.symbols.name_format.empty() || profile.symbols.source == Symbols::Source::table) {
  sender_ = profile.logon.sender.empty() ? account_ : profile.logon.sender;
  if (const auto* own = profile.find_account(account)) {
    if (!own->fix_account.empty()) account_ = own->fix_account;
    if (!own->sender.empty()) sender_ = own->sender;
  }
  for (const BrokerProfile::TableSymbol& symbol : profile.symbols.table) {
    const std::string wire = !symbol.id.empty() ? symbol.id : formatted_name(symbol.name);
    wire_names_[symbol.name] = wire;
    plain_names_[wire] = symbol.name;
  }
}

// "EUR/USD" says where the sign between two currencies of three letters stands.
std::string Translation::formatted_name(std::string_view name) const {
  const std::string& format = profile_.symbols.name_format;
  if (format.size() != 7 || name.size() != 6) return std::string{name};
  return std::string{name.substr(0, 3)} + format[3] + std::string{name.substr(3)};
}

std::string Translation::plain_name(std::string_view wire) const {
  const std::string& format = profile_.symbols.name_format;
  if (format.size() != 7 || wire.size() != 7 || wire[3] != format[3]) return std::string{wire};
  return std::string{wire.substr(0, 3)} + std::string{wire.substr(4)};
}

void Translation::call_symbol(FixFields& fields) const {
  const std::string* name = fields.find(tag::symbol);
  if (!by_id_ || name == nullptr) return;
  const auto at = wire_names_.find(*name);
  if (at == wire_names_.end()) return;
  if (profile_.symbols.key == Symbols::Key::symbol) return fields.set(tag::symbol, at->second);
  fields.remove(tag::symbol);
  fields.set(security_id, at->second);
  fields.set(id_source, "8");
}

void Translation::name_symbol(FixFields& fields) const {
  if (!by_id_) return;
  const int key = profile_.symbols.key == Symbols::Key::security_id ? security_id : tag::symbol;
  const std::string* wire = fields.find(key);
  if (wire == nullptr) return;
  const auto at = plain_names_.find(*wire);
  if (at != plain_names_.end()) fields.set(tag::symbol, at->second);
}

// A broker may call orders and positions as he likes; a number that the text alone gives stands for each
// here.
void Translation::number_ids(FixFields& fields) {
  if (profile_.logon.own_fields) return;
  for (const int each : {tag::order, tag::position, tag::quote}) {
    const std::string text{fields.text(each)};
    if (text.empty() || text == "NONE") continue;
    const auto plain = read_wire_integer(text);
    if (plain && *plain > 0 && std::to_string(*plain) == text) continue;
    const std::string number = std::to_string(id_of_text(text));
    id_texts_[number] = text;
    fields.set(each, number);
  }
}

void Translation::name_ids(FixFields& fields) const {
  for (const int each : {tag::order, tag::position, tag::quote}) {
    const auto at = id_texts_.find(fields.text(each));
    if (at != id_texts_.end()) fields.set(each, at->second);
  }
}

void Translation::learn(FixFields& entry) {
  const Symbols& symbols = profile_.symbols;
  if (by_id_) {
    const int key = symbols.key == Symbols::Key::security_id ? security_id : tag::symbol;
    const std::string wire{entry.text(key)};
    const std::string name = plain_name(entry.text(symbols.name_tag));
    if (wire.empty() || name.empty()) return;
    wire_names_[name] = wire;
    plain_names_[wire] = name;
    entry.set(tag::symbol, name);
  }
  rename(entry, symbols.digits_tag, tag::digits);
  rename(entry, symbols.contract_size_tag, tag::contract_size);
  rename(entry, symbols.limit_distance_tag, tag::limit_distance);
  rename(entry, symbols.stop_distance_tag, tag::stop_distance);
  if (symbols.distance_unit != Symbols::Unit::price) return;
  const auto digits = read_wire_integer(entry.text(tag::digits));
  for (const int each : {tag::limit_distance, tag::stop_distance})
    if (const auto distance = read_wire_number(entry.text(each)); distance && digits && *digits <= 10)
      entry.set(each, wire_number(std::round(*distance * std::pow(10.0, static_cast<double>(*digits)))));
}

void Translation::add_order_fields(FixMessage& message) const {
  const BrokerProfile::Orders& orders = profile_.orders;
  if (orders.account) message.set(tag::account, account_);
  FixGroup group{parties, {}};
  for (const std::string& party : orders.parties) {
    const auto parts = split(party, ",");
    FixFields& entry = group.entries.emplace_back();
    for (std::size_t i = 0; i < parts.size() && i < 3; ++i)
      entry.set(i == 0 ? 448 : i == 1 ? 447 : 452, std::string{parts[i]});
  }
  if (!group.entries.empty()) message.groups.push_back(std::move(group));
  if (message.type == "F") return;
  if (!orders.time_in_force.empty()) message.set(time_in_force, orders.time_in_force);
  if (!orders.handling.empty()) message.set(handling, orders.handling);
  for (const auto& [tag, value] : orders.extra)
    message.set(tag, value);
  const std::string_view type = message.text(tag::order_type);
  message.set(tag::order_type, type == wire::limit  ? orders.limit_code
                               : type == wire::stop ? orders.stop_code
                                                    : orders.market_code);
  if (!orders.close_flag) message.fields.remove(tag::position_effect);
  rename(message.fields, tag::position, orders.position_tag);
}

void Translation::add_quote_fields(FixMessage& message) const {
  message.set(tag::depth, std::to_string(profile_.quotes->depth));
  if (profile_.quotes->high_low) return;
  for (FixGroup& group : message.groups)
    if (group.count_tag == tag::entry_types) group.entries.resize(2);  // bid and offer stand first
}

void Translation::outgoing(FixMessage& message) const {
  name_ids(message.fields);
  if (is_order(message)) add_order_fields(message);
  if (message.type == "AN" && !profile_.positions.subscribe) message.fields.remove(tag::subscription);
  if (message.type == "V" && profile_.quotes) add_quote_fields(message);
  message.each_fields([this](FixFields& fields) { call_symbol(fields); });
  if (profile_.orders.stops == BrokerProfile::Orders::Stops::tags) {
    rename(message.fields, tag::stop_loss, profile_.orders.stop_loss_tag);
    rename(message.fields, tag::take_profit, profile_.orders.take_profit_tag);
  }
  if (!profile_.logon.own_fields)
    message.fields.remove_from(first_own_tag, profile_.orders.stop_loss_tag, profile_.orders.take_profit_tag);
}

// The broker's words for a refusal, as a result of the contract.
void Translation::read_reject(FixMessage& message) const {
  const bool refused = message.type == "9" || (message.type == "8" && message.text(tag::exec_type) == "8");
  if (!refused || message.has(tag::result) || message.has(tag::request_code)) return;
  for (const BrokerProfile::Reject& reject : profile_.rejects) {
    if (reject.tag != 0 && message.text(reject.tag) != reject.value) continue;
    if (message.text(tag::text).find(reject.text) == std::string_view::npos) continue;
    message.set(tag::result, std::to_string(static_cast<std::int32_t>(reject.result)));
    return;
  }
}

void Translation::incoming(FixMessage& message) {
  if (message.type == "y") {
    for (FixGroup& group : message.groups)
      for (FixFields& entry : group.entries)
        learn(entry);
    return;
  }
  message.each_fields([this](FixFields& fields) { name_symbol(fields); });
  const BrokerProfile::Orders& orders = profile_.orders;
  if (message.type == "AP") {
    rename(message.fields, profile_.positions.id_tag, tag::position);
    rename(message.fields, profile_.positions.price_tag, tag::settle_price);
  } else if (message.type == "BA") {
    rename(message.fields, profile_.summary.balance_tag, tag::balance);
    rename(message.fields, profile_.summary.equity_tag, tag::equity);
    rename(message.fields, profile_.summary.free_margin_tag, tag::free_margin);
    if (!message.has(tag::currency) && !profile_.summary.currency.empty())
      message.set(tag::currency, profile_.summary.currency);
    if (!message.has(tag::leverage) && profile_.summary.leverage > 0.0)
      message.set(tag::leverage, wire_number(profile_.summary.leverage));
  } else if (message.type == "8") {
    const std::string_view type = message.text(tag::order_type);
    if (type == orders.limit_code)
      message.set(tag::order_type, std::string{wire::limit});
    else if (type == orders.stop_code)
      message.set(tag::order_type, std::string{wire::stop});
    else if (type == orders.market_code)
      message.set(tag::order_type, std::string{wire::market});
    rename(message.fields, orders.position_tag, tag::position);
  }
  number_ids(message.fields);
  read_reject(message);
}

double Translation::units_per_lot(std::string_view symbol, double contract_size) const {
  if (profile_.orders.quantity == BrokerProfile::Orders::Quantity::lots) return 1.0;
  for (const BrokerProfile::TableSymbol& each : profile_.symbols.table)
    if (each.name == symbol && each.quantity_per_lot > 0.0) return each.quantity_per_lot;
  return contract_size;
}

news::Symbols Translation::table() const {
  news::Symbols out;
  for (const BrokerProfile::TableSymbol& each : profile_.symbols.table) {
    news::SymbolEntry& entry = out.entries.emplace_back();
    entry.symbol = {.name = each.name,
                    .digits = each.digits,
                    .contract_size = each.contract_size,
                    .base = each.base,
                    .profit = each.profit,
                    .margin_rate = each.margin_rate};
    entry.limit_distance = each.limit_distance;
    entry.stop_distance = each.stop_distance;
  }
  return out;
}

}  // namespace tutti
