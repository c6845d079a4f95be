#include "sessions/held_ticket.h"

namespace tutti {

std::string HeldTicket::text() const {
  std::string out = limits::text(breaches.front());
  if (breaches.size() > 1) out += " (and " + std::to_string(breaches.size() - 1) + " more)";
  return out;
}

}  // namespace tutti
