#include "benchmarks/figures.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string>

namespace tutti::bench {
namespace {

constexpr Bar at_most(double value) {
  return {Bar::Kind::at_most, value};
}
constexpr Bar at_least(double value) {
  return {Bar::Kind::at_least, value};
}
constexpr bool is_long = true;

const std::vector<Group> all_groups{
    {"events",
     event_figures,
     {{"summary_event_over_floor", at_most(5.0)},
      {"price_event_over_floor", at_most(4.5)},
      {"summary_event_500_over_50", at_most(1.4)},
      {"summary_event_instructions", at_most(150.0)}}},
    {"positions",
     position_figures,
     {{"position_event_over_plain_floor", at_most(4.0)},
      {"positions_10000_over_1000", at_most(1.4)},
      {"closegrid_price_over_rows", at_most(2.0)},
      {"close_over_floor", at_most(2.0)},
      {"close_100k_over_10k", at_most(1.3)}}},
    {"orders",
     order_figures,
     {{"fanout_over_floor", at_most(4.0)},
      {"fanout_5000_over_50"},
      {"distribute_over_floor", at_most(2.5)},
      {"distribute_5000_over_500"}}},
    {"login",
     login_figures,
     {{"login_500_ms"},
      {"bytes_per_session"},
      {"bytes_per_session_1000_symbols", at_most(40'000.0)},
      {"login_500_file_calls", at_most(2'500.0)},
      {"login_500_over_50", at_most(1.2)},
      {"market_step_1000_symbols_ms"}}},
    {"journal",
     journal_figures,
     {{"journal_syscalls_per_line", at_most(2.0)},
      {"journal_syscalls_per_first_line"},
      {"history_100mb_over_1mb", at_most(2.0)}}},
    {"ledger",
     ledger_figures,
     {{"ledger_click_ms", at_most(10.0)},
      {"ledger_click_cpu_ms", at_most(3.0)},
      {"ledger_longest_turn_ms", at_most(1.0)},
      {"ledger_bytes_per_request", at_most(600.0), is_long},
      {"ledger_start_1m_over_empty", at_most(1.2), is_long},
      {"ledger_board_ms", at_most(50.0), is_long},
      {"ledger_day_fills_ms", at_most(200.0), is_long},
      {"ledger_rows_turn_ms", {}, is_long}}},
    {"gui",
     gui_figures,
     {{"gui_event_over_floor", at_most(5.0)},
      {"gui_paints_per_second", at_least(55.0)},
      {"gui_summary_event_over_no_screen"},
      {"gui_totals_line_cost", at_most(1.15)},
      {"cpu_over_coalesced_model_100k", at_most(0.12)},
      {"cpu_over_coalesced_model_5k", at_most(0.25)},
      {"gui_cell_over_stock_delegate", at_most(0.40)},
      {"gui_repaint_us"},
      {"gui_probe_p99_over_repaint", at_most(1.0)},
      {"gui_probe_p999_over_repaint", at_most(2.0)},
      {"first_paint_500_over_bare_window", at_most(1.7)},
      {"journal_line_1m_over_10k", at_most(2.0)}}},
    {"program",
     program_figures,
     {{"idle_demo_ms_per_second", at_most(15.0)},
      {"idle_layouts_per_second", at_most(1.0)},
      {"idle_wakeups_per_second", at_most(10.0)},
      {"first_order_over_second", at_most(3.0)},
      {"screen_order_over_headless", at_most(3.0)},
      {"first_paint_styled_over_plain", at_most(1.25)},
      {"key_to_handler_p99_over_repaint", at_most(1.0)},
      {"key_to_paint_p99_frames", at_most(2.0)},
      {"longest_slice_login_ms", {}, is_long},
      {"longest_slice_order_ms", {}, is_long},
      {"longest_slice_close_ms", {}, is_long},
      {"longest_slice_storm_ms", {}, is_long},
      {"longest_slice_ms", at_most(16.0), is_long}}},
};

std::vector<std::string_view> asked_for;
std::vector<std::string_view> printed;

bool contains(const std::vector<std::string_view>& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

const Figure& named(std::string_view name) {
  for (const Group& group : all_groups)
    for (const Figure& figure : group.figures)
      if (figure.name == name) return figure;
  throw std::logic_error("no such figure: " + std::string{name});
}

std::string text_of(const Bar& bar, double value) {
  if (bar.kind == Bar::Kind::none) return "";
  const bool least = bar.kind == Bar::Kind::at_least;
  const bool met = least ? value >= bar.value : value <= bar.value;
  return fmt::format("  (bar{} {}{})", least ? ": at least" : "", bar.value, met ? "" : ", not met");
}

}  // namespace

std::span<const Group> groups() {
  return all_groups;
}

bool ask_for(std::span<char* const> words) {
  bool known = true;
  for (const std::string_view word : words) {
    bool found = false;
    for (const Group& group : all_groups) {
      for (const Figure& figure : group.figures) {
        if (word != "all" && word != group.name && word != figure.name && (word != "short" || figure.is_long))
          continue;
        found = true;
        asked_for.push_back(figure.name);
      }
    }
    known = known && found;
  }
  return known;
}

bool wanted(std::string_view name) {
  return contains(asked_for, named(name).name);
}

bool wanted(const Group& group) {
  return std::any_of(group.figures.begin(), group.figures.end(),
                     [](const Figure& figure) { return wanted(figure.name); });
}

void figure(std::string_view name, double value) {
  if (!wanted(name)) return;
  printed.push_back(name);
  fmt::print("{} {:.2f}{}\n", name, value, text_of(named(name).bar, value));
  std::fflush(stdout);
}

std::vector<std::string_view> missing(const Group& group) {
  std::vector<std::string_view> out;
  for (const Figure& figure : group.figures)
    if (wanted(figure.name) && !contains(printed, figure.name)) out.push_back(figure.name);
  return out;
}

}  // namespace tutti::bench
