#include "sessions/session_scope.h"

namespace tutti {

void SessionScope::log_order(std::int64_t order, std::string_view text) const {
  log(text);
  desk.pending->order_text(order, account, text);
}

void SessionScope::tell(const std::string& text) const {
  general.last_message = text;
  general.message_box(text);
}

void SessionScope::refuse(const std::string& what) {
  refuse(what, " came with values that are no numbers or out of all bounds; it is not shown");
}

void SessionScope::refuse(const std::string& what, std::string_view why) {
  if (refused_.insert(what).second) log(what + std::string{why});
}

}  // namespace tutti
