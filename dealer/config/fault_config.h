#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

namespace tutti {

// Where a fault can strike. The last three count what a client is told, `trigger` the orders that a price
// sets off, the others what a client asks for.
enum class FaultPoint : std::uint8_t {
  login,
  open,
  close,
  entry,
  update,  // of an entry order, or of a position's stop loss and take profit
  cancel,
  trigger,
  price,
  summary,
  position,
};

enum class FaultKind : std::uint8_t {
  refuse_login,    // as if the password were wrong
  unreachable,     // a login to nowhere
  drop,            // the session is ended: at `after`, or as a request of `on` comes in
  silent,          // executed, but never answered; a login stays connecting
  swallow,         // taken, neither executed nor answered
  delay,           // everything happens `wait` later
  late,            // executed in time, answered `wait` later
  twice,           // every answer comes twice
  unknown_ticket,  // behind the answer, events of a number that the account never had
  refuse,          // request code `code`
  reject,          // result code `code`; an order that a price sets off is cancelled with it
  pending,         // taken into dealing for `wait`
  requote,         // answered with a price `points` worse, which stands for `wait`
  garbage,         // records full of `value` come in front of the true ones
};

// One entry of the fault script.
struct FaultConfig {
  FaultKind kind = FaultKind::silent;
  std::vector<std::int32_t> accounts;  // none: all
  std::vector<FaultPoint> on;          // never empty, but for a drop at a moment
  std::chrono::milliseconds after{0};  // since the start of the server; earlier nothing is counted or struck
  std::int64_t every = 1;              // strikes every n-th thing of `on`, counted per account
  std::int64_t times = 0;              // per account; 0: without end
  std::int32_t code = 0;
  std::chrono::milliseconds wait{0};  // whole seconds for a requote
  double points = 0.0;                // below 0 the new price is better
  double value = 0.0;                 // any number, not finite ones included
};

}  // namespace tutti
