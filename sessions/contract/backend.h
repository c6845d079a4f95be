#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <tl/expected.hpp>

#include "core/clock.h"
#include "core/event_source.h"
#include "core/file_error.h"
#include "sessions/contract/ClientAPI.h"

namespace tutti {

// Something about what stands behind the clients that the operator must know.
struct BackendNotice {
  std::string text{};
  std::int32_t account = -1;  // whose journal line it is; -1: nobody's
  bool journaled = true;
  bool shown = true;  // as a message
};

// What stands behind the trading clients: a dealing server within the program, or connections to brokers.
// GUI thread only; outlives its clients. Whoever runs the terminal calls `advance`, has the events delivered,
// and then calls `flush`, round by round.
class Backend {
 public:
  virtual ~Backend() = default;

  // A trading client for one session; destroying it unhooks it. Which broker's, the login data say.
  virtual std::unique_ptr<ClientAPI> make_client(const LoginData& login) = 0;
  // Where its events come from. Good while it lives.
  virtual std::vector<EventSource*> events() = 0;
  // The server of an account that names none.
  virtual Endpoint endpoint() const = 0;
  // True where prices and money are made up.
  virtual bool simulated() const = 0;
  // Accounts for a home folder that has none yet; none where only the operator can know them.
  virtual std::vector<LoginData> samples() const = 0;

  // Makes happen, and queues as events, what is due by the clock.
  virtual void advance() = 0;
  // When `advance` next has something to do by itself; nothing while only an operation can change that.
  virtual std::optional<TimePoint> next_due() const = 0;
  // Hands on whatever still waits inside to be sent.
  virtual void flush() = 0;
  // What has come up since the last call, oldest first.
  virtual std::vector<BackendNotice> take_notices() = 0;
  // At the end of the program, after the sessions: everything is stored or sent. What a run without it
  // leaves is taken up all the same.
  virtual tl::expected<void, FileError> close() = 0;

  // How many more requests that open something may leave for the account now; nothing: there is no bound.
  virtual std::optional<int> credits(std::int32_t account) const = 0;
  // So much of the terminal's own records is on the disk, counted over the run, and needs no repetition.
  // Called after `flush` whenever it has become more.
  virtual void kept(std::uint64_t mark) = 0;
  // So long after the last word of a request its outcome counts as unknown.
  virtual std::chrono::milliseconds patience() const { return std::chrono::seconds{30}; }
};

}  // namespace tutti
