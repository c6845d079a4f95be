#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "fix/dialect/wire_news.h"
#include "fix/profile/broker_profile.h"
#include "fix/session/fix_message.h"

namespace tutti {

// Between a broker's FIX, as his profile has it, and our own: renames fields, letters and symbols of one
// account's messages. What needs no translation passes as it is.
class Translation {
 public:
  // The profile outlives it.
  Translation(const BrokerProfile& profile, std::int32_t account);

  void outgoing(FixMessage& message) const;
  // Learns on the way how the broker calls his symbols.
  void incoming(FixMessage& message);

  // Units that a lot is on the wire, of a symbol with this contract size.
  double units_per_lot(std::string_view symbol, double contract_size) const;
  // The symbols that stand in the profile; none where the broker tells them.
  news::Symbols table() const;
  const std::string& account_text() const { return account_; }
  // 49 of this account's messages.
  const std::string& sender() const { return sender_; }

 private:
  void learn(FixFields& entry);
  void name_symbol(FixFields& fields) const;
  void call_symbol(FixFields& fields) const;
  void number_ids(FixFields& fields);
  void name_ids(FixFields& fields) const;
  void add_order_fields(FixMessage& message) const;
  void add_quote_fields(FixMessage& message) const;
  void read_reject(FixMessage& message) const;
  std::string plain_name(std::string_view wire) const;
  std::string formatted_name(std::string_view name) const;

  const BrokerProfile& profile_;
  std::string account_;
  std::string sender_;
  bool by_id_;  // symbols go by what the broker calls them, not by their names
  std::map<std::string, std::string, std::less<>> wire_names_;   // by our name
  std::map<std::string, std::string, std::less<>> plain_names_;  // by the broker's
  std::map<std::string, std::string, std::less<>> id_texts_;     // of orders and positions, by their numbers
};

}  // namespace tutti
