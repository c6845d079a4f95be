#include "benchmarks/manual_program.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "benchmarks/interleaved.h"
#include "core/file_writer.h"
#include "core/key_file.h"

namespace tutti::bench {
namespace {

using namespace std::chrono_literals;

DealerConfig sample(int accounts, int symbols) {
  DealerConfig out = DealerConfig::sample(accounts);
  const std::vector<SymbolConfig> there = out.symbols;
  const auto wanted = static_cast<std::size_t>(symbols);
  if (wanted < there.size()) out.symbols.resize(wanted);
  // More of them are the same under other names.
  for (std::size_t i = there.size(); i < wanted; ++i) {
    out.symbols.push_back(there[i % there.size()]);
    out.symbols.back().name += "." + std::to_string(i / there.size());
  }
  return out;
}

}  // namespace

ManualProgram::ManualProgram(int accounts, int symbols)
    : ManualProgram(sample(accounts, symbols), Keeps::nothing) {}

ManualProgram::ManualProgram(DealerConfig config, Keeps keeps) : server_(std::move(config), clock_) {
  std::string lines;
  for (const AccountConfig& account : server_.config().accounts) {
    lines += account.user + "," + account.password + "," + std::to_string(account.number) + "\n";
  }
  std::filesystem::create_directory(home() / "manage");
  const auto written = replace_file(home() / "manage/savelvinfo.buf", lines);
  if (!written) throw std::runtime_error(written.error().text());
  if (keeps == Keeps::nothing) return;
  KeyFile file{home() / "key"};
  const auto key = file.find_or_create();
  if (!key) throw std::runtime_error(key.error().text());
  auto opened = LedgerWriter::open({home(), "bench"}, **key, clock_);
  if (!opened) throw std::runtime_error(opened.error().text());
  ledger_ = std::move(*opened);
}

Main& ManualProgram::start() {
  Ledger& ledger = ledger_ ? static_cast<Ledger&>(*ledger_) : no_ledger_;
  auto started = Main::start(
      home(), MachinePorts{clock_, prompt_, sound_, locale_, file_dialog_, ledger, stop_},
      {[this](const LoginData&) { return server_.make_client(); }, {&server_}, server_.config().endpoint});
  if (!started) throw std::runtime_error(started.error().text());
  main_ = std::move(*started);
  run_until([&, all = server_.config().accounts.size()] {
    return main().market_order().lvwConClients.size() >= all;
  });
  return main();
}

void ManualProgram::step_market() {
  clock_.advance(server_.config().tick_interval);
  server_.advance();
}

double ManualProgram::longest_turn_until(const std::function<bool()>& done) {
  constexpr std::size_t few = 64;  // as the window takes them between two looks at its clock
  double longest = 0.0;
  while (!done()) {
    clock_.advance(1ms);
    server_.advance();
    bool more = true;
    while (more) {
      longest = std::max(longest, time_of([&] {
                           more = main().deliver_events(few) == few;
                           main().poll_timers(more);
                         }));
    }
  }
  return longest;
}

void ManualProgram::settle_ledger() {
  if (ledger_ && !ledger_->flush(10s)) throw std::runtime_error(ledger_->fault());
}

void ManualProgram::run_until(const std::function<bool()>& done) {
  constexpr auto step = 10ms;
  for (auto left = 60'000ms; !done(); left -= step) {
    if (left <= 0ms) throw std::runtime_error("the program does not get there");
    clock_.advance(step);
    server_.advance();
    main().deliver_events();
    main().poll_timers();
  }
}

}  // namespace tutti::bench
