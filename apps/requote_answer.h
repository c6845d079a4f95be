#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "apps/commands.h"
#include "orders/frmPriceChanged.h"

namespace tutti {

// Answers requotes without a screen: always the same way, or by what is typed, a line "y" or "n" per requote.
// The countdown goes on while nobody has typed.
class RequoteAnswer {
 public:
  RequoteAnswer(frmPriceChanged& form, RequoteReply how) : form_(form), how_(how) {}

  // To be called with every step of the terminal.
  void step();

 private:
  // The next typed line, empty when none is complete.
  std::string typed_line();

  frmPriceChanged& form_;
  RequoteReply how_;
  std::int64_t asked_ = 0;  // the order that was asked about last
  std::string typed_;
};

// Runs the terminal until the condition holds or the time is over, and answers the requotes meanwhile.
void run_answering(Terminal& terminal, RequoteReply how, const std::function<bool()>& done);

}  // namespace tutti
