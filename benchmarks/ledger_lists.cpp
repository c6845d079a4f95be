#include "benchmarks/ledger_lists.h"

#include <algorithm>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include "benchmarks/interleaved.h"
#include "ledger/ledger_watch.h"
#include "views/fill_list.h"
#include "views/ticket_board.h"

namespace tutti::bench {
namespace {

// `make`: a form on this clock and these reads; `rows`: how many it lists; `there`: whether that is all.
template <class Form, class There>
ListTime list_time(const std::filesystem::path& home, const std::filesystem::path& key_file,
                   const Clock& clock, RowList Form::*list, There&& there) {
  LedgerWatch reads{home, key_file};
  std::vector<double> times;
  std::vector<double> turns;
  ListTime out;
  for (int run = 0; run < 9; ++run) {
    Form form{clock, &reads};
    double longest = 0.0;
    const auto turn = [&](auto&& work) { longest = std::max(longest, time_of(work)); };
    times.push_back(time_of([&] {
      turn([&] { form.Displayed(true); });
      while (!there(form)) {
        std::this_thread::yield();
        turn([&] {
          reads.deliver();
          form.poll();
        });
      }
    }));
    turns.push_back(longest);
    out.rows = (form.*list).size();
  }
  out.until_there = median(std::move(times)) / 1e6;
  out.longest_turn = median(std::move(turns)) / 1e6;
  return out;
}

}  // namespace

ListTime board_time(const std::filesystem::path& home, const std::filesystem::path& key_file,
                    const Clock& clock) {
  return list_time<TicketBoard>(home, key_file, clock, &TicketBoard::lvwTickets, [](const TicketBoard& form) {
    return form.lvwTickets.size() == TicketBoard::at_once;
  });
}

ListTime day_fills_time(const std::filesystem::path& home, const std::filesystem::path& key_file,
                        const Clock& clock) {
  return list_time<FillList>(home, key_file, clock, &FillList::lvwFills,
                             [](const FillList& form) { return !form.sums.text().empty(); });
}

}  // namespace tutti::bench
