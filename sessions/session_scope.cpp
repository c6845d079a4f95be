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

void SessionScope::refuse(std::string_view what, std::int64_t number) {
  refuse(what, std::to_string(number));
}

void SessionScope::refuse(std::string_view what, std::string_view name, std::string_view why) {
  const std::string refused = std::string{what} + std::string{name};
  if (refused_.insert(refused).second) log(refused + std::string{why});
}

}  // namespace tutti
