#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <tl/expected.hpp>

#include "apps/outcome_lines.h"
#include "core/clock.h"
#include "ledger/ledger_file.h"
#include "ledger/request_events.h"
#include "views/CJournal.h"

namespace tutti {

// Compares what the ledger says became of each request with the lines in the accounts' histories: every
// outcome has one of its own. Left out is what came before the journal's first anchor, since nobody knows
// what was cleared until then.
class JournalComparison {
 public:
  // Of the accounts for which `compared` holds.
  JournalComparison(CJournal& journal, const Clock& clock, std::function<bool(std::int32_t)> compared)
      : journal_(journal), clock_(clock), compared_(std::move(compared)) {}

  // One line per difference, empty when there is none. Throws as the file does.
  tl::expected<std::vector<std::string>, FileError> run(LedgerFile& file);
  // Outcomes whose lines stood in histories that were cleared since.
  int cleared() const { return cleared_; }

 private:
  struct Expected {
    std::string time;  // as the journal has it
    LineTexts texts;   // as histories have them
  };

  tl::expected<void, FileError> read_general();
  void expect(const RequestEvent& event);
  tl::expected<void, FileError> compare(std::int32_t account, const std::vector<Expected>& expected);

  CJournal& journal_;
  const Clock& clock_;
  std::function<bool(std::int32_t)> compared_;
  std::optional<std::string> began_;  // time of the first anchor
  bool general_cleared_ = false;      // before that
  std::map<std::int32_t, std::string> cleared_at_;
  std::map<std::int32_t, std::vector<Expected>> expected_;
  std::vector<std::string> differences_;
  int cleared_ = 0;
};

}  // namespace tutti
