#include "accounts/distribution.h"

#include <cmath>
#include <string>
#include <utility>

#include "core/numbers.h"

namespace tutti {
namespace {

constexpr std::size_t column_result = 2;

std::int32_t account_of(const Row& row) {
  return static_cast<std::int32_t>(row.key().number());
}

void refuse(Row& row, std::string_view reason) {
  row.set_checked(false);
  row.set_text(column_result, reason);
}

}  // namespace

bool Distribution::summary_of(const CClientAPIManager& session, Row& row, AccountSummary& out) {
  const SummaryAnswer answer = session.ClientAPIF().GetAccountSummary(account_of(row));
  if (answer.result != result::succeeded) {
    refuse(row, CClientAPIManager::ResultDescription(answer.result));
    return false;
  }
  // What is no number would make the shares of all others none.
  for (const auto& [value, name] :
       {std::pair{answer.values.equity, "Equity"}, {answer.values.free_margin, "Free margin"}}) {
    if (std::isfinite(value)) continue;
    refuse(row, name + std::string{" is not a finite number"});
    return false;
  }
  out = answer.values;
  return true;
}

Distribution::Sums Distribution::weed_out(std::string_view symbol) {
  Sums sums;
  for (Row& row : window_.account_rows()) {
    if (!row.checked()) continue;
    const CClientAPIManager* session = sessions_.carrying(symbol, account_of(row));
    if (session == nullptr) {
      refuse(row, std::string{symbol} + " is not visible to this account");
      continue;
    }
    AccountSummary summary;
    if (!summary_of(*session, row, summary)) continue;
    if (summary.equity < 0.0) {
      refuse(row, window_.no_balance_text());
      continue;
    }
    ++sums.accounts;
    sums.equity += summary.equity;
    sums.free_margin += summary.free_margin;
  }
  return sums;
}

void Distribution::write_shares(double amount, DistributionRule rule, std::string_view symbol,
                                const Sums& sums) {
  const double equal_share = amount / sums.accounts;
  for (Row& row : window_.account_rows()) {
    const std::int32_t account = account_of(row);
    if (!row.checked()) continue;
    const CClientAPIManager* session = sessions_.carrying(symbol, account);
    if (session == nullptr) continue;
    double share = equal_share;
    if (rule != DistributionRule::equal) {
      // Values may have moved since the sums were made; the share is of the value now.
      AccountSummary summary;
      if (!summary_of(*session, row, summary)) continue;
      share = rule == DistributionRule::margin ? amount * summary.free_margin / sums.free_margin
                                               : amount * summary.equity / sums.equity;
    }
    share = round_half_even(share, decimals_);
    if (std::isfinite(share)) {
      window_.updateAmount(account, share, row.key());
    } else {
      refuse(row, "The share is not a finite number");
    }
  }
}

void Distribution::run(double amount, std::int16_t type, std::string_view symbol) {
  if (amount == 0.0) return notices_.message_box("Please fill the required fields");
  const Sums sums = weed_out(symbol);
  if (sums.accounts == 0) {
    notices_.message_box("No account selected");
    window_.Enableds(true);
    window_.clear_all_accounts_box();
    return;
  }
  const auto rule = static_cast<DistributionRule>(type);
  const bool margin = rule == DistributionRule::margin;
  const double sum = margin ? sums.free_margin : sums.equity;
  if ((margin || rule == DistributionRule::equity) && (sum == 0.0 || !std::isfinite(sum))) {
    return notices_.message_box(std::string{"The "} + (margin ? "free margin" : "equity") +
                                " of the ticked accounts adds up to " +
                                (sum == 0.0 ? "0" : "no finite number") + ", so nothing can be split by it");
  }
  if (rule == DistributionRule::none) {
    notices_.message_box("Please select distribution type");
  } else if (rule == DistributionRule::equal || margin || rule == DistributionRule::equity) {
    write_shares(amount, rule, symbol, sums);
  }
  window_.Enableds(false);
}

}  // namespace tutti
