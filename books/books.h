#pragma once

#include "books/account_book.h"
#include "books/order_book.h"
#include "books/position_book.h"
#include "books/symbol_collection.h"

namespace tutti {

// What all sessions know together, for who hands it on to them. Whoever reads is given the one book he needs.
struct Books {
  SymbolCollection symbols;
  AccountBook accounts;
  PositionBook positions;
  OrderBook orders;
};

}  // namespace tutti
