#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tsl/robin_map.h>
#include <tl/expected.hpp>

#include "core/appended_file.h"
#include "core/paths.h"

namespace tutti {

// The history files of the journal, one per identifier: an account number, or -1 for what belongs to none.
//
// Lines wait until flush(), which adds those of each file in one write. The files used last stay open, so
// that a line costs no more than that, however many accounts are answered at once.
class HistoryFiles {
 public:
  explicit HistoryFiles(const Paths& paths);

  // Full path of a history, as texts name it.
  std::string name(std::int32_t id) const;
  // `line` has no end.
  void add(std::int32_t id, std::string_view line);
  // Writes what waits. Fails when the lines of a file could not be written, which are lost then; the error is
  // that of the first one. The others are written all the same.
  tl::expected<void, FileError> flush();
  // The same, and closes the files, which may fail too.
  tl::expected<void, FileError> close_all();
  // Removes a history with what waits for it.
  tl::expected<void, FileError> remove(std::int32_t id);

 private:
  struct History {
    std::string waiting;
    std::optional<AppendedFile> file;
    std::uint64_t used = 0;  // flush() that wrote to it last
  };

  tl::expected<void, FileError> write(std::int32_t id, History& history);
  tl::expected<std::filesystem::path, FileError> file_of(std::int32_t id);
  void close_oldest();
  void close(History& history);

  const Paths& paths_;
  std::optional<std::filesystem::path> folder_;         // known once it was looked at, with the names in it
  std::map<std::string, std::filesystem::path> there_;  // by small letters
  tsl::robin_map<std::int32_t, History> histories_;
  std::vector<std::int32_t> waiting_;  // in the order of their first lines
  std::size_t open_ = 0;
  std::size_t most_open_ = 512;
  tl::expected<void, FileError> closed_;  // the first failure of a close that nobody was told of yet
  std::uint64_t flushes_ = 0;
};

}  // namespace tutti
