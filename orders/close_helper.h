#pragma once

#include <cstdint>

#include "core/notices.h"
#include "sessions/CClientAPIManagers.h"

namespace tutti {

// Sends one close request for a position and reports an immediate refusal, so that a refusal reads the same
// wherever the close was started. The outcome comes later, as the session's close result.
//
// The message of a refusal is queued: of many positions that are closed together none waits until the
// operator has seen what became of the one before.
class CloseHelper {
 public:
  CloseHelper(Notices& notices, CClientAPIManagers& sessions) : notices_(notices), sessions_(sessions) {}

  // `amount` in lots. The first session of the account number sends it. When that one is not logged in while
  // another one of the number is, nothing is sent, and the operator is told which row to log in. Nothing
  // happens when no session has the account. False when nothing was sent.
  bool close(std::int64_t ticket, double amount, std::int32_t account);

 private:
  void report_refusal(const SentOrder& sent);
  void report(const std::string& text, std::int32_t account);

  Notices& notices_;
  CClientAPIManagers& sessions_;
};

}  // namespace tutti
