#pragma once

#include "apps/command_context.h"

namespace tutti {

// The terminal without a screen: takes the program's arguments, the name it was started by in front, carries
// the command out and answers the exit status. Throws nothing.
int tuttictl(int argc, const char* const* argv, const CommandPorts& ports);

}  // namespace tutti
