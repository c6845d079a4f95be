#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "fix/dialect/wire_news.h"

namespace tutti {

// What the line of a client tells, beside what its server does.
namespace line {

// The account may trade: everything that a login brings is there.
struct Ready {
  std::vector<news::SymbolEntry> symbols;  // with their prices
  std::vector<OpenPosition> positions;
  std::vector<news::Order> orders;
  news::Summary summary;
};
// The user or his password is wrong; nothing is tried again.
struct Refused {
  std::string why;
};
// The last word of a line.
struct Ended {
  bool asked_for = false;  // by us
  std::string why;
};
// The request was never written: nobody was logged on any more.
struct Unsent {
  RequestId id = 0;
};
// The server has not said anything for a while, or does again.
struct Silence {
  bool silent = false;
};
// Something for the journal.
struct Remark {
  std::string text;
};

}  // namespace line

using LineNews = std::variant<WireNews, line::Ready, line::Refused, line::Ended, line::Unsent, line::Silence,
                              line::Remark>;

// Which line tells it: each login makes a line of its own.
struct LineNote {
  std::uint64_t line = 0;
  LineNews news;
};

}  // namespace tutti
