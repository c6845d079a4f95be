#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "fix/profile/quote_profile.h"
#include "fix/wire/peer.h"
#include "sessions/contract/codes.h"

namespace tutti {

// How to reach a broker, and in what his FIX differs from ours. As it is made it speaks to a dealing server
// of our own. docs/brokers.md explains each value by the key that it is read from.
struct BrokerProfile {
  using Tags = std::vector<std::pair<int, std::string>>;  // fields added as they are

  struct Connection {
    Peer peer;
    int logons_at_once = 16;
    int logons_per_minute = 0;    // 0: no bound; the same below
    int messages_per_second = 0;  // of one account
    int orders_per_second = 0;
    double reconnect_seconds = 1.0;  // the first wait; it grows to thirty times as much
  };

  struct Logon {
    std::string sender{};  // the account's number where it is empty
    std::string target = "DEALER";
    std::string sender_sub{}, target_sub{};
    std::string username{};  // the account's user where it is empty
    enum class Credentials : std::uint8_t { logon, user_request } credentials = Credentials::logon;
    int heartbeat = 30;  // seconds
    bool reset = true;   // numbers begin anew with every logon
    Tags extra{};
    std::vector<std::string> refused_password = {"BAD_PASSWORD"};  // one is in the text of such a refusal
    int timestamp_digits = 3;
    bool own_fields = true;  // the broker is a server of ours
  };

  using Quotes = QuoteProfile;

  struct TableSymbol {
    std::string name{};
    std::string id{};  // 48, or what 55 has in place of the name
    std::int32_t digits = 5;
    double contract_size = 100'000.0;
    double quantity_per_lot = 0.0;  // 0: the contract size
    std::string base{}, profit{};
    double margin_rate = 0.0;
    double limit_distance = 0.0, stop_distance = 0.0;  // points
  };
  struct Symbols {
    enum class Source : std::uint8_t { security_list, session_status, table } source = Source::security_list;
    enum class Key : std::uint8_t { symbol, security_id } key = Key::symbol;
    int name_tag = 55;
    std::string name_format{};  // "EUR/USD" where the broker parts the currencies so
    int digits_tag = 20'003;
    int limit_distance_tag = 20'004, stop_distance_tag = 20'005;
    enum class Unit : std::uint8_t { points, price } distance_unit = Unit::points;
    int contract_size_tag = 231;
    std::vector<TableSymbol> table{};
  };

  struct Orders {
    bool account = false;  // 1 in every order
    std::vector<std::string> parties{};
    enum class Quantity : std::uint8_t { units, lots, contracts } quantity = Quantity::units;
    std::string time_in_force{};
    std::string handling{};
    std::string market_code = "1", limit_code = "2", stop_code = "3";
    enum class Close : std::uint8_t { position_id, opposite, none } close = Close::position_id;
    int position_tag = 721;
    bool close_flag = true;  // 77=C
    bool replace = true;     // G
    bool status_request = true;
    bool mass_status = true;
    bool status_proves_absence = true;
    int id_length = 13;
    std::string id_letters{};  // the ones of our own where it is empty
    enum class Stops : std::uint8_t { none, tags, orders, own } stops = Stops::own;
    int stop_loss_tag = 20'010, take_profit_tag = 20'011;
    double smallest_lots = 0.0, largest_lots = 0.0;  // 0: the broker tells
    std::chrono::milliseconds late_after = std::chrono::seconds{30};
    Tags extra{};
  };

  struct Positions {
    enum class Source : std::uint8_t { report, executions, pushed } source = Source::report;
    int id_tag = 721, price_tag = 730;
    bool subscribe = true;
    bool netting = false;
  };

  struct Summary {
    enum class Source : std::uint8_t { collateral, pushed, computed } source = Source::collateral;
    std::string message{};  // type of what is pushed
    int balance_tag = 901, equity_tag = 900, free_margin_tag = 899;
    double starting_balance = 0.0;
    double leverage = 0.0;
    std::string currency{};
    int stale_after_seconds = 0;  // 0: never
  };

  // A refusal of the broker that has a result of the contract.
  struct Reject {
    int tag = 0;          // 0: the text alone counts
    std::string value{};  // of that tag
    std::string text{};   // a part of 58
    ResultCode result = result::failed;
  };

  // An account that is called otherwise there.
  struct Account {
    std::int32_t number = 0;
    std::string fix_account{};
    std::string sender{};
  };

  Connection connection;
  Logon logon;
  std::optional<Quotes> quotes{};  // nothing: on the same session, as our own servers have it
  Symbols symbols;
  Orders orders;
  Positions positions;
  Summary summary;
  enum class Requotes : std::uint8_t { none, quote } requotes = Requotes::quote;
  std::vector<Reject> rejects{};
  std::vector<Account> accounts{};

  // What the profile says of an account; nullptr where it says nothing.
  const Account* find_account(std::int32_t number) const;
  // What the accounts of this broker can't do, each in the operator's words.
  std::vector<std::string> missing() const;
  // What this program can't do for a profile like this yet, by its keys: it must not be connected.
  std::vector<std::string> unsupported() const;
};

}  // namespace tutti
