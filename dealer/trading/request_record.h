#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "dealer/trading/answer_news.h"
#include "dealer/trading/ledger_tag.h"
#include "sessions/contract/codes.h"
#include "sessions/contract/request_id.h"
#include "sessions/contract/request_state.h"

namespace tutti {

// What the server keeps for good of a request that came with an id.
struct RequestRecord {
  RequestId id = 0;  // unique within the account
  std::int32_t account = 0;
  // Of all that was asked for; empty: the id was asked about before it came, and is burnt.
  std::string digest{};
  LedgerTag ledger = 0;               // of the terminal it came from
  RequestCode code = request::taken;  // answered at once
  RequestState state = RequestState::waiting;
  std::optional<AnswerNews> answer{};  // its last result event; nothing while it has none

  bool ended() const { return state != RequestState::waiting && state != RequestState::working; }
  double lots() const { return answer ? answer->report.filled_all : 0.0; }
};

}  // namespace tutti
