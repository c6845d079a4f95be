#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <tl/expected.hpp>

#include "core/clock.h"
#include "core/file_writer.h"
#include "core/synced_log.h"
#include "dealer/trading/history_state.h"

namespace tutti {

// The file of the requests with an id and of the fills, which outlives the book: it only grows, and of what
// stands in it several times the last counts. All of it is on the disk when a call returns.
class HistoryFile {
 public:
  struct Content {
    HistoryState state;
    std::optional<TimePoint> since;  // from when on fills are there; nothing when there is no file yet
    bool settled = true;             // false: to be rewritten before anything is appended
    std::vector<std::string> notes;  // what was damaged and is left out, for the operator
  };

  explicit HistoryFile(const std::filesystem::path& folder) : file_(folder / "dealer-requests.log") {}

  // Before anything else. Changes nothing, but for a copy of what is damaged.
  tl::expected<Content, FileError> read() const;
  // Has it hold this and nothing else.
  tl::expected<void, FileError> rewrite(const HistoryState& state, TimePoint since);
  // After a failure it takes the same again.
  tl::expected<void, FileError> append(const HistoryState& state);

 private:
  std::filesystem::path file_;
  std::optional<SyncedLog> log_;
};

}  // namespace tutti
