#pragma once

namespace tutti::bench {

// How long the operator waits for a market order over 500 accounts, in real time, from the click on Buy on.
// Both want the toolkit's application.

// Without a screen until the last answer: the first order of a home without any data over the second one. The
// homes are in memory where the machine has a file system there.
double first_order_over_second();
// On the screen until the last answer is painted in the market order window, over the same without a screen
// until the last answer.
double screen_order_over_headless();

}  // namespace tutti::bench
