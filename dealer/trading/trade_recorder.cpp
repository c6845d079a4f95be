#include "dealer/trading/trade_recorder.h"

namespace tutti {

void TradeRecorder::note_fill(const TradeRequest& request, std::int64_t execution, OrderReport& report) {
  report.execution = std::to_string(execution);
  report.filled = report.filled_all = request.amount;
  history_.add_fill({.execution = report.execution,
                     .id = report.id,
                     .number = request.known_as(),
                     .account = report.account,
                     .closes = request.kind == TradeKind::close,
                     .operation = request.operation,
                     .symbol = request.symbol,
                     .lots = request.amount,
                     .price = report.price,
                     .time = report.time});
}

void TradeRecorder::note_outcome(const Outcome& outcome) {
  log_.add(outcome);
  if (outcome.resumed && !outcome.told) untold_.push_back(outcome);
}

}  // namespace tutti
