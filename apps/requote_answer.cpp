#include "apps/requote_answer.h"

#include <fmt/format.h>
#include <poll.h>
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
    asked_.clear();
    return;
  }
  const std::string order = form_.lblOrder.text() + ", new price " + form_.lblNewPrice.text();
  if (order != asked_) {
    fmt::print(stderr, "Requote: {}{}\n", order,
               how_ == OrderArguments::Requote::ask ? ". Accept? (y/n)" : "");
    asked_ = order;
  }
  if (form_.buttons_dead()) return;
  if (how_ == OrderArguments::Requote::accept) return form_.cmdAccept.click();
  if (how_ == OrderArguments::Requote::reject) return form_.cmdReject.click();
  const std::string line = typed_line();
  if (line.empty()) return;
  if (line.front() == 'y' || line.front() == 'Y') {
    form_.cmdAccept.click();
  } else {
    form_.cmdReject.click();
  }
}

}  // namespace tutti
