#pragma once

#include <string>

namespace tutti {

// Names the time since the machine was started last: another one after every start. Empty where the machine
// does not say.
std::string boot_id();

}  // namespace tutti
