#include "fix/profile/profile_reader.h"

#include <charconv>
#include <limits>
#include <set>
#include <utility>

#include "core/file_writer.h"
#include "core/numbers.h"
#include "core/table_reader.h"
#include "core/texts.h"

namespace tutti {
namespace {

using Profile = BrokerProfile;

constexpr int highest_tag = 99'999;
constexpr int most_per_minute = 100'000;
constexpr double most_lots = 1e6;
constexpr double most_money = 1e12;

constexpr Word<Peer::Proof> tls_words[] = {
    {"verify", Peer::Proof::certificate},
    {"pinned", Peer::Proof::pinned},
    {"off", Peer::Proof::none},
};
constexpr Word<Profile::Logon::Credentials> credentials_words[] = {
    {"logon", Profile::Logon::Credentials::logon},
    {"user_request", Profile::Logon::Credentials::user_request},
};
constexpr Word<Profile::Quotes::Update> update_words[] = {
    {"full", Profile::Quotes::Update::full},
    {"incremental", Profile::Quotes::Update::incremental},
};
constexpr Word<Profile::Symbols::Source> symbol_source_words[] = {
    {"security_list", Profile::Symbols::Source::security_list},
    {"session_status", Profile::Symbols::Source::session_status},
    {"table", Profile::Symbols::Source::table},
};
constexpr Word<Profile::Symbols::Unit> unit_words[] = {
    {"points", Profile::Symbols::Unit::points},
    {"price", Profile::Symbols::Unit::price},
};
constexpr Word<Profile::Orders::Quantity> quantity_words[] = {
    {"units", Profile::Orders::Quantity::units},
    {"lots", Profile::Orders::Quantity::lots},
    {"contracts", Profile::Orders::Quantity::contracts},
};
constexpr Word<Profile::Orders::Close> close_words[] = {
    {"position_id", Profile::Orders::Close::position_id},
    {"opposite", Profile::Orders::Close::opposite},
    {"none", Profile::Orders::Close::none},
};
constexpr Word<Profile::Orders::Stops> stops_words[] = {
    {"none", Profile::Orders::Stops::none},
    {"tags", Profile::Orders::Stops::tags},
    {"orders", Profile::Orders::Stops::orders},
    {"own", Profile::Orders::Stops::own},
};
constexpr Word<Profile::Positions::Source> position_source_words[] = {
    {"report", Profile::Positions::Source::report},
    {"executions", Profile::Positions::Source::executions},
    {"pushed", Profile::Positions::Source::pushed},
};
constexpr Word<Profile::Summary::Source> summary_source_words[] = {
    {"collateral", Profile::Summary::Source::collateral},
    {"pushed", Profile::Summary::Source::pushed},
    {"computed", Profile::Summary::Source::computed},
};
constexpr Word<Profile::Requotes> requote_words[] = {
    {"none", Profile::Requotes::none},
    {"quote", Profile::Requotes::quote},
};

bool is_loopback(std::string_view address) {
  return address == "localhost" || address == "::1" || address.starts_with("127.");
}

// Reads the tables of one profile in turn; the first fault ends all.
class ProfileReader {
 public:
  explicit ProfileReader(const toml::table& root) : root_(root) {}

  tl::expected<Profile, std::string> read() {
    TableReader reader(root_, fault_);
    reader.require("connection");
    part(reader, "connection", [&](TableReader& table) { read_connection(table); });
    part(reader, "logon", [&](TableReader& table) { read_logon(table); });
    part(reader, "quotes", [&](TableReader& table) { read_quotes(table); });
    part(reader, "symbols", [&](TableReader& table) { read_symbols(table); });
    part(reader, "orders", [&](TableReader& table) { read_orders(table); });
    part(reader, "positions", [&](TableReader& table) { read_positions(table); });
    part(reader, "summary", [&](TableReader& table) { read_summary(table); });
    profile_.requotes = read_word(reader, "requotes", requote_words, profile_.requotes);
    for (const toml::table* table : reader.tables("reject"))
      read_reject(*table);
    for (const toml::table* table : reader.tables("account"))
      read_account(*table);
    check(reader);
    reader.finish();
    if (fault_) return tl::unexpected(*fault_);
    return std::move(profile_);
  }

