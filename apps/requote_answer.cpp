#include "apps/requote_answer.h"

#include <fmt/format.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cstdio>

namespace tutti {

std::string RequoteAnswer::typed_line() {
  pollfd input{STDIN_FILENO, POLLIN, 0};
  char c = 0;
  while (poll(&input, 1, 0) > 0 && read(STDIN_FILENO, &c, 1) == 1) {
    if (c == '\n') return std::exchange(typed_, {});
    typed_ += c;
  }
  return {};
}

void RequoteAnswer::step() {
  if (!form_.Displayed()) {
    asked_ = 0;
    return;
  }
  if (form_.order() != asked_) {
    asked_ = form_.order();
    // What was typed before this order came on show was not meant for it.
    if (isatty(STDIN_FILENO) != 0) tcflush(STDIN_FILENO, TCIFLUSH);
    typed_.clear();
    fmt::print(stderr, "Requote of order {}, account {}: {}, new price {}{}\n", asked_, form_.account(),
               form_.lblOrder.text(), form_.lblNewPrice.text(),
               how_ == RequoteReply::ask ? ". Accept? (y/n)" : "");
  }
  if (form_.buttons_dead()) return;
  if (how_ == RequoteReply::accept) return form_.cmdAccept.click();
  if (how_ == RequoteReply::reject) return form_.cmdReject.click();
  const std::string line = typed_line();
  if (line.empty()) return;
  if (line.front() == 'y' || line.front() == 'Y') {
    form_.cmdAccept.click();
  } else {
    form_.cmdReject.click();
  }
}

void run_answering(Terminal& terminal, RequoteReply how, const std::function<bool()>& done) {
  RequoteAnswer answer{terminal.main().requote(), how};
  terminal.run_until([&] {
    answer.step();
    return done();
  });
}

}  // namespace tutti
