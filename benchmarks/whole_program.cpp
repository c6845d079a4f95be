#include "benchmarks/whole_program.h"

#include <QApplication>
#include <algorithm>
#include <ctime>
#include <stdexcept>

#include "benchmarks/gui_windows.h"
#include "gui/kit/theme.h"

namespace tutti::bench {
namespace {

using namespace std::chrono_literals;

double thread_time() {
  std::timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

}  // namespace

WholeProgram::~WholeProgram() {
  heartbeat_.reset();
  window_.reset();
}

void WholeProgram::open_window() {
  {
    const theme::WithoutSheet bare{*qApp};
    window_ = std::make_unique<FrmMdiNewWindow>(main(), screen_, prompt_, sound_, program_.files());
  }
  const PaintCount paints{window_->panes().accounts().list()};
  window_->resize(1366, 768);
  window_->reset_layout();
  window_->show();
  wait_for_paint(paints);
}

void WholeProgram::close_window() {
  window_.reset();
}

void WholeProgram::log_in() {
  Terminal& terminal = program_.terminal();
  const Clock& clock = program_.clock();
  heartbeat_ = std::make_unique<Heartbeat>(
      screen_, clock,
      Heartbeat::Source{[&terminal](std::size_t limit) { return terminal.advance(limit); },
                        [&terminal, &clock] {
                          return std::max(terminal.next_due().value_or(TimePoint::max()) - clock.now(), 0ms);
                        }});
  heartbeat_->start();
  run_until([this] { return program_.logged_in(); });
}

void WholeProgram::act(std::function<void()> what) {
  QMetaObject::invokeMethod(
      window_.get(),
      [this, what = std::move(what)] {
        what();
        screen_.acted();
      },
      Qt::QueuedConnection);
}

void WholeProgram::run_until(const std::function<bool()>& done) {
  for (const auto end = program_.clock().elapsed() + 60s; !done();) {
    if (program_.clock().elapsed() > end) throw std::runtime_error("the program does not get there");
    const double start = thread_time();
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    longest_slice_ = std::max(longest_slice_, thread_time() - start);
  }
}

void WholeProgram::run_for(std::chrono::milliseconds time) {
  run_until([this, end = program_.clock().elapsed() + time] { return program_.clock().elapsed() >= end; });
}

void WholeProgram::distribute(const char* lots) {
  act([this, lots] { program_.distribute(lots); });
}

void WholeProgram::order(const char* lots) {
  distribute(lots);
  frmorder& form = main().market_order();
  bool sent = false;
  act([&form, &sent] {
    form.cmdbuy.click();
    sent = true;
  });
  run_until([&form, &sent] { return sent && form.answers().waiting == 0; });
}

}  // namespace tutti::bench
