#pragma once

#include "core/displayable.h"

namespace tutti {

// Open positions: tells whether the matching window is shown.
class COpenPos : public Displayable {};

}  // namespace tutti
