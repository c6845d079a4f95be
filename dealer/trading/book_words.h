#pragma once

#include "dealer/config/table_reader.h"
#include "dealer/trading/trade_request.h"

namespace tutti {

// The words for what a request is and how far it has come, in the book and for machines.
inline constexpr Word<TradeKind> kind_words[] = {
    {"open", TradeKind::open},
    {"close", TradeKind::close},
    {"entry", TradeKind::entry},
    {"update_entry", TradeKind::update_entry},
    {"set_stops", TradeKind::set_stops},
    {"cancel_entry", TradeKind::cancel_entry},
    {"cancel_stops", TradeKind::cancel_stops},
};
inline constexpr Word<TradeRequest::Stage> stage_words[] = {
    {"sent", TradeRequest::Stage::sent},
    {"dealing", TradeRequest::Stage::dealing},
    {"accepted", TradeRequest::Stage::accepted},
    {"rejected", TradeRequest::Stage::rejected},
};

template <class Value, std::size_t count>
std::string_view word_of(const Word<Value> (&words)[count], Value value) {
  for (const Word<Value>& word : words)
    if (word.value == value) return word.text;
  return {};
}

}  // namespace tutti
