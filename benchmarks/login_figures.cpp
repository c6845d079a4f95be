#include <malloc.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "benchmarks/figures.h"
#include "benchmarks/interleaved.h"
#include "benchmarks/quiet_ports.h"
#include "benchmarks/scratch_folder.h"
#include "core/file_writer.h"
#include "core/locale_port.h"
#include "dealer/link/dealing_server.h"
#include "shell/Main.h"

namespace tutti::bench {
namespace {

using namespace std::chrono_literals;

std::size_t heap_in_use() {
  return mallinfo2().uordblks;
}

std::string saved_list(const DealerConfig& config) {
  std::string lines;
  for (const AccountConfig& account : config.accounts) {
    lines += account.user + "," + account.password + "," + std::to_string(account.number) + "\n";
  }
  return lines;
}

// Starts the program and runs it until every account is in the market order window, which is the last thing
// its data do.
std::unique_ptr<Main> log_all_in(const std::filesystem::path& home, const MachinePorts& ports,
                                 ManualClock& clock, DealingServer& server) {
  auto started = Main::start(
      home, ports,
      {[&](const LoginData&) { return server.make_client(); }, {&server}, server.config().endpoint});
  if (!started) throw std::runtime_error(started.error().text());
  Main& main = **started;
  const std::size_t all = server.config().accounts.size();
  for (auto left = 10'000ms; main.market_order().lvwConClients.size() < all; left -= 10ms) {
    if (left == 0ms) throw std::runtime_error("not every account logged in");
    clock.advance(10ms);
    server.advance();
    main.deliver_events();
  }
  return std::move(*started);
}

}  // namespace

void login_figures() {
  constexpr int accounts = 500;
  const ScratchFolder home;
  ManualClock clock;
  QuietPrompt prompt;
  QuietSound sound;
  ProcessLocale locale;
  QuietFileDialog file_dialog;
  DealerConfig config = DealerConfig::sample(accounts);
  config.symbols.resize(20);
  DealingServer server{std::move(config), clock};
  std::filesystem::create_directory(home.path() / "manage");
  if (const auto written = replace_file(home.path() / "manage/savelvinfo.buf", saved_list(server.config()));
      !written) {
    throw std::runtime_error(written.error().text());
  }
  const std::size_t before = heap_in_use();
  std::unique_ptr<Main> main;
  const MachinePorts ports{clock, prompt, sound, locale, file_dialog};
  figure("login_500_ms", time_of([&] { main = log_all_in(home.path(), ports, clock, server); }) / 1e6);
  figure("bytes_per_session", static_cast<double>(heap_in_use() - before) / accounts);
}

}  // namespace tutti::bench
