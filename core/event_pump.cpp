#include "core/event_pump.h"

#include <exception>
#include <string>

namespace tutti {

std::size_t EventPump::deliver(std::size_t limit) {
  if (!open_ || messages_.in_handler()) return 0;
  std::size_t delivered = 0;
  for (bool more = true; more && delivered < limit;) {
    try {
      const MessageQueue::HandlerScope handler{messages_};
      more = source_.deliver_next();
    } catch (const std::exception& error) {
      journal_.log(std::string{"An event could not be handled: "} + error.what(),
                   source_.delivered_account());
    }
    if (more) ++delivered;
  }
  return delivered;
}

}  // namespace tutti
