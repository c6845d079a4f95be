#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "fix/session/fix_message.h"
#include "fix/session/session_event.h"
#include "fix/session/session_settings.h"

namespace tutti {

class FixDictionary;

// The session layer of one connection: bytes on one side, messages on the other; numbers, heartbeats, logon
// and logout between them. It asks nobody and calls nobody: after each call its owner takes what is to be
// written and what there is to tell. Numbers begin anew with every connection, and no message is ever sent
// again by itself.
//
// One thread. Heartbeats go by the machine's own clock.
class FixSession {
 public:
  // The dictionary outlives the session.
  static FixSession initiator(const FixDictionary& dictionary, SessionSettings settings);
  static FixSession acceptor(const FixDictionary& dictionary);
  ~FixSession();
  FixSession(FixSession&&) noexcept;
  FixSession& operator=(FixSession&&) noexcept;

  // Of an initiator, once, when the connection stands: sends the logon.
  void start();
  void feed(std::string_view bytes);
  // To be called about once a second; does nothing before the start.
  void tick();

  // Answers a LogonAsked. A refusal ends the session; `why` begins with a word of its own.
  void admit(const FixFields& answer);
  void refuse(std::string_view why);

  // The number that the message got; 0 when nobody is logged on, and then nothing was written.
  int send(const FixMessage& message);
  bool logged_on() const;
  // Says good-bye and waits for the answer, which is an Ended; a caller that waits long enough closes.
  void log_out(std::string_view why);

  std::string take_output();
  std::vector<SessionEvent> take_events();

 private:
  class Impl;
  explicit FixSession(std::unique_ptr<Impl> impl);

  std::unique_ptr<Impl> impl_;
};

}  // namespace tutti
