#pragma once

#include <cstdint>

#include "sessions/contract/codes.h"

// What positions are worth. Pure arithmetic: lots, prices and rates in, account currency out.
namespace tutti::pricing {

// Profit, below 0 a loss, of lots that were bought (sold) at `from` and are worth `to`. `side` is
// operation::buy or sell, `rate` account currency per unit of the symbol's profit currency; 0 while it is not
// known, and then so is the profit.
double profit(Operation side, double lots, double contract_size, double from, double to, double rate);

// Margin that lots tie up, above or equal 0. `rate` is account currency per unit of the symbol's base,
// `margin_rate` the part of the value that counts, as in Symbol. 0 while one of them, or the leverage, is not
// known.
double margin(double lots, double contract_size, double rate, double margin_rate, double leverage);

}  // namespace tutti::pricing
