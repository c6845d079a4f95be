#include "dealer/trading/book_keeper.h"

#include <algorithm>
#include <iterator>
#include <random>
#include <tuple>
#include <utility>

#include "dealer/trading/configured_orders.h"

namespace tutti {
namespace {

constexpr std::chrono::seconds between_tries{1};
// The file of requests may hold so many texts that are overtaken, and as many as it has requests.
constexpr std::size_t few_texts = 10'000;

BookEra new_era() {
  std::random_device random;
  BookEra era = 0;
  while (era == 0)
    era = (BookEra{random()} << 32) | random();
  return era;
}

// Only what the book holds of them counts.
bool same(const OpenPosition& a, const OpenPosition& b) {
  const auto values = [](const OpenPosition& p) {
    return std::tie(p.ticket, p.side, p.symbol, p.amount, p.open_price, p.commission, p.interest,
                    p.open_time);
  };
  return values(a) == values(b);
}

bool same(const PendingOrder& a, const PendingOrder& b) {
  const auto values = [](const PendingOrder& o) {
    return std::tie(o.order, o.kind, o.reference, o.operation, o.symbol, o.amount, o.price, o.stop_loss,
                    o.take_profit, o.time);
  };
  return values(a) == values(b);
}

// Both lists are in order of the numbers.
template <class Record>
void compare(const std::vector<Record>& before, const std::vector<Record>& now, std::int64_t Record::*number,
             std::vector<Record>& changed, std::vector<std::int64_t>& gone) {
  auto old = before.begin();
  for (const Record& record : now) {
    for (; old != before.end() && (*old).*number < record.*number; ++old)
      gone.push_back((*old).*number);
    const bool known = old != before.end() && (*old).*number == record.*number;
    if (!known || !same(*old, record)) changed.push_back(record);
    if (known) ++old;
  }
  for (; old != before.end(); ++old)
    gone.push_back((*old).*number);
}

}  // namespace

BookKeeper::BookKeeper(const DealerConfig& config, const Market& market,
                       std::vector<TradingAccount>& accounts, OrderDesk& desk, TradeRecorder& recorder,
                       TimePoint& next_rollover)
    : config_(config),
      market_(market),
      accounts_(accounts),
      desk_(desk),
      recorder_(recorder),
      history_(recorder.history()),
      next_rollover_(next_rollover),
      era_(new_era()) {}

tl::expected<std::vector<std::string>, FileError> BookKeeper::open(const std::filesystem::path& folder,
                                                                   bool fresh, TimePoint now) {
  for (std::size_t place = 0; place < accounts_.size(); ++place)
    places_.emplace(accounts_[place].config().number, place);
  BookFolder files{folder};
  HistoryFile history{folder};
  auto filed = history.read();
  if (!filed) return tl::unexpected(filed.error());
  std::vector<std::string> notes = filed->notes;
  if (fresh) {
    // Ids outlive the book that goes now.
    restore_history(*filed, files.history(), now);
    if (auto written = rewrite_history(history); !written) return tl::unexpected(written.error());
  }
  auto found = fresh ? files.clear() : files.read();
  if (!found) return tl::unexpected(found.error());
  if (found->state)
    if (const auto wrong = misfit(*found->state)) return tl::unexpected(FileError{files.book_file(), *wrong});
  notes.insert(notes.end(), found->notes.begin(), found->notes.end());
  BookState state = found->state.value_or(BookState{});
  const bool era_known = state.era != 0;
  if (era_known) era_ = state.era;
  if (!fresh) restore_history(*filed, std::move(state.history), now);
  history_.end_missing(state);
  restore(std::move(state), found->next_number, now);
  if (!fresh && !filed->settled)
    if (auto written = rewrite_history(history); !written) return tl::unexpected(written.error());
  folder_.emplace(std::move(files));
  history_file_.emplace(std::move(history));
  // An era is told at login, and numbers of configured orders are given.
  if (!found->settled || !era_known || recorder_.numbers().next() != stored_number_)
    if (auto written = replace(); !written) return tl::unexpected(written.error());
  return notes;
}

void BookKeeper::restore_history(HistoryFile::Content& filed, HistoryState stored, TimePoint now) {
  const std::size_t texts = filed.state.requests.size();
  history_.restore(std::move(filed.state), std::move(stored), filed.since.value_or(now));
  if (texts > few_texts + 2 * history_.size()) filed.settled = false;
}

tl::expected<void, FileError> BookKeeper::rewrite_history(HistoryFile& file) {
  auto written = file.rewrite(history_.all(), history_.fills_since());
  if (!written) return written;
  history_.note_stored();
  history_.note_filed();
  return written;
}

std::optional<std::string> BookKeeper::misfit(const BookState& state) const {
  std::optional<std::string> wrong;
  const auto check = [&](std::int32_t account, const std::string& symbol) {
    if (!wrong && configured(account) && !market_.find(symbol))
      wrong = "account " + std::to_string(account) + " trades " + symbol + ", which is not in this market";
  };
  for (const BookState::Account& account : state.accounts) {
    for (const OpenPosition& position : account.positions)
      check(account.number, position.symbol);
    for (const PendingOrder& order : account.orders)
      check(account.number, order.symbol);
  }
  for (const TradeRequest& request : state.requests)
    check(request.account, request.symbol);
  return wrong;
}

void BookKeeper::restore(BookState state, std::int64_t next_number, TimePoint now) {
  recorder_.numbers().start(std::max(next_number, config_.first_number));
  stored_number_ = recorder_.numbers().next();
  if (state.next_rollover != TimePoint{}) next_rollover_ = state.next_rollover;
  stored_rollover_ = state.next_rollover;
  stored_accounts_.assign(accounts_.size(), {});
  for (BookState::Account& account : state.accounts) {
    if (configured(account.number)) {
      const std::size_t place = places_[account.number];
      accounts_[place].restore(account);
      stored_accounts_[place] = accounts_[place].state();
    } else {
      absent_.accounts.push_back(std::move(account));
    }
  }
  // What the configuration put on an account gets new numbers where the book doesn't know the account.
  for (std::size_t place = 0; place < accounts_.size(); ++place) {
    if (stored_accounts_[place].number != 0) continue;
    const AccountConfig& config = accounts_[place].config();
    accounts_[place].restore({config.number, config.balance, config.credit, {}, {}});
    place_configured_orders(config_, recorder_.numbers(), accounts_[place], now);
  }
  std::stable_sort(state.requests.begin(), state.requests.end(),
                   [](const TradeRequest& a, const TradeRequest& b) { return a.due < b.due; });
  for (TradeRequest& request : state.requests) {
    if (configured(request.account)) {
      desk_.resume(accounts_[places_[request.account]], request, now);
      stored_requests_.emplace(request.number, std::move(request));
    } else {
      absent_.requests.push_back(std::move(request));
    }
  }
  stored_revision_ = recorder_.revision();
}

bool BookKeeper::store(TimePoint now) {
  if (!folder_) {
    history_.note_stored();
    history_.note_filed();
  }
  if (!folder_ || (!failure_ && recorder_.revision() == stored_revision_)) return true;
  if (failure_ && now < next_try_) return false;
  if (auto stored = folder_->wants_replacing() ? replace() : append(); !stored) {
    failure_ = std::move(stored.error());
    next_try_ = now + between_tries;
    return false;
  }
  failure_.reset();
  return true;
}

std::vector<BookEntry> BookKeeper::changes() const {
  std::map<std::int32_t, BookEntry> entries;
  for (std::size_t place = 0; place < accounts_.size(); ++place) {
    if (!accounts_[place].touched()) continue;
    const BookState::Account& before = stored_accounts_[place];
    const BookState::Account now = accounts_[place].state();
    BookState::Account changed{now.number, now.balance, now.credit, {}, {}};
    BookEntry entry;
    compare(before.positions, now.positions, &OpenPosition::ticket, changed.positions, entry.gone);
    compare(before.orders, now.orders, &PendingOrder::order, changed.orders, entry.gone);
    if (before.number == 0 || before.balance != now.balance || before.credit != now.credit ||
        !changed.positions.empty() || !changed.orders.empty())
      entry.accounts.push_back(std::move(changed));
    if (!entry.empty()) entries.emplace(now.number, std::move(entry));
  }
  std::map<std::int64_t, TradeRequest> ended = stored_requests_;
  for (TradeRequest& request : desk_.requests()) {
    const auto before = ended.extract(request.number);
    if (before.empty() || before.mapped() != request)
      entries[request.account].requests.push_back(std::move(request));
  }
  for (const auto& [number, request] : ended)
    entries[request.account].gone.push_back(number);

  HistoryState history = history_.unstored();
  for (RequestRecord& record : history.requests)
    entries[record.account].history.requests.push_back(std::move(record));
  for (Execution& fill : history.fills)
    entries[fill.account].history.fills.push_back(std::move(fill));

  std::vector<BookEntry> out;
  for (auto& [account, entry] : entries)
    out.push_back(std::move(entry));
  if (next_rollover_ != stored_rollover_) {
    // Interest that was charged and the night that it was charged for are one.
    BookEntry all;
    all.next_rollover = next_rollover_;
    for (BookEntry& entry : out) {
      std::move(entry.accounts.begin(), entry.accounts.end(), std::back_inserter(all.accounts));
      std::move(entry.requests.begin(), entry.requests.end(), std::back_inserter(all.requests));
      std::move(entry.history.requests.begin(), entry.history.requests.end(),
                std::back_inserter(all.history.requests));
      std::move(entry.history.fills.begin(), entry.history.fills.end(),
                std::back_inserter(all.history.fills));
      all.gone.insert(all.gone.end(), entry.gone.begin(), entry.gone.end());
    }
    out = {std::move(all)};
  }
  // In front of everything that has one of the numbers.
  if (recorder_.numbers().next() != stored_number_) {
    if (out.empty()) out.emplace_back();
    out.front().next_number = recorder_.numbers().next();
  }
  return out;
}

tl::expected<void, FileError> BookKeeper::append() {
  const std::vector<BookEntry> entries = changes();
  if (!entries.empty()) {
    if (auto reserved = folder_->reserve(recorder_.numbers().next()); !reserved) return reserved;
    if (auto written = folder_->append(entries); !written) return written;
    ++stores_;
    logged_ = true;
  }
  note_stored();
  return {};
}

tl::expected<void, FileError> BookKeeper::replace() {
  if (auto reserved = folder_->reserve(recorder_.numbers().next()); !reserved) return reserved;
  // What changed since it was stored last goes into the book only, as it is true with the book alone.
  if (auto filed = history_file_->append(history_.unfiled()); !filed) return filed;
  history_.note_filed();
  BookState book = absent_;
  book.era = era_;
  book.history = history_.unstored();
  book.next_number = recorder_.numbers().next();
  book.next_rollover = next_rollover_;
  for (const TradingAccount& account : accounts_)
    book.accounts.push_back(account.state());
  for (TradeRequest& request : desk_.requests())
    book.requests.push_back(std::move(request));
  if (auto written = folder_->replace(book); !written) return written;
  ++stores_;
  logged_ = false;
  stored_accounts_.assign(accounts_.size(), {});
  for (TradingAccount& account : accounts_)
    account.touch();
  note_stored();
  return {};
}

void BookKeeper::note_stored() {
  for (std::size_t place = 0; place < accounts_.size(); ++place) {
    if (!accounts_[place].touched()) continue;
    stored_accounts_[place] = accounts_[place].state();
    accounts_[place].note_stored();
  }
  history_.note_stored();
  stored_requests_.clear();
  for (TradeRequest& request : desk_.requests())
    stored_requests_.emplace(request.number, std::move(request));
  stored_number_ = recorder_.numbers().next();
  stored_rollover_ = next_rollover_;
  stored_revision_ = recorder_.revision();
}

tl::expected<void, FileError> BookKeeper::save() {
  if (!folder_) return {};
  const bool behind = failure_ || logged_ || recorder_.revision() != stored_revision_;
  if (!behind && stores_ == 0) return {};
  if (auto exact = folder_->reserve(recorder_.numbers().next(), true); !exact) return exact;
  if (!behind) return {};
  auto written = replace();
  if (written) failure_.reset();
  return written;
}

}  // namespace tutti
