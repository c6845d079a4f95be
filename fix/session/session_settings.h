#pragma once

#include <string>

#include "core/secret.h"
#include "fix/session/fix_fields.h"

namespace tutti {

// How an initiator logs on.
struct SessionSettings {
  std::string sender{};
  std::string target{};
  int heartbeat = 30;   // seconds, above 0
  FixFields header{};   // of every message: sub ids and the like
  FixFields logon{};    // of the logon: the user name, and what else a broker wants
  Secret password{};    // tag 554 of the logon; none where it is empty
  int time_digits = 3;  // of the seconds in time stamps
};

}  // namespace tutti
