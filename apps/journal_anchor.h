#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include <tl/expected.hpp>

#include "core/paths.h"
#include "ledger/ledger_file.h"

namespace tutti {

// A line of the journal that says how far the ledger was: with every run's start and end and every new day in
// UTC. The ledger can't be cut off or put back since without one of them telling so.
struct JournalAnchor {
  std::string ledger;  // the id under which its rows are known
  std::int64_t commit = 0;
  std::string hash;  // 64 hexadecimal digits; of a ledger without a commit zeros

  bool same_place(const JournalAnchor& other) const { return commit == other.commit && hash == other.hash; }

  // "Ledger ID, commit 7: HASH", and the other way; nothing of any other line.
  std::string text() const;
  static std::optional<JournalAnchor> of(std::string_view message);
  // Where a ledger is now, and where it was at a commit; with number 0 where it has no such commit. Throw as
  // the file does.
  static JournalAnchor newest(LedgerFile& file);
  static JournalAnchor at(LedgerFile& file, std::int64_t commit);
};

// The general history of a home folder.
std::filesystem::path general_history(const Paths& paths);
// An anchor of this ledger in it, the newest; nothing when there is none. Reads no further back than that.
// Throws as the file does.
tl::expected<std::optional<JournalAnchor>, FileError> newest_anchor(const Paths& paths, LedgerFile& file);
// What the anchors say that the ledger does not, one line each. Where it was put back and a copy of it goes
// on under a new id, what came under an older one since is known to differ. Throws as the file does.
tl::expected<std::vector<std::string>, FileError> faults_of_anchors(const Paths& paths, LedgerFile& file);

}  // namespace tutti
