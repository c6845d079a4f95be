#pragma once

#include <cstddef>
#include <string_view>

namespace tutti::bench {

// First word of this program's command line for nothing but summary events, with the number of runs behind
// it.
inline constexpr std::string_view summaries_word = "--summaries";
void run_summaries(int runs);

// Instructions per summary event of one of 500 sessions, from the call of its sink on, counted by callgrind.
double summary_event_instructions();

}  // namespace tutti::bench
