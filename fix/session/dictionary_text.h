#pragma once

#include <string_view>

namespace tutti {

// dictionary.xml as it was when the program was built.
std::string_view dictionary_text();

}  // namespace tutti
