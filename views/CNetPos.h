#pragma once

#include "core/displayable.h"

namespace tutti {

// Net positions: tells whether the matching window is shown.
class CNetPos : public Displayable {};

}  // namespace tutti
