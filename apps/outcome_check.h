#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "dealer/trading/outcome.h"
#include "views/frmJournal.h"

namespace tutti {

// Compares the journal of this run with what the dealing server says became of each request: nothing is
// missing, nothing is there twice, nothing was made up.
class OutcomeCheck {
 public:
  struct Difference {
    std::int32_t account = 0;
    std::string what;
  };

  // Counts the live lines of the journal.
  explicit OutcomeCheck(const std::vector<frmJournal::Entry>& journal);

  std::vector<Difference> run(const std::vector<Outcome>& outcomes);

 private:
  // Account and text of a journal line; an executed order's line is without its details.
  using Line = std::pair<std::int32_t, std::string>;

  void expect(const Outcome& outcome);

  std::map<Line, int> journaled_;  // how often, less what was expected
  std::vector<Difference> differences_;
};

}  // namespace tutti
