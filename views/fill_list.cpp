#include "views/fill_list.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "core/numbers.h"
#include "core/time_texts.h"

namespace tutti {
namespace {

constexpr int money_decimals = 2;

struct Period {
  const char* text;
  int days;  // today among them; 0: all there are
};
constexpr Period periods[] = {{"Today", 1}, {"Last 7 days", 7}, {"Last 31 days", 31}, {"All", 0}};

std::string sums_text(std::size_t fills, const std::vector<RealisedSum>& sums) {
  std::string out = fmt::format("{} fills", fills);
  const char* before = "; realised: ";
  for (const RealisedSum& sum : sums) {
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
  lvwFills.set_make_cells([this](Row& row) { make_cells(row); });
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
  const bool all = since != since_;
  const std::int64_t known = std::exchange(outdated_, false) || all ? -1 : version_;
  const std::int64_t newest = all || fills_.empty() ? 0 : fills_.back().seq;
  reads_->ask(
      [this, known, newest, since](LedgerQueries& ledger) -> LedgerReads::Show {
        Told told{.version = ledger.version(), .since = since};
        if (told.version == known) return [this] { asked_ = false; };
        told.fills = ledger.fills({.since = since, .after = newest});
        for (const FillRecord& fill : told.fills)
          told.digits[fill.symbol] = fill.price_digits;
        told.sums = realised_by_currency(realised_by_day(told.fills));
        return [this, told = std::move(told)]() mutable { show(std::move(told)); };
      },
      [this](const std::string& why) {
        asked_ = false;
        outdated_ = true;
        sums.set_text("The ledger can't be read: " + why);
      });
}

void FillList::show(Told told) {
  asked_ = false;
  version_ = told.version;
  if (std::exchange(since_, told.since) != told.since) {
    lvwFills.clear();
    fills_.clear();
    sums_.clear();
    digits_.clear();
  }
  bool finer = false;
  for (const auto& [symbol, digits] : told.digits) {
    int& most = digits_[symbol];
    finer = finer || digits > most;
    most = std::max(most, digits);
  }
  // Prices of one symbol stand one below the other.
  if (finer)
    for (Row& row : lvwFills)
      row.outdate();
  for (const FillRecord& fill : told.fills)
    lvwFills.insert(0, {'F', fill.seq})->outdate();
  if (fills_.empty()) {
    fills_ = std::move(told.fills);
  } else {
    fills_.insert(fills_.end(), std::make_move_iterator(told.fills.begin()),
                  std::make_move_iterator(told.fills.end()));
  }
  told.sums.insert(told.sums.end(), sums_.begin(), sums_.end());
  sums_ = realised_by_currency(told.sums);
  sums.set_text(sums_text(fills_.size(), sums_));
}

void FillList::make_cells(Row& row) const {
  const auto at = std::lower_bound(fills_.begin(), fills_.end(), row.key().number(),
                                   [](const FillRecord& each, std::int64_t seq) { return each.seq < seq; });
  const FillRecord& fill = *at;
  row.set_text(Column::time, full_time_text(fill.time));
  if (fill.ticket != 0) row.set_whole(Column::ticket, fill.ticket);
  row.set_number(Column::account, fill.account.account);
  row.set_text(Column::what, fill.closes ? "Close" : "Open");
  if (fill.side != Operation::none) row.set_text(Column::side, buys(fill.side) ? "Buy" : "Sell");
  row.set_number(Column::lots, fill.lots);
  row.set_text(Column::symbol, fill.symbol);
  row.set_fixed_or_empty(Column::price, fill.price, digits_.at(fill.symbol));
  if (fill.order != 0) row.set_whole(Column::order, fill.order);
  if (fill.profit) row.set_fixed(Column::profit, *fill.profit, money_decimals);
  if (fill.commission) row.set_fixed(Column::commission, *fill.commission, money_decimals);
  row.set_text(Column::currency, fill.currency);
}

}  // namespace tutti
