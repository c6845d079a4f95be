#include "apps/server/dealer_process.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "core/file_writer.h"
#include "dealer/config/config_reader.h"
#include "fix/net/certificate.h"

namespace tutti {
namespace {

constexpr std::chrono::milliseconds longest_nap{200};
constexpr std::chrono::seconds longest_farewell{3};

bool is_loopback(std::string_view address) {
  return address == "::1" || address.starts_with("127.");
}

tl::expected<DealerConfig, std::string> config_of(const DealerOptions& options) {
  if (options.dealer_file.empty()) return DealerConfig::sample(options.sample_accounts);
  auto loaded = load_dealer_config(options.dealer_file);
  if (!loaded) return tl::unexpected(loaded.error().text());
  return std::move(*loaded);
}

}  // namespace

tl::expected<std::unique_ptr<DealerProcess>, std::string> DealerProcess::open(const DealerOptions& options,
                                                                              const Clock& clock, Tell tell) {
  if (!options.tls && !is_loopback(options.address))
    return tl::unexpected(fmt::format(
        "Without TLS passwords could be read on their way: {} is not this machine", options.address));
  std::error_code error;
  if (!options.create && !std::filesystem::is_directory(options.home, error))
    return tl::unexpected(fmt::format("{} is no folder: --create makes one", options.home.string()));
  auto config = config_of(options);
  if (!config) return tl::unexpected(config.error());
  auto lock = HomeLock::take(options.home);
  if (!lock) return tl::unexpected(lock.error().text());
  std::unique_ptr<DealerProcess> process{
      new DealerProcess(std::move(*config), clock, std::move(tell), std::move(*lock))};
  if (auto begun = process->begin(options); !begun) return tl::unexpected(begun.error());
  return process;
}

DealerProcess::DealerProcess(DealerConfig config, const Clock& clock, Tell tell, HomeLock lock)
    : clock_(clock),
      tell_(std::move(tell)),
      lock_(std::move(lock)),
      server_(std::move(config), clock),
      fix_(dictionary_, {}, [this] { return server_.make_client(); }) {}

tl::expected<void, std::string> DealerProcess::begin(const DealerOptions& options) {
  const auto left_out = server_.keep_book(options.home);
  if (!left_out) return tl::unexpected(left_out.error().text());
  for (const std::string& text : *left_out)
    tell_(text);
  std::optional<Certificate> certificate;
  if (options.tls) {
    auto own = own_certificate(options.home / "dealer-cert.pem", options.home / "dealer-key.pem");
    if (!own) return tl::unexpected(own.error().text());
    fingerprint_ = own->fingerprint;
    certificate = std::move(*own);
  }
  // What comes in is answered within the same turn of the wheel, whatever else is due later.
  fix_.set_wake([this] { turn_soon(); });
  const auto port =
      network_.listen(options.address, options.port, certificate ? &*certificate : nullptr, fix_);
  if (!port) return tl::unexpected(port.error());
  port_ = *port;
  return {};
}

tl::expected<void, std::string> DealerProcess::run(const std::function<bool()>& stopped) {
  stopped_ = stopped;
  turn();
  second();
  network_.run();
  tell_news();
  const auto saved = server_.save_book();
  if (!saved) return tl::unexpected(saved.error().text());
  return {};
}

void DealerProcess::turn() {
  server_.advance();
  while (server_.deliver_next()) {
  }
  tell_news();
  if (!closing_ && stopped_()) {
    closing_ = true;
    closed_at_ = clock_.elapsed();
    fix_.close("The server stops");
    leave();
  }
  turn_later();
}

void DealerProcess::turn_soon() {
  if (std::exchange(turning_soon_, true)) return;
  network_.post([this] {
    turning_soon_ = false;
    turn();
  });
}

void DealerProcess::turn_later() {
  auto nap = longest_nap;
  if (const auto due = server_.next_due())
    nap = std::clamp(*due - clock_.now(), std::chrono::milliseconds{1}, longest_nap);
  const std::uint64_t mine = ++turns_;
  network_.post_after(nap, [this, mine] {
    if (mine == turns_) turn();
  });
}

void DealerProcess::leave() {
  constexpr std::chrono::milliseconds glance{20};
  fix_.sweep();
  if (fix_.connections() == 0 || clock_.elapsed() - closed_at_ > longest_farewell) return network_.stop();
  network_.post_after(glance, [this] { leave(); });
}

void DealerProcess::second() {
  fix_.tick();
  network_.post_after(std::chrono::seconds{1}, [this] { second(); });
}

void DealerProcess::tell_news() {
  for (const std::string& remark : fix_.take_remarks())
    tell_(remark);
  const auto& failure = server_.book().failure();
  if (failure.has_value() == book_failed_) return;
  book_failed_ = failure.has_value();
  tell_(book_failed_ ? "The server stands still until it can store what happened: " + failure->text()
                     : "The server can store what happens again and goes on");
}

}  // namespace tutti
