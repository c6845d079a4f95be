#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tsl/robin_map.h>

#include "core/clock.h"
#include "core/event_source.h"
#include "fix/client/client_desk.h"
#include "fix/client/event_line.h"
#include "fix/client/fix_client.h"
#include "fix/client/fix_lines.h"
#include "sessions/contract/backend.h"

namespace tutti {

// The clients of one broker: makes them, takes up what their lines tell, and holds their events until they
// are delivered. Outlives its clients; the thread that decides is the only one here.
class FixHub final : public EventSource, private ClientDesk {
 public:
  // All are kept by reference.
  FixHub(FixLines& lines, const Clock& clock);
  ~FixHub() override;

  std::unique_ptr<ClientAPI> make_client();
  // Takes up what has come, and queues what is due by the clock.
  void advance();
  std::optional<TimePoint> next_due() const;
  bool deliver_next() override;
  std::int32_t delivered_account() const override { return delivered_account_; }
  // How many more orders of an account may leave now; nothing where there is no bound.
  std::optional<int> credits(std::int32_t account) const;
  // What is for the journal, oldest first.
  std::vector<BackendNotice> take_notices();

 private:
  std::uint64_t open_line(FixClient& client, LineLogin login) override;
  void send(std::uint64_t line, WireAsk ask) override { lines_.send(line, std::move(ask)); }
  void close_line(std::uint64_t line) override { lines_.close(line); }
  void post(ClientEvent event) override { events_.push(std::move(event)); }
  void forget(const FixClient& client, bool all) override { events_.forget(client, all); }
  void leave(const FixClient& client) override;
  void collect() override;
  void remark(const FixClient& client, std::string text) override;
  const Symbol* symbol_of_others(std::string_view name) const override;
  const Clock& clock() const override { return clock_; }
  const BrokerProfile& profile() const override { return lines_.profile(); }

  FixLines& lines_;
  const Clock& clock_;
  EventLine events_;
  // By the number that the upper half of a line's key has. What was left behind on a line is told even after
  // its end, so that a key must lead to its client for as long as there is one.
  std::map<std::uint32_t, FixClient*> clients_;
  std::uint32_t last_client_ = 0;
  std::uint32_t last_login_ = 0;
  tsl::robin_map<std::string, Symbol> symbols_;  // of all accounts, without numbers and prices
  std::vector<BackendNotice> notices_;
  bool delivering_ = false;
  std::int32_t delivered_account_ = -1;
};

}  // namespace tutti
