#include "sessions/connection_report.h"

#include <utility>

namespace tutti {

void ConnectionReport::connected() {
  told_ = false;
  if (reason_.empty()) return;
  if (record_.shown.note == reason_) book_.show_note(record_, record_.note);
  reason_.clear();
}

void ConnectionReport::tell(std::string_view reason) {
  if (std::exchange(told_, true)) return;
  notices_.log("Not connected: " + std::string{reason}, record_.account);
  reason_ = reason;
  book_.show_note(record_, reason_);
}

}  // namespace tutti
