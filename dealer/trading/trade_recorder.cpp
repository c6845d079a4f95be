#include "dealer/trading/trade_recorder.h"

namespace tutti {

void TradeRecorder::note_fill(const TradeRequest& request, std::int64_t execution, TradingAccount& account,
                              OrderReport& report) {
  report.execution = std::to_string(execution);
  report.filled = report.filled_all = request.amount;
  if (request.kind == TradeKind::close) {
    if (const auto* position = account.find_position(request.reference))
      report.realised = account.realised(*position, request.amount, report.price);
  }
  history_.add_fill({.execution = report.execution,
                     .id = report.id,
                     .number = request.known_as(),
                     .account = report.account,
                     .closes = request.kind == TradeKind::close,
                     .operation = request.operation,
                     .symbol = request.symbol,
                     .lots = request.amount,
                     .price = report.price,
                     .time = report.time,
                     .realised = report.realised});
}

void TradeRecorder::note_outcome(const Outcome& outcome) {
  log_.add(outcome);
  if (outcome.resumed && !outcome.told) untold_.push_back(outcome);
}

}  // namespace tutti
