#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <set>

#include "fix/client/fix_line.h"

namespace tutti {

// The lines of one broker. Whoever decides opens, uses and closes them by their keys, and never waits; all
// that happens on the wire's thread. Only so many log in at a time as the broker's profile says, and none
// while an earlier line of its account still says good-bye. The network has stopped before this goes.
class FixLines {
 public:
  // All are kept by reference.
  FixLines(Network& network, const BrokerProfile& profile, const FixDictionary& dictionary);

  LineInbox& inbox() { return inbox_; }
  const BrokerProfile& profile() const { return profile_; }
  // Begins to log in on a line whose key is new.
  void open(std::uint64_t line, LineLogin login);
  void send(std::uint64_t line, WireAsk ask);
  // Says good-bye; its end is told.
  void close(std::uint64_t line);

 private:
  void tick();
  void sweep();
  // Lets those begin who may by now.
  void admit();
  bool may_begin(const FixLine& line) const;

  Network& network_;
  const BrokerProfile& profile_;
  const FixDictionary& dictionary_;
  LineInbox inbox_;
  // On the wire's thread alone.
  std::map<std::uint64_t, std::unique_ptr<FixLine>> lines_;
  std::deque<std::uint64_t> waiting_;
  std::set<std::uint64_t> logging_in_;
  std::deque<std::int64_t> begun_;  // the seconds at which lines of the last minute began
  std::int64_t second_ = 0;
  bool ticking_ = false;
};

}  // namespace tutti
