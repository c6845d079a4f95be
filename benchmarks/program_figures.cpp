#include <sys/resource.h>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <algorithm>
#include <array>
#include <deque>
#include <memory>
#include <mutex>
#include <random>
#include <thread>
#include <utility>

#include "benchmarks/figures.h"
#include "benchmarks/gui_application.h"
#include "benchmarks/gui_run.h"
#include "benchmarks/interleaved.h"
#include "benchmarks/order_waits.h"
#include "benchmarks/whole_program.h"
#include "gui/kit/theme.h"

namespace tutti::bench {
namespace {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

class LayoutCount final : public QObject {
 public:
  explicit LayoutCount(QWidget& window) { window.installEventFilter(this); }
  int layouts = 0;
  bool eventFilter(QObject*, QEvent* event) override {
    layouts += event->type() == QEvent::LayoutRequest ? 1 : 0;
    return false;
  }
};

// How often the GUI thread fell asleep.
long sleeps() {
  rusage used{};
  getrusage(RUSAGE_THREAD, &used);
  return used.ru_nvcsw;
}

constexpr auto idle_time = 5s;
constexpr double idle_seconds = 5.0;

void idle_demo() {
  WholeProgram program{""};
  program.open_window();
  program.log_in();
  program.run_for(3s);
  const LayoutCount count{program.window()};
  const double start = cpu_time();
  program.run_for(idle_time);
  figure("idle_demo_ms_per_second", (cpu_time() - start) / 1e6 / idle_seconds);
  figure("idle_layouts_per_second", count.layouts / idle_seconds);
}

double idle_wakeups() {
  WholeProgram program{no_ticks};
  program.open_window();
  program.log_in();
  program.run_for(3s);
  const long before = sleeps();
  program.run_for(idle_time);
  return static_cast<double>(sleeps() - before) / idle_seconds;
}

double first_paint() {
  WholeProgram program{no_ticks};
  const auto run = [&program] {
    const double start = cpu_time();
    program.open_window();
    const double time = cpu_time() - start;
    program.close_window();
    return time;
  };
  return interleaved_ratio(run, [&] {
    const theme::WithoutSheet plain{*qApp};
    return run();
  });
}

// The longest turn of the loop in each of what takes longest, in nanoseconds.
using Slices = std::array<double, 4>;

Slices slices() {
  Slices out{};
  {
    WholeProgram program{slow_ticks};
    program.open_window();
    program.take_longest_slice();
    program.log_in();
    out[0] = program.take_longest_slice();
    program.order("50");
    out[1] = program.take_longest_slice();
    const PositionBook& positions = program.main().positions();
    while (positions.size() < 10'000)
      program.order("50");
    program.run_for(1s);
    program.take_longest_slice();
    program.act([&program] {
      program.main().trade().chkAll.click();
      program.main().trade().closeAllse();
    });
    program.run_until([&positions] { return positions.size() == 0; });
    out[2] = program.take_longest_slice();
  }
  WholeProgram program{storm};
  program.open_window();
  program.log_in();
  program.run_for(1s);
  program.take_longest_slice();
  program.run_for(3s);
  out[3] = program.take_longest_slice();
  return out;
}

void longest_slice() {
  constexpr std::array names{"longest_slice_login_ms", "longest_slice_order_ms", "longest_slice_close_ms",
                             "longest_slice_storm_ms"};
  if (!wanted("longest_slice_ms") &&
      std::none_of(names.begin(), names.end(), [](std::string_view name) { return wanted(name); }))
    return;
  std::array<std::vector<double>, names.size()> runs;
  for (int run = 0; run < 5; ++run) {
    const Slices longest = slices();
    for (std::size_t i = 0; i < names.size(); ++i)
      runs[i].push_back(longest[i] / 1e6);
  }
  double all = 0.0;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const double each = median(std::move(runs[i]));
    figure(names[i], each);
    all = std::max(all, each);
  }
  figure("longest_slice_ms", all);
}

// Keys that another thread posts to a box for text, and how long each waits until it is handled, and until
// the box is painted with it, in nanoseconds.
class KeyProbe final : public QObject {
 public:
  explicit KeyProbe(QLineEdit& box) : box_(box) { box.installEventFilter(this); }

  void post(Qt::Key key, const QString& text) {
    const std::scoped_lock lock{mutex_};
    posted_.push_back(SteadyClock::now());
    QCoreApplication::postEvent(&box_, new QKeyEvent{QEvent::KeyPress, key, Qt::NoModifier, text});
  }
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::KeyPress) {
      const std::scoped_lock lock{mutex_};
      handled.push_back(since(posted_.front()));
      unpainted_.push_back(posted_.front());
      posted_.pop_front();
    } else if (event->type() == QEvent::Paint) {
      for (const auto at : std::exchange(unpainted_, {}))
        painted.push_back(since(at));
    }
    return false;
  }
  static double p99(std::vector<double> values) {
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(values.size() * 99 / 100);
    std::nth_element(values.begin(), at, values.end());
    return *at;
  }

  std::vector<double> handled;
  std::vector<double> painted;

 private:
  static double since(SteadyClock::time_point at) {
    return std::chrono::duration<double, std::nano>(SteadyClock::now() - at).count();
  }

  QLineEdit& box_;
  std::mutex mutex_;
  std::deque<SteadyClock::time_point> posted_;
  std::vector<SteadyClock::time_point> unpainted_;
};

void keys() {
  constexpr std::size_t count = 1000;
  WholeProgram program{storm};
  program.open_window();
  program.log_in();
  program.run_for(1s);
  std::vector<double> repaints;
  for (int i = 0; i < 51; ++i) {
    program.run_for(20ms);
    // It would leave painting to its frames.
    program.heartbeat().stop();
    repaints.push_back(time_of([&] { program.window().repaint(); }));
    program.heartbeat().start();
  }
  KeyProbe probe{*program.window().findChild<QLineEdit*>(QStringLiteral("txtammount"))};
  std::thread typist{[&probe] {
    std::mt19937 random{1};
    std::exponential_distribution<double> pause{1.0 / 10.0};
    for (std::size_t i = 0; i < count; ++i) {
      std::this_thread::sleep_for(std::chrono::duration<double, std::milli>{pause(random)});
      i % 2 == 0 ? probe.post(Qt::Key_1, QStringLiteral("1")) : probe.post(Qt::Key_Backspace, {});
    }
  }};
  program.run_until([&probe] { return probe.painted.size() == count; });
  typist.join();
  constexpr double frame = 16e6;
  figure("key_to_handler_p99_over_repaint", KeyProbe::p99(probe.handled) / median(std::move(repaints)));
  figure("key_to_paint_p99_frames", KeyProbe::p99(probe.painted) / frame);
}

}  // namespace

void program_figures() {
  const std::unique_ptr<QApplication> application = make_application("xcb");
  if (wanted("idle_demo_ms_per_second") || wanted("idle_layouts_per_second")) idle_demo();
  figure("idle_wakeups_per_second", idle_wakeups);
  figure("first_order_over_second", first_order_over_second);
  figure("screen_order_over_headless", screen_order_over_headless);
  figure("first_paint_styled_over_plain", first_paint);
  if (wanted("key_to_handler_p99_over_repaint") || wanted("key_to_paint_p99_frames")) keys();
  longest_slice();
}

}  // namespace tutti::bench
