#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include <tl/expected.hpp>

#include "core/file_writer.h"

namespace tutti {

// One recorded quote, to be replayed.
struct Tick {
  std::chrono::milliseconds at{0};  // since the start of the server
  std::string symbol;
  double bid = 0.0;
  double ask = 0.0;
};

// Reads a CSV of `time,symbol,bid,ask` lines in order of time. `time` is in seconds since the start of the
// server ("12.5") or, in every line of the file, a moment "yyyy-mm-dd hh:nn:ss[.mmm]"; moments are replayed
// with their distances, the first one at once. Empty lines, lines with "#" in front and one heading line
// that begins with "time" are skipped; any other bad line is an error that names it.
tl::expected<std::vector<Tick>, FileError> load_ticks(const std::filesystem::path& file);

}  // namespace tutti
