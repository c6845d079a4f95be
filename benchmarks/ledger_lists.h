#pragma once

#include <cstddef>
#include <filesystem>

#include "core/clock.h"

namespace tutti::bench {

// From asking for rows of a ledger until they are in their list, by the forms that show them, in
// milliseconds: the median of several times, each in a list of its own.
struct ListTime {
  double until_there = 0.0;
  double longest_turn = 0.0;  // of the deciding thread meanwhile
  std::size_t rows = 0;
};

// The newest tickets, as the board opens with them.
ListTime board_time(const std::filesystem::path& home, const std::filesystem::path& key_file,
                    const Clock& clock);
// The fills of the clock's day.
ListTime day_fills_time(const std::filesystem::path& home, const std::filesystem::path& key_file,
                        const Clock& clock);

}  // namespace tutti::bench
