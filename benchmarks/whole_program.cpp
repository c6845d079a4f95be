#include "benchmarks/whole_program.h"

#include <QApplication>
#include <algorithm>
#include <ctime>
#include <stdexcept>
#include <utility>

#include "apps/embedded_dealer.h"
#include "benchmarks/gui_windows.h"
#include "core/file_writer.h"
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

WholeProgram::WholeProgram(const std::string& dealer) {
  TerminalOptions options;
  options.home = home_.path();
  options.create = true;
  options.demo = dealer.empty();
  if (!dealer.empty()) {
    options.dealer_file = home_.path() / "dealer.toml";
    if (const auto written = replace_file(options.dealer_file, dealer); !written)
      throw std::runtime_error(written.error().text());
  }
  auto opened =
      Terminal::open(options, {nobody_, silence_, files_, clock_, [](std::string_view) {}},
                     [this](const TerminalOptions& home) { return EmbeddedDealer::open(home, clock_); });
  if (!opened) throw std::runtime_error(opened.error().text());
  terminal_ = std::move(*opened);
}

WholeProgram::~WholeProgram() {
  heartbeat_.reset();
  window_.reset();
}

void WholeProgram::open_window() {
  {
    const theme::WithoutSheet bare{*qApp};
    window_ = std::make_unique<FrmMdiNewWindow>(main(), screen_, prompt_, sound_, files_);
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
  heartbeat_ = std::make_unique<Heartbeat>(
      screen_, clock_,
      Heartbeat::Source{
          [this](std::size_t limit) { return terminal_->advance(limit); },
          [this] { return std::max(terminal_->next_due().value_or(TimePoint::max()) - clock_.now(), 0ms); }});
  heartbeat_->start();
  run_until([this] {
    const auto all = static_cast<std::size_t>(main().account_book().counts().all);
    return all > 0 && main().market_order().lvwConClients.size() == all;
  });
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
  for (const auto end = clock_.elapsed() + 60s; !done();) {
    if (clock_.elapsed() > end) throw std::runtime_error("the program does not get there");
    const double start = thread_time();
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    longest_slice_ = std::max(longest_slice_, thread_time() - start);
  }
}

void WholeProgram::run_for(std::chrono::milliseconds time) {
  run_until([this, end = clock_.elapsed() + time] { return clock_.elapsed() >= end; });
}

void WholeProgram::order(const char* lots) {
  frmorder& form = main().market_order();
  act([&form, lots] {
    form.cbsymbols.choose("EURUSD");
    form.CBdis.choose(0);
    form.txtammount.set_text("");
    form.txtammount.type(lots);
    if (!form.chkAllClients.checked()) form.chkAllClients.click();
    form.cmddis.click();
  });
  bool sent = false;
  act([&form, &sent] {
    form.cmdbuy.click();
    sent = true;
  });
  run_until([&form, &sent] { return sent && form.answers().waiting == 0; });
}

}  // namespace tutti::bench
