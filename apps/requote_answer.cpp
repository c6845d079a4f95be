#include "apps/requote_answer.h"

#include <algorithm>
#include <string>

#include "core/dead_time.h"
#include "core/numbers.h"

namespace tutti {

RequoteAnswer::RequoteAnswer(frmPriceChanged& form, CommandContext& context, RequoteReply how)
    : form_(form), context_(context), how_(how) {
  form_.take_over = [this](CClientAPIManager& session, const Requote& requote) {
    return take(session, requote);
  };
}

RequoteAnswer::~RequoteAnswer() {
  form_.take_over = nullptr;
}

void RequoteAnswer::tell(const Requote& requote, std::string_view question) const {
  context_.console().tell("Requote of order {}, account {}: {} {} {} at {}, new price {}{}", requote.order,
                          requote.account, requote.operation == operation::buy ? "Buy" : "Sell",
                          number_text(requote.amount), requote.symbol, number_text(requote.price),
                          number_text(requote.new_price), question);
}

bool RequoteAnswer::take(CClientAPIManager& session, const Requote& requote) {
  if (how_ != RequoteReply::ask) {
    // Before it is told: a reader who is slow must not let the countdown run out.
    form_.answer(session, requote.order, session.account(), how_ == RequoteReply::accept);
    tell(requote, "");
    return true;
  }
  const auto at = std::find_if(waiting_.begin(), waiting_.end(), [&](const Requote& one) {
    return one.order == requote.order && one.account == requote.account;
  });
  if (requote.seconds_left <= 0) {
    // Its time is over: the form rejects it and says so.
    if (at == waiting_.begin()) asked_at_.reset();
    if (at != waiting_.end()) waiting_.erase(at);
    return false;
  }
  if (at == waiting_.end()) {
    waiting_.push_back(requote);
  } else {
    *at = requote;
  }
  return true;
}

CClientAPIManager* RequoteAnswer::session_of(const Requote& requote) const {
  Main& main = context_.main();
  const bool dealing = main.orders().find(requote.order, requote.account) != nullptr;
  return dealing ? main.sessions().logged_in(requote.account) : nullptr;
}

void RequoteAnswer::step() {
  CClientAPIManager* session = nullptr;
  while (!waiting_.empty() && (session = session_of(waiting_.front())) == nullptr) {
    waiting_.pop_front();
    asked_at_.reset();
  }
  if (session == nullptr) return;
  Console& console = context_.console();
  const auto now = context_.clock().elapsed();
  if (!asked_at_) {
    tell(waiting_.front(), ". Accept? (y/n)");
    asked_at_ = now;
  }
  if (now - *asked_at_ < dead_time) {
    // What was typed before this one could be read was not meant for it.
    console.forget_typed();
    return;
  }
  const std::string line = console.typed_line();
  if (line.empty()) return;
  const Requote requote = waiting_.front();
  waiting_.pop_front();
  asked_at_.reset();
  form_.answer(*session, requote.order, requote.account, line.front() == 'y' || line.front() == 'Y');
}

void run_answering(CommandContext& context, RequoteReply how, const std::function<bool()>& done) {
  RequoteAnswer answer{context.main().requote(), context, how};
  context.run_until([&] {
    answer.step();
    return done();
  });
}

}  // namespace tutti
