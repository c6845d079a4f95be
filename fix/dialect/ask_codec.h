#pragma once

#include <functional>
#include <string>
#include <string_view>

#include <tl/expected.hpp>

#include "fix/dialect/symbol_sizes.h"
#include "fix/dialect/wire_request.h"
#include "fix/session/fix_message.h"

namespace tutti {

// What a client asks, as a message. `stamp` names it among the others of its connection where no request id
// does.
FixMessage encode_ask(const WireAsk& ask, const SymbolSizes& sizes, std::string_view stamp);

// What a message asks; the error says which field is wrong. `lots_of` says how many lots so many units are:
// of a position's symbol where a ticket is named, else of the symbol; 0 when that is not known.
struct UnitsAsked {
  std::string_view symbol;
  std::int64_t ticket = 0;
  double units = 0.0;
};
using LotsOf = std::function<double(const UnitsAsked&)>;
tl::expected<WireAsk, std::string> decode_ask(const FixMessage& message, const LotsOf& lots_of);

// The id that stands for a text: the one that it was made from, or else one that the text alone gives.
RequestId id_of_text(std::string_view text);

}  // namespace tutti
