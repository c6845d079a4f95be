#pragma once

#include "core/clock.h"
#include "dealer/config/dealer_config.h"
#include "dealer/trading/order_numbers.h"
#include "dealer/trading/trading_account.h"

namespace tutti {

// Puts the entry orders that the configuration has for an account on it, with new numbers.
void place_configured_orders(const DealerConfig& config, OrderNumbers& numbers, TradingAccount& account,
                             TimePoint now);

}  // namespace tutti
