#pragma once

#include <cstdint>

namespace tutti {

// Name of one request: made by the terminal before it leaves, above 0, and never given twice, by no run, home
// or terminal. 0 where there is none, as with a broker that can't carry it.
using RequestId = std::int64_t;

// Random number of a server's book, made with it. Of a request nobody can say more than "another book" once
// the book it was sent to is gone. 0 where a broker has none.
using BookEra = std::uint64_t;

}  // namespace tutti
