#include "views/fill_list.h"

#include <fmt/format.h>

#include <utility>

#include "core/numbers.h"
#include "core/time_texts.h"
#include "ledger/realised_sums.h"

namespace tutti {
namespace {

constexpr int money_decimals = 2;

struct Period {
  const char* text;
  int days;  // today among them; 0: all there are
};
constexpr Period periods[] = {{"Today", 1}, {"Last 7 days", 7}, {"Last 31 days", 31}, {"All", 0}};

std::string sums_text(const std::vector<FillRecord>& fills) {
  std::string out = fmt::format("{} fills", fills.size());
  const char* before = "; realised: ";
  for (const RealisedSum& sum : realised_by_currency(realised_by_day(fills))) {
    out += fmt::format("{}{} {} in {} closes", std::exchange(before, ", "), sum.currency,
                       fixed_text(sum.profit + sum.commission, money_decimals), sum.closes);
    if (sum.untold > 0) out += fmt::format(" ({} not told)", sum.untold);
  }
  return out;
}

}  // namespace

FillList::FillList(const Clock& clock, LedgerReads* reads) : clock_(clock), reads_(reads) {
  lvwFills.set_column_widths("15,6,8,6,6,7,8,10,10,9,8,7");
  lvwFills.set_column_tip(Column::time, server_time_tip);
  lvwFills.set_column_tip(Column::profit, "What a close brought, interest included, without commission");
  for (const Period& each : periods)
    period.add_item(each.text);
  period.set_index(0);
  period.on_choose = [this] {
    outdated_ = true;
    read();
  };
}

void FillList::Displayed(bool displayed) {
  if (std::exchange(displayed_, displayed) == displayed || !displayed) return;
  read();
}

void FillList::poll() {
  if (displayed_ && (outdated_ || clock_.elapsed() - asked_at_ >= interval)) read();
}

void FillList::read() {
  if (reads_ == nullptr || asked_ || period.index() < 0) return;
  asked_ = true;
  asked_at_ = clock_.elapsed();
  const Period& wanted = periods[static_cast<std::size_t>(period.index())];
  const auto today = std::chrono::floor<std::chrono::days>(clock_.now());
  const TimePoint since =
      wanted.days == 0 ? TimePoint{} : TimePoint{today - std::chrono::days{wanted.days - 1}};
  const bool all = std::exchange(outdated_, false) || since != since_;
  reads_->ask(
      [this, known = all ? std::int64_t{-1} : version_, since](LedgerQueries& ledger) -> LedgerReads::Show {
        const std::int64_t version = ledger.version();
        if (version == known) return [this] { asked_ = false; };
        return
            [this, version, since, fills = ledger.fills({.since = since})] { show(fills, version, since); };
      },
      [this](const std::string& why) {
        asked_ = false;
        outdated_ = true;
        sums.set_text("The ledger can't be read: " + why);
      });
}

void FillList::show(const std::vector<FillRecord>& fills, std::int64_t version, TimePoint since) {
  asked_ = false;
  version_ = version;
  if (std::exchange(since_, since) != since) {
    lvwFills.clear();
    newest_ = 0;
  }
  // What is listed stays as it is: the ledger only grows.
  for (const FillRecord& fill : fills) {
    if (fill.seq <= newest_) continue;
    newest_ = fill.seq;
    Row& row = *lvwFills.insert(0, {'F', fill.seq});
    row.set_text(Column::time, full_time_text(fill.time));
    if (fill.ticket != 0) row.set_whole(Column::ticket, fill.ticket);
    row.set_number(Column::account, fill.account.account);
    row.set_text(Column::what, fill.closes ? "Close" : "Open");
    if (fill.side != Operation::none) row.set_text(Column::side, buys(fill.side) ? "Buy" : "Sell");
    row.set_number(Column::lots, fill.lots);
    row.set_text(Column::symbol, fill.symbol);
    row.set_fixed_or_empty(Column::price, fill.price, fill.price_digits);
    if (fill.order != 0) row.set_whole(Column::order, fill.order);
    if (fill.profit) row.set_fixed(Column::profit, *fill.profit, money_decimals);
    if (fill.commission) row.set_fixed(Column::commission, *fill.commission, money_decimals);
    row.set_text(Column::currency, fill.currency);
  }
  sums.set_text(sums_text(fills));
}

}  // namespace tutti
