#pragma once

#include <string_view>

namespace tutti {

// The program and its version as every program of the project names itself, such as "Tutti 1.0.0". The number
// stands in one place, the project's line of CMakeLists.txt.
std::string_view program_version();

}  // namespace tutti
