#include "dealer/trading/trade_request.h"

#include "dealer/trading/book_words.h"

namespace tutti {

std::string_view name_of(TradeKind kind) {
  return word_of(kind_words, kind);
}

std::string_view name_of(TradeRequest::Stage stage) {
  return word_of(stage_words, stage);
}

}  // namespace tutti
