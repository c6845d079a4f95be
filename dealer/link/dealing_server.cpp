#include "dealer/link/dealing_server.h"

#include <algorithm>
#include <cassert>
#include <utility>

#include "core/texts.h"
#include "dealer/link/dealer_client.h"
#include "dealer/market/random.h"
#include "dealer/trading/configured_orders.h"

namespace tutti {
namespace {

// True for as long as a handler runs, however it ends.
class Flag {
 public:
  explicit Flag(bool& flag) : flag_(flag) { flag_ = true; }
  ~Flag() { flag_ = false; }
  Flag(const Flag&) = delete;
  Flag& operator=(const Flag&) = delete;

 private:
  bool& flag_;
};

bool reaches(const Endpoint& wanted, const Endpoint& own) {
  return wanted.address.empty() || (same_letters(wanted.address, own.address) && wanted.port == own.port);
}

TimePoint next_whole_second(TimePoint at) {
  return std::chrono::floor<std::chrono::seconds>(at) + std::chrono::seconds{1};
}

TimePoint next_midnight(TimePoint at) {
  return std::chrono::floor<std::chrono::days>(at) + std::chrono::days{1};
}

// Nights that a position is charged for at a midnight: the one that ends Wednesday settles over the weekend,
// for which nothing is charged at its own end.
int nights_at(TimePoint midnight) {
  const std::chrono::weekday ended{std::chrono::floor<std::chrono::days>(midnight) - std::chrono::days{1}};
  if (ended == std::chrono::Wednesday) return 3;
  return ended == std::chrono::Saturday || ended == std::chrono::Sunday ? 0 : 1;
}

}  // namespace

DealingServer::DealingServer(DealerConfig config, const Clock& clock)
    : config_(std::move(config)),
      clock_(clock),
      time_(clock.now()),
      next_second_(next_whole_second(time_)),
      next_rollover_(next_midnight(time_)),
      market_(config_, time_),
      rates_(config_.pairs()),
      watch_(market_),
      faults_(config_.faults, time_),
      recorder_(config_, time_),
      desk_(config_, market_, faults_, recorder_, answers_),
      triggers_(config_, market_, faults_, recorder_, answers_),
      front_(market_, desk_, recorder_.history()),
      book_(config_, market_, accounts_, desk_, recorder_, next_rollover_) {
  assert(!config_.fault());
  rates_.update(market_.middles());
  accounts_.reserve(config_.accounts.size());
  for (const AccountConfig& account : config_.accounts) {
    by_number_.emplace(account.number, accounts_.size());
    accounts_.emplace_back(account, market_, rates_, watch_);
    place_configured_orders(config_, recorder_.numbers(), accounts_.back(), time_);
  }
}

DealingServer::~DealingServer() = default;

std::unique_ptr<ClientAPI> DealingServer::make_client() {
  ServerGate& gate = *this;
  return std::make_unique<DealerClient>(gate);
}

TimePoint DealingServer::now() const {
  return std::max(time_, clock_.now() + lag_);
}

std::optional<TimePoint> DealingServer::next_moment() const {
  std::optional<TimePoint> next = market_.next_due();
  const auto consider = [&](std::optional<TimePoint> moment) {
    if (moment && (!next || *moment < *next)) next = moment;
  };
  consider(desk_.next_due());
  consider(answers_.next_due());
  consider(faults_.next_drop());
  if (!logins_.empty()) consider(logins_.begin()->first);
  if (!online_.empty()) consider(next_second_);
  if (std::any_of(accounts_.begin(), accounts_.end(),
                  [](const TradingAccount& account) { return !account.positions().empty(); }))
    consider(next_rollover_);
  return next;
}

std::optional<TimePoint> DealingServer::next_due() const {
  const auto moment = book_.failure() ? book_.next_try() : next_moment();
  if (!moment) return std::nullopt;
  return *moment - lag_;
}

void DealingServer::advance() {
  if (delivering_) return;
  // A clock that is set back stops nothing: the server's own time goes on from where it was.
  if (clock_.now() + lag_ < time_) lag_ = time_ - clock_.now();
  if (book_.failure()) store();
  if (book_.failure()) return;
  const TimePoint target = clock_.now() + lag_;
  market_.skip_to(target);
  next_second_ = std::max(next_second_, TimePoint{std::chrono::floor<std::chrono::seconds>(target)});
  for (auto due = next_moment(); due && *due <= target; due = next_moment())
    run(*due);
  time_ = target;
  faults_.set_time(time_);
  next_rollover_ = std::max(next_rollover_, next_midnight(time_));  // nights without a position
  revalue();
  store();
}

void DealingServer::run(TimePoint at) {
  time_ = std::max(time_, at);
  faults_.set_time(time_);
  while (const auto drop = faults_.take_drop())
    end_sessions(*drop);
  if (const auto due = market_.next_due(); due && *due <= at) move_market();
  if (next_rollover_ <= at) roll_over();
  desk_.run(at);
  answers_.run(at);
  triggers_.run(accounts_, watch_, at);
  while (!logins_.empty() && logins_.begin()->first <= at)
    finish_login(std::move(logins_.extract(logins_.begin()).mapped()));
  if (!online_.empty() && next_second_ <= at) tell_time(at);
}

void DealingServer::move_market() {
  if (!market_.step()) return;
  rates_.update(market_.middles());
  stale_ = true;
  for (DealerSession* session : online_)
    session->tell_prices();
}

void DealingServer::roll_over() {
  const int nights = nights_at(next_rollover_);
  next_rollover_ += std::chrono::days{1};
  if (nights == 0) return;
  for (TradingAccount& account : accounts_) {
    if (account.positions().empty()) continue;
    account.roll_over(nights);
    recorder_.note_change(account);
    account.revalue();
    AccountListener* listener = account.listener();
    if (listener == nullptr) continue;
    for (const TradingAccount::Position& position : account.positions())
      listener->tell_position(PositionChange::changed, position.record);
    listener->tell_summary(true);
  }
}

void DealingServer::tell_time(TimePoint at) {
  next_second_ = next_whole_second(at);
  for (DealerSession* session : online_)
    session->tell_time(at);
}

void DealingServer::revalue() {
  if (!stale_) return;
  stale_ = false;
  for (TradingAccount& account : accounts_) {
    const bool changed = account.revalue();
    AccountListener* listener = account.listener();
    if (listener == nullptr) continue;
    listener->tell_floating();
    if (changed) listener->tell_summary(false);
  }
}

bool DealingServer::deliver_next() {
  if (delivering_) return false;
  while (may_deliver()) {
    const Event* front = queue_.front();
    if (front == nullptr) return false;
    DealerSession* const session = front->session;
    if (session != nullptr) delivered_account_ = session->number();
    const Flag delivering(delivering_);
    const bool prices = std::holds_alternative<PricesNews>(front->news);
    if (prices && session != nullptr && session->deliver_price()) return true;
    const Event event = queue_.pop();
    if (prices || session == nullptr) continue;
    session->deliver(event.news);
    return true;
  }
  return false;
}

std::unique_ptr<DealerSession> DealingServer::make_session() {
  return std::make_unique<DealerSession>(queue_, market_, faults_);
}

RequestCode DealingServer::send(TradingAccount& account, const Instruction& wanted) {
  return front_.send(account, wanted, now());
}

RequestCode DealingServer::answer_requote(TradingAccount& account, std::int64_t order, bool accept,
                                          RequestId id) {
  return front_.answer_requote(account, order, accept, id, now());
}

RequestCode DealingServer::ask_request(TradingAccount& account, RequestId id, BookEra era) {
  if (book_.failure() || id <= 0) return request::silent;
  front_.ask(account, id, era == book_.era());
  return request::taken;
}

RequestCode DealingServer::ask_executions(TradingAccount& account, TimePoint since) {
  if (book_.failure()) return request::silent;
  front_.ask_fills(account, since);
  return request::taken;
}

void DealingServer::login(DealerSession& session, const LoginData& data) {
  session.connect(data.account);
  const auto number = static_cast<std::uint64_t>(static_cast<std::uint32_t>(data.account));
  const Mishap mishap = faults_.strike(data.account, FaultPoint::login, now());
  if (mishap.silent) return;
  const auto wait = reaches(data.server, config_.endpoint) && !mishap.unreachable
                        ? with_jitter(config_.login_latency, scatter(config_.seed, number))
                        : config_.unreachable_after;
  logins_.emplace(now() + wait + mishap.delay, PendingLogin{&session, data.copy(), mishap});
}

void DealingServer::finish_login(PendingLogin login) {
  DealerSession& session = *login.session;
  if (login.mishap.unreachable || !reaches(login.data.server, config_.endpoint)) return session.end(false);
  if (login.mishap.refuse_login || !known_user(login.data)) return session.refuse();
  const bool owned = owned_account(login.data.user, login.data.account) != nullptr;
  TradingAccount* account = owned ? &accounts_[by_number_[login.data.account]] : nullptr;
  // One session per account: whoever comes later takes over.
  if (account != nullptr)
    if (DealerSession* earlier = session_on(*account)) end_session(*earlier);
  if (online_.empty()) next_second_ = next_whole_second(time_);
  online_.push_back(&session);
  if (account != nullptr) account->revalue();
  session.open(account);
}

void DealingServer::logout(DealerSession& session) {
  std::erase_if(logins_, [&](const auto& entry) { return entry.second.session == &session; });
  std::erase(online_, &session);
  if (session.link() != DealerSession::Link::off) session.end(false);
}

DealerSession* DealingServer::session_on(const TradingAccount& account) const {
  const auto at = std::find_if(online_.begin(), online_.end(),
                               [&](const DealerSession* session) { return session->account() == &account; });
  return at == online_.end() ? nullptr : *at;
}

void DealingServer::end_session(DealerSession& session) {
  std::erase(online_, &session);
  session.end(true);
}

bool DealingServer::drop(std::int32_t account) {
  const auto login = std::find_if(logins_.begin(), logins_.end(), [&](const auto& entry) {
    return entry.second.session->number() == account;
  });
  if (login != logins_.end()) {
    DealerSession& session = *login->second.session;
    logins_.erase(login);
    session.end(true);
    return true;
  }
  const auto at = std::find_if(online_.begin(), online_.end(),
                               [&](const DealerSession* session) { return session->number() == account; });
  if (at == online_.end()) return false;
  end_session(**at);
  return true;
}

void DealingServer::end_sessions(const FaultScript::Drop& which) {
  for (const std::int32_t account : which.accounts)
    drop(account);
  if (!which.accounts.empty()) return;
  for (const AccountConfig& account : config_.accounts)
    drop(account.number);
}

bool DealingServer::known_user(const LoginData& data) const {
  return std::any_of(config_.accounts.begin(), config_.accounts.end(), [&](const AccountConfig& account) {
    return same_letters(account.user, data.user) && same_letters(account.password, data.password.reveal());
  });
}

const TradingAccount* DealingServer::owned_account(std::string_view user, std::int32_t number) const {
  const auto at = by_number_.find(number);
  if (at == by_number_.end() || !same_letters(accounts_[at->second].config().user, user)) return nullptr;
  return &accounts_[at->second];
}

const TradingAccount* DealingServer::find_account(std::int32_t number) const {
  const auto at = by_number_.find(number);
  return at == by_number_.end() ? nullptr : &accounts_[at->second];
}

tl::expected<std::vector<std::string>, FileError> DealingServer::keep_book(
    const std::filesystem::path& folder, bool fresh) {
  assert(online_.empty());
  return book_.open(folder, fresh, now());
}

std::vector<Outcome> DealingServer::take_untold() {
  return book_.failure() ? std::vector<Outcome>{} : recorder_.take_untold();
}

void DealingServer::store() {
  if (book_.store(now())) stored_events_ = queue_.pushed();
  desk_.set_shut(book_.failure().has_value());
}

bool DealingServer::may_deliver() {
  if (!book_.is_open() || queue_.popped() < stored_events_) return true;
  store();
  return queue_.popped() < stored_events_;
}

}  // namespace tutti
