#include "fix/client/fix_hub.h"

#include <algorithm>
#include <utility>

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

}  // namespace

FixHub::FixHub(FixLines& lines, const Clock& clock) : lines_(lines), clock_(clock) {}
FixHub::~FixHub() = default;

std::unique_ptr<ClientAPI> FixHub::make_client() {
  ClientDesk& desk = *this;
  auto client = std::make_unique<FixClient>(desk);
  clients_.emplace(++last_client_, client.get());
  return client;
}

std::uint64_t FixHub::open_line(FixClient& client, LineLogin login) {
  const auto at = std::find_if(clients_.begin(), clients_.end(),
                               [&](const auto& each) { return each.second == &client; });
  const std::uint64_t line = (std::uint64_t{at->first} << 32) | ++last_login_;
  lines_.open(line, std::move(login));
  return line;
}

void FixHub::leave(const FixClient& client) {
  events_.forget(client, true);
  std::erase_if(clients_, [&](const auto& each) { return each.second == &client; });
}

void FixHub::collect() {
  for (LineNote& note : lines_.inbox().take()) {
    const auto at = clients_.find(static_cast<std::uint32_t>(note.line >> 32));
    if (at == clients_.end()) continue;
    if (const auto* ready = std::get_if<line::Ready>(&note.news))
      for (const news::SymbolEntry& entry : ready->symbols) {
        Symbol& known = symbols_[entry.symbol.name];
        known = entry.symbol;
        known.bid = known.ask = known.high = known.low = 0.0;
      }
    at->second->feed().take(note.line, note.news);
  }
}

void FixHub::advance() {
  if (delivering_) return;
  collect();
  for (const auto& [number, client] : clients_) {
    client->feed().settle_prices();
    client->feed().tick();
  }
}

std::optional<TimePoint> FixHub::next_due() const {
  if (!lines_.inbox().empty()) return clock_.now();
  std::optional<TimePoint> next;
  for (const auto& [number, client] : clients_) {
    const auto tick = client->next_tick();
    if (!tick) continue;
    const TimePoint due = clock_.now() + std::max(*tick - clock_.elapsed(), std::chrono::milliseconds{0});
    if (!next || due < *next) next = due;
  }
  return next;
}

bool FixHub::deliver_next() {
  if (delivering_) return false;
  while (!events_.empty()) {
    const ClientEvent event = events_.pop();
    if (event.client == nullptr) continue;
    delivered_account_ = event.client->account();
    const Flag delivering(delivering_);
    event.client->feed().deliver(event);
    return true;
  }
  return false;
}

std::optional<int> FixHub::credits(std::int32_t account) const {
  for (const auto& [number, client] : clients_)
    if (client->account() == account && client->LoggedIn()) return client->credits();
  return std::nullopt;
}

void FixHub::remark(const FixClient& client, std::string text) {
  notices_.push_back({.text = std::move(text), .account = client.account(), .shown = false});
}

std::vector<BackendNotice> FixHub::take_notices() {
  return std::exchange(notices_, {});
}

const Symbol* FixHub::symbol_of_others(std::string_view name) const {
  const auto at = symbols_.find(std::string{name});
  return at == symbols_.end() ? nullptr : &at->second;
}

}  // namespace tutti
