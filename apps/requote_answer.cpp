#include "apps/requote_answer.h"

#include <string>

namespace tutti {

void RequoteAnswer::step() {
  if (!form_.Displayed()) {
    asked_ = 0;
    return;
  }
  if (form_.order() != asked_) {
    asked_ = form_.order();
    // What was typed before this order came on show was not meant for it.
    console_.forget_typed();
    console_.tell("Requote of order {}, account {}: {}, new price {}{}\n", asked_, form_.account(),
                  form_.lblOrder.text(), form_.lblNewPrice.text(),
                  how_ == RequoteReply::ask ? ". Accept? (y/n)" : "");
  }
  if (form_.buttons_dead()) return;
  if (how_ == RequoteReply::accept) return form_.cmdAccept.click();
  if (how_ == RequoteReply::reject) return form_.cmdReject.click();
  const std::string line = console_.typed_line();
  if (line.empty()) return;
  if (line.front() == 'y' || line.front() == 'Y') {
    form_.cmdAccept.click();
  } else {
    form_.cmdReject.click();
  }
}

void run_answering(CommandContext& context, RequoteReply how, const std::function<bool()>& done) {
  RequoteAnswer answer{context.main().requote(), context.console(), how};
  context.run_until([&] {
    answer.step();
    return done();
  });
}

}  // namespace tutti
