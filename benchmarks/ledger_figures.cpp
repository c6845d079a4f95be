#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <utility>
#include <vector>

#include "benchmarks/figures.h"
#include "benchmarks/home_program.h"
#include "benchmarks/interleaved.h"
#include "benchmarks/ledger_clicks.h"
#include "benchmarks/ledger_lists.h"
#include "benchmarks/long_ledger.h"
#include "ledger/ledger_start.h"

namespace tutti::bench {
namespace {

// 10^6 requests, of which 71,500 a day, each filled.
constexpr TradingDays long_past{.days = 14, .tickets_a_day = 143};

bool any_wanted(std::initializer_list<std::string_view> names) {
  return std::any_of(names.begin(), names.end(), [](std::string_view name) { return wanted(name); });
}

void clicks() {
  const ClickCosts costs = ledger_click_costs();
  figure("ledger_click_ms", costs.wall);
  figure("ledger_click_cpu_ms", costs.cpu);
  figure("ledger_longest_turn_ms", costs.longest_turn);
}

// The program on 500 accounts, until its loop may run.
double start_time(HomeProgram& program) {
  program.close();
  return time_of([&] { program.open(); });
}

void long_ledger() {
  HomeProgram with{no_ticks};
  with.close();
  // Its own ledger is new, and makes place.
  std::filesystem::remove(ledger_path(with.home()));
  std::filesystem::remove(left_log_path(with.home()));
  const std::filesystem::path key = with.home() / "key";
  const auto yesterday = std::chrono::floor<std::chrono::days>(with.clock().now()) - std::chrono::days{1};
  write_ledger(with.home(), key, long_past, yesterday);
  figure("ledger_bytes_per_request", [&] {
    return static_cast<double>(std::filesystem::file_size(ledger_path(with.home()))) / long_past.requests();
  });
  // The evening of the last day.
  const ManualClock evening{TimePoint{yesterday} + std::chrono::hours{22}};
  figure("ledger_board_ms", [&] { return board_time(with.home(), key, evening).until_there; });
  if (any_wanted({"ledger_day_fills_ms", "ledger_rows_turn_ms"})) {
    const ListTime fills = day_fills_time(with.home(), key, evening);
    if (fills.rows != static_cast<std::size_t>(long_past.fills_a_day()))
      throw std::runtime_error("not all fills of the day are listed");
    figure("ledger_day_fills_ms", fills.until_there);
    figure("ledger_rows_turn_ms", fills.longest_turn);
  }
  figure("ledger_start_1m_over_empty", [&] {
    HomeProgram without{no_ticks};
    with.open();
    return interleaved_ratio([&] { return start_time(with); }, [&] { return start_time(without); });
  });
}

}  // namespace

void ledger_figures() {
  if (any_wanted({"ledger_click_ms", "ledger_click_cpu_ms", "ledger_longest_turn_ms"})) clicks();
  if (any_wanted({"ledger_bytes_per_request", "ledger_start_1m_over_empty", "ledger_board_ms",
                  "ledger_day_fills_ms", "ledger_rows_turn_ms"}))
    long_ledger();
}

}  // namespace tutti::bench
