#pragma once

#include <string>
#include <variant>

#include "fix/session/fix_message.h"

namespace tutti {

// What a session has to tell, in the order in which it came up.
namespace session_event {

// Of an acceptor: somebody wants to log on, and waits for FixSession::admit or refuse.
struct LogonAsked {
  FixMessage logon;
};
// The other end is logged on; of an initiator with its answer.
struct LoggedOn {
  FixMessage answer;
};
struct Received {
  FixMessage message;
};
// The other end says that it can't read a message of ours, number `sequence`; 0 when it doesn't say which.
struct Rejected {
  int sequence = 0;
  std::string why;
};
// A message that can't be read, or breaks a rule. It was refused, and the session goes on.
struct Trouble {
  std::string why;
};
// Nothing has come for so long that the other end was asked for a sign of life; and the end of that.
struct Silence {
  bool silent = false;
};
// The session is over, and the connection is to be closed once its output has gone out.
struct Ended {
  enum class Reason : unsigned char {
    logged_out,  // we asked for it
    left,        // the other end logged out, or refused the logon: `why` has its words
    failed,      // what came was no FIX, or broke a rule that nothing heals
  };
  Reason reason = Reason::failed;
  std::string why;
};

}  // namespace session_event

using SessionEvent = std::variant<session_event::LogonAsked, session_event::LoggedOn, session_event::Received,
                                  session_event::Rejected, session_event::Trouble, session_event::Silence,
                                  session_event::Ended>;

}  // namespace tutti
