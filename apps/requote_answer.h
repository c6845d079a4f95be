#pragma once

#include <cstdint>
#include <functional>

#include "apps/commands.h"
#include "orders/frmPriceChanged.h"

namespace tutti {

// Answers requotes without a screen: always the same way, or by what is typed, a line "y" or "n" per requote.
// The countdown goes on while nobody has typed.
class RequoteAnswer {
 public:
  RequoteAnswer(frmPriceChanged& form, Console& console, RequoteReply how)
      : form_(form), console_(console), how_(how) {}

  // To be called with every step of the context.
  void step();

 private:
  frmPriceChanged& form_;
  Console& console_;
  RequoteReply how_;
  std::int64_t asked_ = 0;  // the order that was asked about last
};

// Runs the terminal until the condition holds or the time is over, and answers the requotes meanwhile.
void run_answering(CommandContext& context, RequoteReply how, const std::function<bool()>& done);

}  // namespace tutti
