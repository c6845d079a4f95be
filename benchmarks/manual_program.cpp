#include "benchmarks/manual_program.h"

#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "core/file_writer.h"

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

ManualProgram::ManualProgram(int accounts, int symbols) : server_(sample(accounts, symbols), clock_) {
  std::string lines;
  for (const AccountConfig& account : server_.config().accounts) {
    lines += account.user + "," + account.password + "," + std::to_string(account.number) + "\n";
  }
  std::filesystem::create_directory(home() / "manage");
  const auto written = replace_file(home() / "manage/savelvinfo.buf", lines);
  if (!written) throw std::runtime_error(written.error().text());
}

Main& ManualProgram::start() {
  auto started = Main::start(
      home(), MachinePorts{clock_, prompt_, sound_, locale_, file_dialog_, ledger_, stop_},
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
