#pragma once

#include <functional>
#include <string_view>

namespace tutti {

// Units of the base in a lot of a symbol; 0 where it is not known. Amounts stand in messages as units.
using SymbolSizes = std::function<double(std::string_view symbol)>;

}  // namespace tutti
