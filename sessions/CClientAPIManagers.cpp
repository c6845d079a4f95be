#include "sessions/CClientAPIManagers.h"

#include <algorithm>
#include <utility>

#include "core/numbers.h"
#include "sessions/gate_texts.h"
#include "sessions/result_texts.h"

namespace tutti {

CClientAPIManagers::CClientAPIManagers(ClientFactory make_client, MGeneral& general, Desk& desk, Books& books,
                                       CLoginOptions& options, Ledger& ledger, StopSign& stop,
                                       std::size_t capacity)
    : make_client_(std::move(make_client)),
      general_(general),
      desk_(desk),
      books_(books),
      options_(options),
      gate_(requests_, general, books, ledger, stop),
      capacity_(capacity) {}

CClientAPIManagers::~CClientAPIManagers() = default;

CClientAPIManager* CClientAPIManagers::Add(const LoginData& login, std::string_view notes, bool login_now) {
  if (sessions_.size() >= capacity_) {
    general_.prompt.system_box("Maximum account number exceeded", "Alert");
    return nullptr;
  }
  sessions_.push_back(std::make_unique<CClientAPIManager>(
      make_client_(login), login,
      CClientAPIManager::Shared{general_, desk_, windows_, books_, options_, requests_, gate_}));
  CClientAPIManager& session = *sessions_.back();
  session.key(static_cast<std::int16_t>(sessions_.size()));
  by_account_[session.account()].push_back(&session);
  AddToListView2(session, notes, false);
  if (login_now) session.ClientAPIF().Login();
  if (current_ == nullptr) current_ = &session;
  return &session;
}

CClientAPIManager* CClientAPIManagers::Item(std::string_view key) const {
  const auto parsed = RowKey::parse(key);
  if (!parsed || parsed->prefix() != 'C') return nullptr;
  return Item(parsed->number());
}

CClientAPIManager* CClientAPIManagers::logged_in(std::int32_t account) const {
  const auto at = by_account_.find(account);
  if (at == by_account_.end()) return nullptr;
  const auto session = std::find_if(at->second.begin(), at->second.end(),
                                    [](const auto* each) { return each->ClientAPIF().LoggedIn(); });
  return session == at->second.end() ? nullptr : *session;
}

CClientAPIManager* CClientAPIManagers::logged_in(const LedgerAccount& account) const {
  const auto at = by_account_.find(account.account);
  if (at == by_account_.end()) return nullptr;
  const auto session = std::find_if(at->second.begin(), at->second.end(), [&](const auto* each) {
    return each->ledger_account() == account && each->ClientAPIF().LoggedIn();
  });
  return session == at->second.end() ? nullptr : *session;
}

bool CClientAPIManagers::close_awaited(std::int64_t ticket, std::int32_t account) const {
  if (gate_.admission().holds_close(ticket, account)) return true;
  const auto at = by_account_.find(account);
  return at != by_account_.end() &&
         std::any_of(at->second.begin(), at->second.end(), [ticket](const CClientAPIManager* session) {
           const SentOrder* sent = session->sent_request(RequestKind::close, ticket);
           return sent != nullptr && (!sent->settled() || sent->outcome == SentOrder::Outcome::unknown);
         });
}

SummaryAnswer CClientAPIManagers::summary_of(std::int32_t account) const {
  const CClientAPIManager* session = logged_in(account);
  if (session == nullptr) return {.values = {}, .result = result::failed};
  return session->ClientAPIF().GetAccountSummary(account);
}

void CClientAPIManagers::AddToListView2(CClientAPIManager& session, std::string_view notes, bool connected) {
  session.enter_list(notes, connected);
  desk_.accounts->add_client(session);
}

void CClientAPIManagers::Remove(std::string_view key) {
  const CClientAPIManager* session = Item(key);
  if (session == nullptr) return;
  const int number = session->key();
  RClear(number);
  ReArrangeList(number);
}

void CClientAPIManagers::RClear(int number) {
  CClientAPIManager* session = Item(number);
  if (session == nullptr) return;
  session->shut_down();
  desk_.requote->session_gone(*session);
  desk_.accounts->remove_client(*session);
  books_.accounts.remove(session->ClientListItem().handle);
  if (current_ == session) current_ = nullptr;
  // A handler that removes its own account goes on in the session that it belongs to.
  retired_.push_back(std::move(sessions_[static_cast<std::size_t>(number) - 1]));
  sessions_.erase(sessions_.begin() + (number - 1));
  index_accounts();
  windows_.leave(*session);
  if (!general_.in_handler()) retired_.clear();
  if (current_ == nullptr && !sessions_.empty()) current_ = sessions_.front().get();
}

void CClientAPIManagers::Clear() {
  for (int number = Count(); number >= 1; --number)
    RClear(number);
}

void CClientAPIManagers::ReArrangeList(int removed) {
  for (int number = removed; number <= Count(); ++number) {
    CClientAPIManager& session = *Item(number);
    session.key(static_cast<std::int16_t>(number));
    desk_.accounts->renumber_client(session);
  }
}

void CClientAPIManagers::index_accounts() {
  by_account_.clear();
  for (const auto& session : sessions_)
    by_account_[session->account()].push_back(session.get());
}

bool CClientAPIManagers::Check_Visibility(std::string_view symbol, std::string_view account) const {
  return Check_Visibility(symbol, read_integer(account));
}

bool CClientAPIManagers::Check_Visibility(std::string_view symbol, std::int32_t account) const {
  return carrying(symbol, account) != nullptr;
}

CClientAPIManager* CClientAPIManagers::carrying(std::string_view symbol, std::int32_t account) const {
  CClientAPIManager* session = logged_in(account);
  return session != nullptr && session->ClientAPIF().FindSymbol(symbol) != nullptr ? session : nullptr;
}

double CClientAPIManagers::Limit_Offset(std::string_view symbol) const {
  return widest_distance(symbol, &AccountClient::SymbolLimitDistance);
}

double CClientAPIManagers::Stop_Offset(std::string_view symbol) const {
  return widest_distance(symbol, &AccountClient::SymbolStopDistance);
}

double CClientAPIManagers::widest_distance(std::string_view symbol, DistanceOf distance_of) const {
  double answer = -1.0;
  const std::string supplied = desk_.accounts->visibility_symbol();
  const std::string_view asked = supplied.empty() ? symbol : std::string_view{supplied};
  for (const std::int32_t account : desk_.entry_order->accounts()) {
    for (const auto& session : sessions_) {
      const AccountClient& client = session->ClientAPIF();
      if (session->account() != account || !client.LoggedIn() || !Check_Visibility(asked, account)) continue;
      const double distance = (client.*distance_of)(symbol);
      const Symbol* record = client.SymbolRecord(symbol);
      if (record != nullptr && distance > answer) answer = record->ScaleDistance(distance);
    }
  }
  return answer;
}

void CClientAPIManagers::fan_out(Operation side) {
  sent_sound_ = general_.paths.full("\\sounds\\OrderOk.wav");
  const SymbolHandle symbol = books_.symbols.find(desk_.market_order->symbol());
  fan_out_.clear();
  fan_out_sorted_ = false;
  const auto ask = [&] {
    for (const auto& session : sessions_) {
      if (!session->ClientAPIF().LoggedIn()) continue;
      const std::optional<double> share = desk_.market_order->ticked_share(session->account());
      if (!share) continue;
      // No more than this is kept without an allocation for each request.
      const auto tell = [this, to = session.get()](const SentOrder& sent) {
        if (const std::string_view kept = gate_texts::row(sent); !kept.empty())
          return desk_.market_order->result(kept, sent.account);
        Result(sent.request_code, sent.account, client_key(to->key()));
        general_.play_sound_file(sent_sound_);
      };
      fan_out_.push_back(&session->market_order(side, symbol, *share, tell));
    }
  };
  gate_.as_one_ticket(ask, {.typed_total = desk_.market_order->total()});
  if (!fan_out_.empty()) return;
  general_.message_box("No account selected");
  desk_.market_order->nothing_sent();
}

std::span<const SentOrder* const> CClientAPIManagers::last_fan_out() {
  // Sorting is left to the first look, since sending must not wait for it.
  if (!std::exchange(fan_out_sorted_, true)) {
    std::sort(fan_out_.begin(), fan_out_.end(),
              [](const SentOrder* a, const SentOrder* b) { return a->account < b->account; });
  }
  return fan_out_;
}

int CClientAPIManagers::unknown(const std::function<bool(const SentOrder&)>& counted) const {
  int out = 0;
  for (const auto& session : sessions_)
    out += requests_.unknown(session->sender(), counted);
  return out;
}

int CClientAPIManagers::unknown(std::int32_t account,
                                const std::function<bool(const SentOrder&)>& counted) const {
  int out = 0;
  if (const auto at = by_account_.find(account); at != by_account_.end())
    for (const CClientAPIManager* session : at->second)
      out += requests_.unknown(session->sender(), counted);
  return out;
}

int CClientAPIManagers::unanswered() const {
  int out = 0;
  for (const auto& session : sessions_)
    out += session->unanswered();
  return out;
}

bool CClientAPIManagers::settle_by_hand(RequestId request, bool executed, std::string_view note) {
  SentOrder* meant = requests_.unknown_one(request);
  if (meant == nullptr) return false;
  requests_.settle(*meant, ResultCode::none,
                   executed ? SentOrder::Outcome::accepted : SentOrder::Outcome::refused, 0,
                   general_.clock.elapsed());
  gate_.ledger().note({.request = request,
                       .sender = meant->sender,
                       .state = LedgerState::hand,
                       .evidence = LedgerEvidence::hand,
                       .reason = std::string{executed ? hand_filled : hand_not_executed},
                       .note = std::string{note}});
  if (of_entry_window(meant->kind)) desk_.entry_order->request_settled(*meant, meant->account);
  for (const auto& session : sessions_)
    if (session->sender() == meant->sender) session->known(*meant);
  general_.log(result_texts::by_hand_line(request, executed, note), meant->account);
  return true;
}

void CClientAPIManagers::look_at_the_clock() {
  requests_.make_room(sessions_.size());
  for (SentOrder* request : requests_.overdue(general_.clock.elapsed())) {
    const auto session = std::find_if(sessions_.begin(), sessions_.end(),
                                      [&](const auto& each) { return each->sender() == request->sender; });
    if (session != sessions_.end()) (*session)->overdue(*request);
  }
  const int given_up = requests_.take_given_up();
  if (given_up == 0) return;
  general_.queue_message(std::to_string(given_up) + (given_up == 1 ? " request has" : " requests have") +
                         " no answer: what became of " + (given_up == 1 ? "it" : "them") +
                         " is unknown. Check the positions; the journal says of which accounts");
}

void CClientAPIManagers::Result(RequestCode code, std::int32_t account, RowKey row_key) {
  // A request that was taken has nothing to report, whatever the account's row says.
  if (code == request::taken) return;
  const CClientAPIManager* session = Item(row_key.number());
  if (session != nullptr && session->ClientListItem().shown.note == CClientAPIManager::unknown_account_note)
    return;
  // Codes without a text of their own are "other"; nothing is written for them.
  const std::string_view text = request::text(code);
  if (!text.empty()) {
    general_.log(text, account);
    desk_.market_order->result(text, account);
  }
  desk_.market_order->request_ended(account, code);
}

}  // namespace tutti
