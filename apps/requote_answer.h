#pragma once

#include <string>

#include "apps/commands.h"
#include "orders/frmPriceChanged.h"

namespace tutti {

// Answers requotes without a screen: always the same way, or by what is typed, a line "y" or "n" per requote.
// The countdown goes on while nobody has typed.
class RequoteAnswer {
 public:
  RequoteAnswer(frmPriceChanged& form, OrderArguments::Requote how) : form_(form), how_(how) {}

  // To be called with every step of the terminal.
  void step();

 private:
  // The next typed line, empty when none is complete.
  std::string typed_line();

  frmPriceChanged& form_;
  OrderArguments::Requote how_;
  std::string asked_;  // the order that was asked about last
  std::string typed_;
};

}  // namespace tutti
