#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "apps/output.h"
#include "ledger/ledger_queries.h"

namespace tutti {

// What became of the requests that sent the rest of a ticket again, a line each.
struct SentLines {
  struct Line {
    RequestId request = 0;
    std::int32_t account = 0;
    RequestKind kind = RequestKind::open;
    double share = 0.0;   // lots; 0 where it has none
    Json request_code{};  // null where none was given
    bool accepted = false;
    bool unknown = false;
    std::string result;
  };

  // As the ledger has them.
  static SentLines of(std::vector<TicketRequest> requests);

  std::vector<Line> lines;
  std::map<RequestId, TicketRequest> stored;

  // The exit status, where these requests were to be sent again as far as they may be.
  int status(const std::vector<TicketRequest>& of_ticket, RetryPart part) const;
  // `behind`: what a text ends with.
  std::string report(OutputForm form, const Json& more, const std::function<std::string()>& behind) const;
};

}  // namespace tutti
