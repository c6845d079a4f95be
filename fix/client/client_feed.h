#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <vector>

#include "core/clock.h"
#include "fix/client/account_cache.h"
#include "fix/client/client_desk.h"
#include "fix/client/client_event.h"
#include "fix/client/line_news.h"
#include "fix/client/requote_clock.h"
#include "sessions/contract/CLAPICLASS.h"

namespace tutti {

// What a client is told: takes up what its lines say into the cache, and queues the events that come of it.
class ClientFeed {
 public:
  enum class Link : std::uint8_t { off, connecting, on };

  // `owner` is whom the events are for.
  ClientFeed(FixClient& owner, ClientDesk& desk);
  ClientFeed(const ClientFeed&) = delete;
  ClientFeed& operator=(const ClientFeed&) = delete;

  // Without a sink nothing is queued; what waits for the old one is taken back.
  void set_sink(CLAPICLASS* sink);
  Link link() const { return link_; }
  // Of the login that runs or stands; 0 when there is none.
  std::uint64_t line() const { return line_; }
  // A login begins; then, the line on which it does.
  void begin();
  void set_line(std::uint64_t line) { line_ = line; }
  // The login is ended by us.
  void log_out();

  AccountCache& cache() const { return cache_; }
  RequoteClock& requotes() { return requotes_; }
  // Since the account's values came last.
  std::chrono::milliseconds summary_age() const;

  // Takes up what the line `line` told; a line that was left brings answers only.
  void take(std::uint64_t line, LineNews& news);
  // Values positions by the prices that came in since.
  void settle_prices();
  // Queues the ticks of requotes that are due.
  void tick();
  std::optional<std::chrono::milliseconds> next_tick() const { return requotes_.next_due(); }
  // Hands one event to the sink, which may destroy the client.
  void deliver(const ClientEvent& event);

 private:
  void post(std::function<void(CLAPICLASS&)> call, bool outlives = false);
  void post_moved(ClientEvent::Kind kind, std::int64_t which);

  void take(line::Ready& ready);
  void take(const line::Refused& refused);
  void take(const line::Ended& ended);
  void take(const line::Unsent& unsent);
  void take(const line::Silence& silence);
  void take(const line::Remark& remark);
  void take(const news::Symbols&) {}
  void take(const news::Price& price);
  void take(const news::PositionList&) {}
  void take(news::Position& news);
  void take(news::Order& news);
  void take(const news::Report& report);
  // Keeps the rows of pending orders by the reports alone, where a server tells none.
  void follow_orders(const news::Report& news);
  void take(const news::Refused& refused);
  void take(const news::Told& told);
  void take(news::Fills& fills);
  void take(const news::Summary& summary);
  void take(const news::Offer& offer);
  void take(const news::Time& time);
  void take(WireNews& news);
  void end_link();

  FixClient& owner_;
  ClientDesk& desk_;
  CLAPICLASS* sink_ = nullptr;
  Link link_ = Link::off;
  std::uint64_t line_ = 0;
  mutable AccountCache cache_;  // rates are made when somebody asks
  RequoteClock requotes_;
  std::vector<Execution> fills_;  // that came so far of an answer in parts
  TimePoint server_time_{};
  std::chrono::milliseconds summary_at_{0};  // by Clock::elapsed
  // Events that wait already, and take along what comes before they are delivered.
  std::vector<bool> price_waits_, high_low_waits_;
  bool summary_waits_ = false;
  bool time_waits_ = false;
  // The news that a list is loaded is in the queue; what changes before is part of that list.
  bool positions_wait_ = false;
  bool orders_wait_ = false;
};

}  // namespace tutti
