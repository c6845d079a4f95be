#include "dealer/answer_desk.h"

#include <utility>

#include "dealer/dealer_session.h"

namespace tutti {

bool AnswerDesk::tell(TradingAccount& account, const Mishap& mishap, const AnswerNews& answer,
                      TimePoint now) {
  if (mishap.silent) return false;
  DealerSession* session = account.session();
  if (mishap.late.count() == 0 && session == nullptr) return false;
  for (int copies = mishap.twice ? 2 : 1; copies > 0; --copies) {
    if (mishap.late.count() > 0)
      late_.emplace(now + mishap.late, Late{&account, answer});
    else
      session->tell_answer(answer);
  }
  return true;
}

std::optional<TimePoint> AnswerDesk::next_due() const {
  if (late_.empty()) return std::nullopt;
  return late_.begin()->first;
}

void AnswerDesk::run(TimePoint at) {
  while (!late_.empty() && late_.begin()->first <= at) {
    const Late late = std::move(late_.extract(late_.begin()).mapped());
    if (DealerSession* session = late.account->session()) session->tell_answer(late.answer);
  }
}

}  // namespace tutti
