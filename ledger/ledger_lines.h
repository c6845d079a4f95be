#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ledger/ledger_file.h"

namespace tutti {

// Under which name the rows of a ledger are known where they are copied to: mostly the ledger's own id, for
// all of them. A home that was put back from a backup goes on otherwise than its copy did: from there on its
// rows have an id of their own, whose parent has those before.
struct LedgerLine {
  std::string id;              // 32 hexadecimal digits
  std::string parent;          // of the first one empty
  std::int64_t forked_at = 0;  // the rows up to this seq are its parent's
  std::int64_t schema = 0;
  std::int64_t created = 0;  // ms UTC
};

// From the ledger's first one to the newest, each the parent of the next. These throw as the file does.
std::vector<LedgerLine> ledger_lines(LedgerFile& file);
// Begins a new one: the rows up to this seq, the last of a commit or 0, stay its parent's. By who has the
// home's lock, and the file to write.
void begin_line(LedgerFile& file, std::int64_t forked_at, TimePoint now);
// What is wrong with them.
std::vector<std::string> faults_of_lines(LedgerFile& file);

}  // namespace tutti
