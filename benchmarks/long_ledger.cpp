#include "benchmarks/long_ledger.h"

#include <fmt/format.h>

#include <array>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/key_file.h"
#include "ledger/ledger_book.h"
#include "ledger/ledger_start.h"

namespace tutti::bench {
namespace {

using namespace std::chrono_literals;

constexpr std::array symbols{"EURUSD", "GBPUSD", "USDJPY", "AUDUSD"};

// One act after the other, and what became of it.
class Trader {
 public:
  Trader(LedgerFile& file, int accounts) : file_(file), book_(file, "tutti"), accounts_(accounts) {
    for (int i = 0; i < accounts; ++i)
      book_.know(sender(i), {"192.168.10.20:9443", fmt::format("USER{}", 500'100 + i), 500'100 + i});
  }

  void trade(TimePoint time) {
    const bool closes = tickets_++ % 2 == 1;
    const RequestKind kind = closes ? RequestKind::close : RequestKind::open;
    const Operation side = closes ? operation::sell : operation::buy;
    const std::string symbol = symbols[static_cast<std::size_t>(tickets_ / 2) % symbols.size()];
    std::vector<LedgerRequest> requests;
    double total = 0.0;
    for (int i = 0; i < accounts_; ++i) {
      requests.push_back({.id = ++id_, .sender = sender(i), .kind = kind, .symbol = symbol, .side = side});
      requests.back().lots = 0.01 * (1 + i % 37);
      if (closes) requests.back().reference = order_ + i;
      total += requests.back().lots;
    }
    file_.begin();
    const std::int64_t ticket = book_.add_ticket({.kind = kind,
                                                  .symbol = symbol,
                                                  .side = side,
                                                  .total = total,
                                                  .price_at_click = 1.08467,
                                                  .quote_age = 120ms},
                                                 requests.size(), time);
    book_.add_requests(ticket, requests);
    file_.commit(time);
    if (!closes) order_ += accounts_;
    file_.begin();
    for (int i = 0; i < accounts_; ++i) {
      const LedgerRequest& request = requests[static_cast<std::size_t>(i)];
      LedgerEvent event{.request = request.id, .sender = request.sender, .time = time + 5ms};
      book_.add_event(event);
      event.state = LedgerState::pending;
      event.order = order_ + i;
      event.server_time = event.time = time + 60ms;
      book_.add_event(event);
      event.state = LedgerState::filled;
      event.server_time = time + 180ms;
      event.time = time + 200ms;
      event.execution = std::to_string(++execution_);
      event.closes = closes;
      event.filled = request.lots;
      event.price = 1.08467 + 0.00001 * (i % 5);
      event.symbol = symbol;
      event.side = side;
      event.currency = "USD";
      if (closes) event.realised = Realised{0.25 * (i % 41) - 4.0, -0.07};
      book_.add_event(event);
    }
    file_.commit(time + 200ms);
  }

 private:
  static Sender sender(int account) { return static_cast<Sender>(account + 1); }

  LedgerFile& file_;
  LedgerBook book_;
  int accounts_;
  int tickets_ = 0;
  RequestId id_ = RequestId{1} << 52;
  std::int64_t order_ = 1'000'000;
  std::int64_t execution_ = 7'000'000;
};

}  // namespace

void write_ledger(const std::filesystem::path& home, const std::filesystem::path& key_file,
                  const TradingDays& days, std::chrono::sys_days last) {
  KeyFile key{key_file};
  const auto found = key.find_or_create();
  if (!found) throw std::runtime_error(found.error().text());
  const auto opened = LedgerFile::open(ledger_path(home), **found, TimePoint{last} - 24h * days.days);
  if (!opened) throw std::runtime_error(opened.error().text());
  LedgerFile& file = **opened;
  // Nobody relies on it while it is made.
  file.connection().exec("PRAGMA synchronous = OFF; PRAGMA cache_size = -200000");
  Trader trader{file, days.accounts};
  const auto between = std::chrono::milliseconds{20h} / (days.tickets_a_day + 1);
  for (int day = days.days - 1; day >= 0; --day)
    for (int ticket = 1; ticket <= days.tickets_a_day; ++ticket)
      trader.trade(TimePoint{last} - 24h * day + between * ticket);
  file.checkpoint();
}

}  // namespace tutti::bench
