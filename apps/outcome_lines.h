#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "dealer/trading/outcome.h"

namespace tutti {

// What a line of the journal may say to tell of one thing, in any of several ways.
using LineTexts = std::vector<std::string>;

// The lines that tell an account's journal how a request ended, one for each of these; none where it is not
// told. `details` as result_texts has them, of an order that was executed.
std::vector<LineTexts> outcome_lines(const Outcome& outcome, std::string_view details = {});

// "Order #12 [BUY 0.5 EURUSD] has been accepted" without its details; any other line as it stands.
std::string without_details(std::string_view text);

}  // namespace tutti
