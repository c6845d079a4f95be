#include <QCoreApplication>
#include <QEventLoop>
#include <QTableView>
#include <QTimer>
#include <chrono>
#include <memory>
#include <utility>

#include "benchmarks/figures.h"
#include "benchmarks/gui_application.h"
#include "benchmarks/gui_events.h"
#include "benchmarks/gui_probe.h"
#include "benchmarks/gui_rivals.h"
#include "benchmarks/gui_run.h"
#include "benchmarks/interleaved.h"
#include "benchmarks/journal_list.h"
#include "gui/kit/theme.h"

namespace tutti::bench {
namespace {

constexpr std::size_t accounts = 500;

// A terminal and its accounts list on a screen.
struct Gui {
  explicit Gui(const BenchMarket& market) : terminal(market, accounts), events(terminal) {}

  GuiLoad row_events() {
    return {[this](std::size_t count) { events.rows(count); }};
  }
  GuiLoad summary_events(double per_second = 0.0) {
    return {[this](std::size_t count) { events.summaries(count); }, per_second};
  }

  BenchTerminal terminal;
  GuiEvents events;
  AccountsWindow window{terminal, false};
};

// Nanoseconds of processor time per piece of work.
template <class Work>
double cpu_per(double pieces, Work&& work) {
  const double start = cpu_time();
  work();
  return (cpu_time() - start) / pieces;
}

void event_costs(Gui& gui) {
  AccountsWindow& window = gui.window;
  std::vector<double> paints;
  const auto saturated = [&](const GuiLoad& load) {
    const GuiRun run = run_gui(window.screen(), window.paints(), load);
    paints.push_back(run.paints_per_second);
    return run.cpu_per_event;
  };
  constexpr std::size_t passes = 2000;
  constexpr double events = passes * accounts;
  if (wanted("gui_event_over_floor") || wanted("gui_paints_per_second")) {
    figure("gui_event_over_floor",
           interleaved_ratio([&] { return saturated(gui.row_events()); },
                             [&] { return cpu_per(events, [&] { gui.events.floor(passes); }); }));
    figure("gui_paints_per_second", median(std::exchange(paints, {})));
  }
  figure("gui_summary_event_over_no_screen", [&] {
    return interleaved_ratio(
        [&] { return saturated(gui.summary_events()); },
        [&] { return cpu_per(events, [&] { gui.events.summaries(passes * accounts); }); });
  });
  figure("gui_totals_line_cost", [&] {
    AccountsWindow with_totals{gui.terminal, true};
    return interleaved_ratio(
        [&] {
          return run_gui(with_totals.screen(), with_totals.paints(), gui.summary_events()).cpu_per_event;
        },
        [&] { return saturated(gui.summary_events()); });
  });
}

// The same events and the same list as a standard item model of the toolkit's in its own view, which is told
// once a frame what changed.
void coalesced_model(Gui& gui, CoalescedRival& rival, const char* name, double per_second) {
  const GuiLoad rival_load{[&](std::size_t count) {
                             for (std::size_t i = 0; i < count; ++i) {
                               rival.changed(gui.events.place());
                               gui.events.summaries(1);
                             }
                           },
                           per_second};
  figure(name, [&] {
    return interleaved_ratio(
        [&] {
          return run_gui(gui.window.screen(), gui.window.paints(), gui.summary_events(per_second))
              .cpu_per_second;
        },
        [&] { return run_gui(rival.screen(), rival.paints(), rival_load).cpu_per_second; });
  });
}

double repaint_per_cell(QTableView& view) {
  constexpr int repaints = 5;
  const int cells = (view.viewport()->height() / theme::row_height + 1) * view.model()->columnCount();
  return cpu_per(repaints * cells, [&view] {
    for (int i = 0; i < repaints; ++i)
      view.viewport()->repaint();
  });
}

double cell_costs(Gui& gui) {
  StockView stock{gui.window.list()};
  QCoreApplication::processEvents();
  return interleaved_ratio([&] { return repaint_per_cell(gui.window.list()); },
                           [&] { return repaint_per_cell(stock.view()); });
}

// Nanoseconds of wall time for a repaint of all cells, once a frame while events come in, which is when the
// program repaints: with less of it in the caches than in a row of repaints.
double repaint_time(Gui& gui, const GuiLoad& load) {
  constexpr std::chrono::milliseconds frame{16};
  const SystemClock clock;
  Heartbeat heartbeat{gui.window.screen(), clock, source_of(load)};
  heartbeat.start();
  std::vector<double> repaints;
  for (int i = 0; i < 101; ++i) {
    QEventLoop loop;
    QTimer::singleShot(frame, &loop, &QEventLoop::quit);
    loop.exec();
    // It would leave painting to its frames.
    heartbeat.stop();
    repaints.push_back(time_of([&] { gui.window.list().viewport()->repaint(); }));
    heartbeat.start();
  }
  return median(std::move(repaints));
}

void latencies(Gui& gui) {
  const GuiLoad load = gui.summary_events(100'000.0);
  const double repaint = repaint_time(gui, load);
  constexpr std::size_t probes = 4000;
  const auto sorted = probe_latencies(gui.window.screen(), load, probes);
  figure("gui_repaint_us", repaint / 1e3);
  figure("gui_probe_p99_over_repaint", sorted[probes * 99 / 100] / repaint);
  figure("gui_probe_p999_over_repaint", sorted[probes * 999 / 1000] / repaint);
}

// From making the window until it is painted; it goes afterwards.
double first_paint(BenchTerminal& terminal) {
  const double start = cpu_time();
  const AccountsWindow window{terminal, false};
  wait_for_paint(window.paints());
  return cpu_time() - start;
}

double first_paint_of_bare_window() {
  const double start = cpu_time();
  QMainWindow window;
  auto* view = new QTableView{&window};
  window.setCentralWidget(view);
  const PaintCount paints{*view};
  show_window(window);
  wait_for_paint(paints);
  return cpu_time() - start;
}

}  // namespace

void gui_figures() {
  const std::unique_ptr<QApplication> application = make_application("offscreen");
  const BenchMarket market;
  Gui gui{market};
  wait_for_paint(gui.window.paints());
  event_costs(gui);
  if (wanted("cpu_over_coalesced_model_100k") || wanted("cpu_over_coalesced_model_5k")) {
    CoalescedRival rival{gui.window.list()};
    coalesced_model(gui, rival, "cpu_over_coalesced_model_100k", 100'000.0);
    coalesced_model(gui, rival, "cpu_over_coalesced_model_5k", 5'000.0);
  }
  figure("gui_cell_over_stock_delegate", [&] { return cell_costs(gui); });
  if (wanted("gui_repaint_us") || wanted("gui_probe_p99_over_repaint") ||
      wanted("gui_probe_p999_over_repaint"))
    latencies(gui);
  figure("first_paint_500_over_bare_window", [&] {
    return interleaved_ratio([&] { return first_paint(gui.terminal); }, first_paint_of_bare_window);
  });
  figure("journal_line_1m_over_10k", journal_line_ratio);
}

}  // namespace tutti::bench