 private:
  template <class Read>
  void part(TableReader& reader, std::string_view key, Read read) {
    const toml::table* table = reader.table(key);
    if (table == nullptr) return;
    TableReader part(*table, fault_);
    read(part);
    part.finish();
  }

  static void read_tag(TableReader& reader, std::string_view key, int& tag, int lowest = 1) {
    reader.integer(key, tag, lowest, highest_tag);
  }

  // "ADDRESS:PORT"; an address with colons stands in brackets.
  void read_peer(TableReader& reader, Peer& peer) {
    std::string text;
    reader.text("address", text);
    const auto colon = text.rfind(':');
    const std::int32_t port = colon != text.npos ? parse_int32(text.substr(colon + 1)).value_or(0) : 0;
    std::string address = text.substr(0, colon);
    if (address.size() > 2 && address.front() == '[' && address.back() == ']')
      address = address.substr(1, address.size() - 2);
    else if (address.find(':') != address.npos)
      address.clear();
    if (port < 1 || port > 65'535 || address.empty())
      return reader.complain("address", "must be written as \"ADDRESS:PORT\"");
    peer.address = address;
    peer.port = port;
  }

  void read_proof(TableReader& reader, Peer& peer) {
    peer.proof = read_word(reader, "tls", tls_words, peer.proof);
    reader.text("ca_file", peer.ca_file);
    reader.text("server_name", peer.name);
    reader.text("pin_sha256", peer.pin_sha256);
    std::erase(peer.pin_sha256, ':');
    const bool pin = peer.pin_sha256.size() == 64 &&
                     peer.pin_sha256.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
    if (!peer.pin_sha256.empty() && !pin) reader.complain("pin_sha256", "must be 64 hexadecimal digits");
    if ((peer.proof == Peer::Proof::pinned) != !peer.pin_sha256.empty())
      reader.complain("tls", "must be \"pinned\" where there is a pin_sha256, and only there");
    if (peer.proof == Peer::Proof::none && !is_loopback(peer.address))
      reader.complain("tls", "can be \"off\" on the own machine only");
  }

  void read_connection(TableReader& reader) {
    Profile::Connection& read = profile_.connection;
    reader.require("address");
    read_peer(reader, read.peer);
    read_proof(reader, read.peer);
    reader.integer("logons_at_once", read.logons_at_once, 1, 1'000);
    reader.integer("logons_per_minute", read.logons_per_minute, 0, most_per_minute);
    reader.integer("messages_per_second", read.messages_per_second, 0, most_per_minute);
    reader.integer("orders_per_second", read.orders_per_second, 0, most_per_minute);
    reader.number("reconnect_seconds", read.reconnect_seconds, 0.1, 3'600);
  }

  void read_extra(TableReader& reader, std::string_view key, Profile::Tags& tags) {
    const toml::table* table = reader.table(key);
    if (table == nullptr) return;
    for (const auto& [name, node] : *table) {
      const auto tag = parse_int32(name.str());
      const auto value = node.value<std::string>();
      if (!tag || *tag < 1 || *tag > highest_tag || !node.is_string() || value->empty() ||
          value->find('\x01') != value->npos)
        return reader.complain(key, "must have lines like 207 = \"text\"");
      tags.emplace_back(*tag, *value);
    }
  }

  void read_logon(TableReader& reader) {
    Profile::Logon& read = profile_.logon;
    reader.text("sender", read.sender);
    reader.text("target", read.target);
    reader.text("sender_sub", read.sender_sub);
    reader.text("target_sub", read.target_sub);
    reader.text("username", read.username);
    read.credentials = read_word(reader, "credentials", credentials_words, read.credentials);
    reader.integer("heartbeat", read.heartbeat, 5, 300);
    reader.flag("reset", read.reset);
    reader.flag("own_fields", read.own_fields);
    reader.texts("refused_password", read.refused_password);
    reader.integer("timestamp_digits", read.timestamp_digits, 0, 9);
    read_extra(reader, "extra", read.extra);
    if (read.target.empty()) reader.complain("target", "must not be empty");
  }

  void read_quotes(TableReader& reader) {
    Profile::Quotes& read = profile_.quotes.emplace();
    if (reader.has("address")) {
      read.peer = profile_.connection.peer;
      read_peer(reader, *read.peer);
    }
    reader.text("sender", read.sender);
    reader.text("target", read.target);
    reader.text("sender_sub", read.sender_sub);
    reader.text("target_sub", read.target_sub);
    reader.flag("shared", read.shared);
    reader.integer("depth", read.depth, 0, 100);
    read.update = read_word(reader, "update", update_words, read.update);
    reader.flag("one_symbol_per_request", read.one_symbol_per_request);
    reader.flag("high_low", read.high_low);
  }

  void read_symbols(TableReader& reader) {
    Profile::Symbols& read = profile_.symbols;
    read.source = read_word(reader, "source", symbol_source_words, read.source);
    int key = 55;
    reader.integer("key", key, 48, 55);
    if (key != 48 && key != 55) reader.complain("key", "must be 48 or 55");
    read.key = key == 48 ? Profile::Symbols::Key::security_id : Profile::Symbols::Key::symbol;
    read_tag(reader, "name_tag", read.name_tag);
    reader.text("name_format", read.name_format);
    read_tag(reader, "digits_tag", read.digits_tag);
    read_tag(reader, "limit_distance_tag", read.limit_distance_tag, 0);
    read_tag(reader, "stop_distance_tag", read.stop_distance_tag, 0);
    read.distance_unit = read_word(reader, "distance_unit", unit_words, read.distance_unit);
    read_tag(reader, "contract_size_tag", read.contract_size_tag);
    for (const toml::table* table : reader.tables("table"))
      read_table_symbol(*table);
    if ((read.source == Profile::Symbols::Source::table) != !read.table.empty())
      reader.complain("source", "must be \"table\" where symbols are listed here, and only there");
  }

  void read_table_symbol(const toml::table& table) {
    TableReader reader(table, fault_);
    Profile::TableSymbol read;
    for (const char* key : {"name", "digits", "contract_size", "base", "profit"})
      reader.require(key);
    reader.text("name", read.name);
    reader.text("id", read.id);
    reader.integer("digits", read.digits, 0, 10);
    reader.number("contract_size", read.contract_size, 1e-6, 1e9);
    reader.number("quantity_per_lot", read.quantity_per_lot, 1e-6, 1e9);
    reader.text("base", read.base);
    reader.text("profit", read.profit);
    reader.number("margin_rate", read.margin_rate, 0.0, 1e3);
    reader.number("limit_distance", read.limit_distance, 0.0, 1e9);
    reader.number("stop_distance", read.stop_distance, 0.0, 1e9);
    if (!names_.insert(read.name).second) reader.complain("name", "is given twice");
    reader.finish();
    profile_.symbols.table.push_back(std::move(read));
  }

  void read_orders(TableReader& reader) {
    Profile::Orders& read = profile_.orders;
    reader.flag("account", read.account);
    reader.texts("parties", read.parties);
    read.quantity = read_word(reader, "quantity", quantity_words, read.quantity);
    reader.text("time_in_force", read.time_in_force);
    reader.text("handling", read.handling);
    reader.text("market_code", read.market_code);
    reader.text("limit_code", read.limit_code);
    reader.text("stop_code", read.stop_code);
    read.close = read_word(reader, "close", close_words, read.close);
    read_tag(reader, "position_tag", read.position_tag);
    reader.flag("close_flag", read.close_flag);
    reader.flag("replace", read.replace);
    reader.flag("status_request", read.status_request);
    reader.flag("mass_status", read.mass_status);
    reader.flag("status_proves_absence", read.status_proves_absence);
    reader.integer("id_length", read.id_length, 8, 64);
    reader.text("id_letters", read.id_letters);
    read.stops = read_word(reader, "sl_tp", stops_words, read.stops);
    read_tag(reader, "stop_loss_tag", read.stop_loss_tag);
    read_tag(reader, "take_profit_tag", read.take_profit_tag);
    reader.number("smallest_lots", read.smallest_lots, 0.0, most_lots);
    reader.number("largest_lots", read.largest_lots, 0.0, most_lots);
    reader.seconds("late_after_seconds", read.late_after, 1.0, 3'600.0);
    read_extra(reader, "extra", read.extra);
    if (read.largest_lots > 0.0 && read.largest_lots < read.smallest_lots)
      reader.complain("largest_lots", "is below smallest_lots");
    if (read.market_code.empty() || read.limit_code.empty() || read.stop_code.empty())
      reader.complain("market_code", "and the other codes must not be empty");
  }

  void read_positions(TableReader& reader) {
    Profile::Positions& read = profile_.positions;
    read.source = read_word(reader, "source", position_source_words, read.source);
    read_tag(reader, "id_tag", read.id_tag);
    read_tag(reader, "price_tag", read.price_tag);
    reader.flag("subscribe", read.subscribe);
    reader.flag("netting", read.netting);
  }

  void read_summary(TableReader& reader) {
    Profile::Summary& read = profile_.summary;
    read.source = read_word(reader, "source", summary_source_words, read.source);
    reader.text("message", read.message);
    read_tag(reader, "balance_tag", read.balance_tag);
    read_tag(reader, "equity_tag", read.equity_tag, 0);
    read_tag(reader, "free_margin_tag", read.free_margin_tag, 0);
    reader.number("starting_balance", read.starting_balance, -most_money, most_money);
    reader.number("leverage", read.leverage, 0.0, 1e5);
    reader.text("currency", read.currency);
    reader.integer("stale_after_seconds", read.stale_after_seconds, 0, 86'400);
    if ((read.source == Profile::Summary::Source::pushed) != !read.message.empty())
      reader.complain("message", "names the message that is pushed, where the source is \"pushed\"");
  }

  void read_reject(const toml::table& table) {
    TableReader reader(table, fault_);
    Profile::Reject read;
    read_tag(reader, "tag", read.tag);
    reader.text("value", read.value);
    reader.text("text", read.text);
    std::int32_t result = 0;
    reader.require("result");
    reader.integer("result", result, 2, 100);
    read.result = ResultCode{result};
    if ((read.tag != 0) != !read.value.empty()) reader.complain("tag", "and value stand together");
    if (read.tag == 0 && read.text.empty()) reader.complain("text", "or tag is needed");
    reader.finish();
    profile_.rejects.push_back(std::move(read));
  }

  void read_account(const toml::table& table) {
    TableReader reader(table, fault_);
    Profile::Account read;
    reader.require("number");
    reader.integer("number", read.number, 0, std::numeric_limits<std::int32_t>::max());
    reader.text("fix_account", read.fix_account);
    reader.text("sender", read.sender);
    if (!numbers_.insert(read.number).second) reader.complain("number", "is given twice");
    reader.finish();
    profile_.accounts.push_back(std::move(read));
  }

  // What two tables say together.
  void check(TableReader& reader) {
    if (profile_.positions.netting && profile_.orders.close == Profile::Orders::Close::position_id)
      reader.complain("positions", "can't be netting where orders.close is \"position_id\"");
    if (profile_.orders.stops == Profile::Orders::Stops::own && !profile_.logon.own_fields)
      reader.complain("orders", "can't have sl_tp \"own\" where logon.own_fields is false");
  }

  const toml::table& root_;
  std::optional<std::string> fault_;
  Profile profile_;
  std::set<std::string> names_;
  std::set<std::int32_t> numbers_;
};

}  // namespace

tl::expected<BrokerProfile, std::string> read_broker_profile(std::string_view text) {
  std::optional<std::string> fault;
  const auto root = parse_toml(text, fault);
  if (!root) return tl::unexpected(*fault);
  return ProfileReader{*root}.read();
}

tl::expected<BrokerProfile, FileError> load_broker_profile(const std::filesystem::path& file) {
  const auto text = read_file(file);
  if (!text) return tl::unexpected(text.error());
  auto profile = read_broker_profile(*text);
  if (!profile) return tl::unexpected(FileError{file, profile.error()});
  std::string& ca_file = profile->connection.peer.ca_file;
  if (!ca_file.empty()) ca_file = (file.parent_path() / ca_file).string();
  return std::move(*profile);
}

}  // namespace tutti
