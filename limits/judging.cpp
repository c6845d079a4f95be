#include "limits/judging.h"

#include <fmt/format.h>

#include <utility>

#include <tsl/robin_map.h>

#include "core/numbers.h"

namespace tutti::limits {
namespace {

// Sums of lots differ in their last binary digits.
constexpr double same_figure = 1e-8;
// What the limit of lots is counted by.
constexpr double equity_unit = 1000.0;

double seconds(std::chrono::milliseconds time) {
  return std::chrono::duration<double>(time).count();
}

class Judge {
 public:
  explicit Judge(const Limits& limits) : limits_(limits) {}

  void at_most(Limit limit, std::int32_t account, std::optional<double> is) {
    const std::optional<double>& allowed = limits_[limit];
    if (!allowed || (is && *is <= *allowed + same_figure)) return;
    breaches.push_back({limit, account, is, *allowed});
  }
  void changing(const RequestFigures& each) {
    std::optional<double> age;
    if (each.quote_age) age = seconds(*each.quote_age);
    at_most(Limit::quote_age, each.account, age);
    // An entry order has a price of its own, and a distance of 0.
    at_most(Limit::price_distance, each.account, each.points);
  }

  std::vector<Breach> breaches;

 private:
  const Limits& limits_;
};

}  // namespace

std::vector<Breach> judge(const Limits& limits, const TicketFigures& ticket,
                          std::span<const RequestFigures> requests) {
  Judge judge{limits};
  tsl::robin_map<std::int32_t, double> lots;  // an account may stand in several requests
  double sum = 0.0;
  for (const RequestFigures& each : requests) {
    lots[each.account] += each.lots;
    sum += each.lots;
  }
  judge.at_most(Limit::ticket_lots, no_account, sum);
  if (limits[Limit::same_ticket] && ticket.since_same &&
      seconds(*ticket.since_same) < *limits[Limit::same_ticket])
    judge.breaches.push_back(
        {Limit::same_ticket, no_account, seconds(*ticket.since_same), *limits[Limit::same_ticket]});
  judge.at_most(Limit::tickets_per_minute, no_account, ticket.tickets_in_minute + 1);
  for (const RequestFigures& each : requests) {
    // The sum is told once.
    const double of_account = std::exchange(lots[each.account], 0.0);
    judge.at_most(Limit::account_lots, each.account, of_account);
    if (wants_equity(limits)) {
      std::optional<double> per_equity;
      if (each.equity && *each.equity > 0.0) per_equity = of_account / *each.equity * equity_unit;
      judge.at_most(Limit::equity_lots, each.account, per_equity);
    }
    judge.at_most(Limit::account_value, each.account, each.value);
    judge.changing(each);
    const bool odd = each.lots <= 0.0 || (ticket.total > 0.0 && each.lots > ticket.total + same_figure);
    if (limits[Limit::odd_shares] && odd)
      judge.breaches.push_back({Limit::odd_shares, each.account, each.lots, ticket.total});
  }
  return std::move(judge.breaches);
}

std::optional<Breach> judge_leaving(const Limits& limits, const RequestFigures& request) {
  Judge judge{limits};
  judge.changing(request);
  if (judge.breaches.empty()) return std::nullopt;
  return judge.breaches.front();
}

std::string text(const Breach& breach) {
  const std::string who =
      breach.account == no_account ? "" : "account " + std::to_string(breach.account) + ": ";
  const std::string is = breach.is ? number_text(round_half_even(*breach.is, 5)) : "";
  const std::string most = number_text(breach.allowed);
  const auto figure = [&](std::string_view known, std::string_view not_known) {
    return who + (breach.is ? fmt::format(fmt::runtime(known), is, most)
                            : fmt::format(fmt::runtime(not_known), most));
  };
  switch (breach.limit) {
    case Limit::ticket_lots:
      return figure("{} lots together, above the limit of {} for one order", "");
    case Limit::account_lots:
      return figure("{} lots, above the limit of {} for one account", "");
    case Limit::equity_lots:
      return figure("{} lots for each 1000 of its equity, above the limit of {}",
                    "its equity is not known, and the limit is {} lots for each 1000 of it");
    case Limit::account_value:
      return figure("worth {}, above the limit of {} for one account",
                    "what it is worth is not known, and the limit is {} for one account");
    case Limit::quote_age:
      return figure("the quote is {} s old, above the limit of {} s",
                    "there is no quote, and the limit of its age is {} s");
    case Limit::price_distance:
      return figure("the price has gone {} points since the click, above the limit of {}",
                    "the price at the click is not known, and the limit is {} points from it");
    case Limit::same_ticket:
      return figure("the same order was sent {} s ago, and the limit is {} s", "");
    case Limit::tickets_per_minute:
      return figure("it would be order {} within a minute, above the limit of {}", "");
    case Limit::odd_shares:
      return who + (*breach.is <= 0.0 ? "the share of " + is + " lots is not above 0"
                                      : "the share of " + is + " lots is above the total of " + most);
    case Limit::unknown:
      return who + "what became of an earlier request of the symbol is unknown";
    case Limit::restored:
      return fmt::format(
          "{}the server has taken {} requests that this ledger lacks. Its folder was put back from a backup, "
          "or "
          "a copy of it is in use: compare positions and fills before you send",
          who, number_text(breach.is.value_or(0.0)));
    case Limit::not_stored:
      return who + "the ledger can't store it, so nothing would know of it after a crash";
    case Limit::orders_per_second:
    case Limit::queue_age:
      break;
  }
  return who + "it waited for its turn for too long";
}

}  // namespace tutti::limits
