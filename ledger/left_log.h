#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include <tsl/robin_set.h>
#include <tl/expected.hpp>

#include "core/synced_log.h"
#include "ledger/ledger_file.h"
#include "sessions/contract/request_id.h"

namespace tutti {

// The ids of the requests of one run in the order in which they left, each written before its request is
// handed to the client. The file outlives the program but not the machine, so its head says since which start
// of the machine it counts, and which run of which ledger it belongs to.
class LeftLog {
 public:
  struct Head {
    std::string boot{};
    std::string ledger{};
    std::int64_t run = 0;
    LedgerFile::Head commit{};  // the ledger's last when the run began
  };
  struct Content {
    Head head;
    tsl::robin_set<RequestId> left;
  };

  // Nothing where the file is missing or its head is not whole. An id that was not written to its end did not
  // leave.
  static std::optional<Content> read(const std::filesystem::path& file);
  // Begins the file anew.
  static tl::expected<LeftLog, FileError> begin(const std::filesystem::path& file, const Head& head);

  // A plain write. False when it failed: the request must not leave.
  bool add(RequestId request);

 private:
  explicit LeftLog(SyncedLog log) : log_(std::move(log)) {}

  SyncedLog log_;
};

}  // namespace tutti
