#include "ledger/realised_sums.h"

#include <map>
#include <tuple>

namespace tutti {
namespace {

template <class Sums>
std::vector<RealisedSum> values(const Sums& sums) {
  std::vector<RealisedSum> out;
  for (const auto& [key, sum] : sums)
    out.push_back(sum);
  return out;
}

}  // namespace

std::vector<RealisedSum> realised_by_day(std::span<const FillRecord> fills) {
  std::map<std::tuple<std::chrono::sys_days, std::int32_t, std::string, std::string, std::string>,
           RealisedSum>
      sums;
  for (const FillRecord& fill : fills) {
    if (!fill.closes) continue;
    const auto day = std::chrono::floor<std::chrono::days>(fill.time);
    const LedgerAccount& who = fill.account;
    RealisedSum& sum = sums.try_emplace({day, who.account, who.user, who.server, fill.currency},
                                        RealisedSum{.account = who, .day = day, .currency = fill.currency})
                           .first->second;
    ++sum.closes;
    if (!fill.profit) ++sum.untold;
    sum.profit += fill.profit.value_or(0.0);
    sum.commission += fill.commission.value_or(0.0);
  }
  return values(sums);
}

std::vector<RealisedSum> realised_by_currency(std::span<const RealisedSum> sums) {
  std::map<std::string, RealisedSum> out;
  for (const RealisedSum& each : sums) {
    RealisedSum& sum =
        out.try_emplace(each.currency, RealisedSum{.account = {}, .currency = each.currency}).first->second;
    sum.closes += each.closes;
    sum.untold += each.untold;
    sum.profit += each.profit;
    sum.commission += each.commission;
  }
  return values(out);
}

}  // namespace tutti
