#pragma once

#include <string>

#include "dealer/trading/outcome.h"

namespace tutti {

// What the operator is told of a request of an earlier run that has ended while nobody was logged in on its
// account.
std::string earlier_request_text(const Outcome& outcome);

}  // namespace tutti
