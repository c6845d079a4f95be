// The dealing server as a process of its own.

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <cstdio>
#include <string>

#include "apps/server/dealer_process.h"
#include "core/core_dumps.h"
#include "core/numbers.h"
#include "core/standard_streams.h"
#include "core/stop_signals.h"
#include "core/time_texts.h"
#include "core/version.h"

namespace {

// "ADDRESS:PORT"; the text says what is wrong.
std::string read_address(const std::string& text, tutti::DealerOptions& options) {
  const auto colon = text.rfind(':');
  const std::int32_t port = colon != text.npos ? tutti::parse_int32(text.substr(colon + 1)).value_or(-1) : -1;
  if (port < 0 || port > 65'535 || colon == 0) return "must be written as ADDRESS:PORT";
  options.address = text.substr(0, colon);
  if (options.address.front() == '[' && options.address.back() == ']')
    options.address = options.address.substr(1, options.address.size() - 2);
  options.port = static_cast<std::uint16_t>(port);
  return {};
}

void print(std::FILE* stream, const tutti::Clock& clock, std::string_view text) {
  fmt::print(stream, "{} {}\n", tutti::full_time_text(clock.now()), text);
  std::fflush(stream);
}

}  // namespace

int main(int argc, char** argv) {
  using namespace tutti;
  open_standard_streams();
#ifdef NDEBUG
  forbid_core_dumps();
#endif
  DealerOptions options;
  bool plain = false;
  CLI::App app{"The dealing server that terminals reach by FIX 4.4"};
  app.set_version_flag("--version", std::string{program_version()}, "Name the version and exit");
  app.add_option("--home", options.home, "Folder with the book, the certificate and its key")->required();
  app.add_flag("--create", options.create, "Make the folder where there is none");
  app.add_option("--dealer", options.dealer_file, "Configuration (TOML); without it the sample");
  app.add_option("--accounts", options.sample_accounts, "Accounts of the sample; 12 when not given")
      ->check(CLI::Range(1, 100'000));
  std::string listen;
  app.add_option("--listen", listen, "ADDRESS:PORT; 127.0.0.1:4951 when not given")
      ->check([&](const std::string& text) { return read_address(text, options); });
  app.add_flag("--no-tls", plain, "Carry everything as it is; on the own machine only");
  CLI11_PARSE(app, argc, argv);
  options.tls = !plain;

  const StopSignals signals;
  const SystemClock clock;
  const auto process =
      DealerProcess::open(options, clock, [&](std::string_view text) { print(stderr, clock, text); });
  if (!process) {
    fmt::print(stderr, "{}\n", process.error());
    return 1;
  }
  print(stdout, clock,
        fmt::format("Listening at {}:{}{}", options.address, (*process)->port(),
                    options.tls ? "" : ", without TLS"));
  if (options.tls) print(stdout, clock, "SHA-256 of the certificate: " + (*process)->fingerprint());
  const auto ended = (*process)->run([&] { return signals.caught() != 0; });
  if (!ended) {
    fmt::print(stderr, "{}\n", ended.error());
    return 1;
  }
  print(stdout, clock, "Stopped");
  return 0;
}
