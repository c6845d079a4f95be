#pragma once

#include "core/displayable.h"

namespace tutti {

// Pending orders: tells whether the matching window is shown.
class CPendingOrds : public Displayable {};

}  // namespace tutti
