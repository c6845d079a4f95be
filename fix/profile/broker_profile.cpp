#include "fix/profile/broker_profile.h"

#include <algorithm>

namespace tutti {

const BrokerProfile::Account* BrokerProfile::find_account(std::int32_t number) const {
  const auto at = std::find_if(accounts.begin(), accounts.end(),
                               [&](const Account& each) { return each.number == number; });
  return at == accounts.end() ? nullptr : &*at;
}

std::vector<std::string> BrokerProfile::missing() const {
  std::vector<std::string> out;
  const auto add = [&](bool lacks, const char* text) {
    if (lacks) out.emplace_back(text);
  };
  add(orders.stops == Orders::Stops::none, "Stop loss and take profit of positions: not at this broker");
  add(orders.close == Orders::Close::none, "Closing a position by its ticket: not at this broker");
  add(!orders.replace, "Changing entry orders: not at this broker");
  add(!orders.status_request, "Asking what became of an order: not at this broker");
  add(!orders.status_proves_absence, "That an order never came: not told by this broker");
  add(requotes == Requotes::none, "Requotes: not at this broker");
  add(summary.source == Summary::Source::computed, "Account values: not told by this broker, but computed");
  add(positions.netting, "Several positions of a symbol: this broker nets them");
  add(symbols.limit_distance_tag == 0 && symbols.source != Symbols::Source::table,
      "Smallest distances of entry orders: not told by this broker");
  return out;
}

std::vector<std::string> BrokerProfile::unsupported() const {
  std::vector<std::string> out;
  const auto add = [&](bool wants, const char* key) {
    if (wants) out.emplace_back(key);
  };
  add(logon.credentials == Logon::Credentials::user_request, "logon.credentials = \"user_request\"");
  add(!logon.reset, "logon.reset = false");
  add(connection.messages_per_second > 0, "connection.messages_per_second");
  add(quotes.has_value() && (quotes->peer || quotes->shared), "quotes with a session of their own");
  add(quotes.has_value() && quotes->update == Quotes::Update::incremental, "quotes.update = \"incremental\"");
  add(symbols.source == Symbols::Source::session_status, "symbols.source = \"session_status\"");
  add(orders.close == Orders::Close::opposite, "orders.close = \"opposite\"");
  add(orders.stops == Orders::Stops::orders, "orders.sl_tp = \"orders\"");
  add(orders.id_length < 13 || !orders.id_letters.empty(), "orders.id_length below 13 and orders.id_letters");
  add(positions.source != Positions::Source::report, "positions.source other than \"report\"");
  add(positions.netting, "positions.netting");
  add(summary.source != Summary::Source::collateral, "summary.source other than \"collateral\"");
  return out;
}

}  // namespace tutti
