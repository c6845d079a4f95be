#include "benchmarks/home_program.h"

#include <stdexcept>
#include <utility>

#include "apps/embedded_dealer.h"
#include "core/file_writer.h"

namespace tutti::bench {

using namespace std::chrono_literals;

HomeProgram::HomeProgram(const std::string& dealer, const std::filesystem::path& where) : home_(where) {
  options_.home = home_.path();
  options_.key_file = home_.path() / "key";
  options_.create = true;
  options_.demo = dealer.empty();
  if (!dealer.empty()) {
    options_.dealer_file = home_.path() / "dealer.toml";
    if (const auto written = replace_file(options_.dealer_file, dealer); !written)
      throw std::runtime_error(written.error().text());
  }
  open();
}

void HomeProgram::open() {
  auto opened =
      Terminal::open(options_, {nobody_, silence_, files_, clock_, [](std::string_view) {}},
                     [this](const TerminalOptions& home) { return EmbeddedDealer::open(home, clock_); });
  if (!opened) throw std::runtime_error(opened.error().text());
  terminal_ = std::move(*opened);
}

void HomeProgram::close() {
  if (const auto closed = terminal_->close(); !closed) throw std::runtime_error(closed.error().text());
  terminal_.reset();
}

bool HomeProgram::logged_in() {
  const auto all = static_cast<std::size_t>(main().account_book().counts().all);
  return all > 0 && main().market_order().lvwConClients.size() == all;
}

void HomeProgram::distribute(const char* lots) {
  frmorder& form = main().market_order();
  form.cbsymbols.choose("EURUSD");
  form.CBdis.choose(0);
  form.txtammount.set_text("");
  form.txtammount.type(lots);
  if (!form.chkAllClients.checked()) form.chkAllClients.click();
  form.cmddis.click();
}

void HomeProgram::run_until(const std::function<bool()>& done) {
  for (const auto end = clock_.elapsed() + 60s; !done();) {
    if (clock_.elapsed() > end) throw std::runtime_error("the program does not get there");
    terminal_->advance();
  }
}

void HomeProgram::run_for(std::chrono::milliseconds time) {
  run_until([this, end = clock_.elapsed() + time] { return clock_.elapsed() >= end; });
}

}  // namespace tutti::bench
