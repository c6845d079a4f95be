#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "benchmarks/call_counter.h"
#include "benchmarks/figures.h"
#include "benchmarks/interleaved.h"
#include "benchmarks/manual_program.h"

namespace tutti::bench {
namespace {

namespace fs = std::filesystem;

void order_once(ManualProgram& program) {
  frmorder& form = program.main().market_order();
  form.txtammount.set_text("");
  form.txtammount.type("50");
  form.cmddis.click();
  form.cmdbuy.click();
  program.run_until([&form] { return form.answers().waiting == 0; });
}

std::size_t journal_lines(const fs::path& home) {
  std::size_t lines = 0;
  if (!fs::exists(home / "History")) return lines;
  for (const auto& entry : fs::directory_iterator{home / "History"}) {
    std::ifstream text{entry.path()};
    for (std::string line; std::getline(text, line);)
      ++lines;
  }
  return lines;
}

// What the program asks the system for files from Distribute to the last of 500 answers, over the lines that
// it journals meanwhile; the dealing server keeps no book, so that nothing else is written. `first`: of the
// first order in a home without any history, else of the five after it.
double calls_per_line(bool first) {
  return CallCounter::per_unit([first](const CallCounter& counter) {
    ManualProgram program{500, 20};
    program.start();
    frmorder& form = program.main().market_order();
    form.cbsymbols.choose("EURUSD");
    form.CBdis.choose(0);
    form.chkAllClients.click();
    if (!first) order_once(program);
    const std::size_t before = journal_lines(program.home());
    counter.begin();
    for (int order = 0; order < (first ? 1 : 5); ++order)
      order_once(program);
    counter.end();
    return journal_lines(program.home()) - before;
  });
}

void write_history(const fs::path& file, std::size_t bytes) {
  std::ofstream text{file, std::ios::binary};
  std::size_t written = 0;
  for (int i = 0; written < bytes; ++i) {
    const std::string line =
        "2026-01-01 00:00:00*,%$Buy 0.10 EURUSD at 1.08450: Market Order Accepted, order " +
        std::to_string(i) + "\n";
    text << line;
    written += line.size();
  }
  if (!text.flush()) throw std::runtime_error("no room for a long history");
}

// From asking for a history until its newest rows are in the journal window's list.
double history_ratio() {
  constexpr std::int32_t large = 1;
  constexpr std::int32_t small = 2;
  ManualProgram program{1, 1};
  program.start();
  fs::create_directories(program.home() / "History");
  write_history(program.home() / "History/JN1.his", 100'000'000);
  write_history(program.home() / "History/JN2.his", 1'000'000);
  CJournal& journal = program.main().journal();
  const RowList& list = program.main().journal_window().lvwJournal;
  const auto shown = [&](std::int32_t id) {
    journal.vID(no_account);
    const double time = time_of([&] { journal.vID(id); });
    if (list.empty() || !journal.has_older()) throw std::runtime_error("the history is not on show");
    return time;
  };
  return interleaved_ratio([&] { return shown(large); }, [&] { return shown(small); });
}

}  // namespace

void journal_figures() {
  figure("journal_syscalls_per_line", [] { return calls_per_line(false); });
  figure("journal_syscalls_per_first_line", [] { return calls_per_line(true); });
  figure("history_100mb_over_1mb", history_ratio);
}

}  // namespace tutti::bench
