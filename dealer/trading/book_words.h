#pragma once

#include "core/table_reader.h"
#include "dealer/config/side_words.h"
#include "dealer/trading/answer_news.h"
#include "dealer/trading/trade_request.h"
#include "sessions/contract/request_state.h"

namespace tutti {

// The words for what a request is, how far it has come and what it was answered, in the book and for
// machines.
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

inline constexpr Word<RequestState> state_words[] = {
    {"never_taken", RequestState::never_taken}, {"waiting", RequestState::waiting},
    {"working", RequestState::working},         {"executed", RequestState::executed},
    {"refused", RequestState::refused},         {"cancelled", RequestState::cancelled},
};
inline constexpr Word<AnswerNews::Event> answer_words[] = {
    {"order", AnswerNews::Event::order},
    {"close", AnswerNews::Event::close},
    {"accepted", AnswerNews::Event::accepted},
    {"rejected", AnswerNews::Event::rejected},
    {"entry", AnswerNews::Event::entry},
    {"update_entry", AnswerNews::Event::update_entry},
    {"new_stops", AnswerNews::Event::new_stops},
    {"update_stops", AnswerNews::Event::update_stops},
    {"cancel_entry", AnswerNews::Event::cancel_entry},
    {"cancel_stops", AnswerNews::Event::cancel_stops},
    {"entry_done", AnswerNews::Event::entry_done},
    {"entry_no_money", AnswerNews::Event::entry_no_money},
    {"entry_no_hedging", AnswerNews::Event::entry_no_hedging},
};

template <class Value, std::size_t count>
std::string_view word_of(const Word<Value> (&words)[count], Value value) {
  for (const Word<Value>& word : words)
    if (word.value == value) return word.text;
  return {};
}

}  // namespace tutti
