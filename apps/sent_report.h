#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "apps/command_context.h"

namespace tutti {

// What became of one request, whichever run has sent it.
struct SentLine {
  RequestId request = 0;
  std::int32_t account = 0;
  RequestKind kind = RequestKind::open;
  double lots = 0.0;                // 0 where it has none
  std::optional<RequestCode> code;  // nothing: not known any more
  bool accepted = false;
  std::string result;
};

// One line per request, with orders, prices and times as the ledger has them.
void print_sent(CommandContext& context, const std::vector<SentLine>& lines);

}  // namespace tutti
