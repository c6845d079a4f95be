#include "benchmarks/order_waits.h"

#include <QEvent>
#include <QObject>
#include <filesystem>
#include <utility>
#include <vector>

#include "benchmarks/interleaved.h"
#include "benchmarks/whole_program.h"

namespace tutti::bench {
namespace {

using namespace std::chrono_literals;

constexpr const char* lots = "50";
// Between two orders, so that none waits for what the last one left behind.
constexpr auto rest = 100ms;

// A disk may look long for a place for a file where many have just gone, as they do when a benchmark ends.
std::filesystem::path in_memory() {
  const std::filesystem::path shared = "/dev/shm";
  return std::filesystem::is_directory(shared) ? shared : std::filesystem::temp_directory_path();
}

double order_without_screen(HomeProgram& program) {
  program.run_for(rest);
  program.distribute(lots);
  frmorder& form = program.main().market_order();
  return time_of([&] {
    form.cmdbuy.click();
    program.run_until([&form] { return form.answers().waiting == 0; });
  });
}

// Sees the list painted after the last answer.
class AnswersPainted final : public QObject {
 public:
  AnswersPainted(RowListView& list, const frmorder& form) : form_(form) {
    list.viewport()->installEventFilter(this);
  }
  bool sent = false;
  bool painted = false;

  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint && sent && form_.answers().waiting == 0) painted = true;
    return false;
  }

 private:
  const frmorder& form_;
};

double order_on_screen(WholeProgram& program) {
  program.run_for(rest);
  program.distribute(lots);
  program.run_for(rest);
  frmorder& form = program.main().market_order();
  RowListView& list = program.window().panes().market_order().list();
  list.scrollToBottom();
  program.run_for(rest);
  AnswersPainted answers{list, form};
  return time_of([&] {
    program.act([&] {
      form.cmdbuy.click();
      answers.sent = true;
    });
    program.run_until([&] { return answers.painted; });
  });
}

}  // namespace

double first_order_over_second() {
  std::vector<double> ratios;
  for (int home = 0; home < 7; ++home) {
    HomeProgram program{no_ticks, in_memory()};
    program.run_until([&program] { return program.logged_in(); });
    const double first = order_without_screen(program);
    ratios.push_back(first / order_without_screen(program));
  }
  return median(std::move(ratios));
}

double screen_order_over_headless() {
  HomeProgram headless{no_ticks};
  headless.run_until([&headless] { return headless.logged_in(); });
  WholeProgram screen{no_ticks};
  screen.open_window();
  screen.log_in();
  screen.window().panes().bring_up(QStringLiteral("market_order"));
  std::vector<double> with;
  std::vector<double> without;
  for (int run = 0; run < 10; ++run) {
    with.push_back(order_on_screen(screen));
    without.push_back(order_without_screen(headless));
  }
  // The first ones open files and touch memory for the first time, which is not what is compared here.
  with.erase(with.begin());
  without.erase(without.begin());
  return median(std::move(with)) / median(std::move(without));
}

}  // namespace tutti::bench
