#include "apps/embedded_dealer.h"

#include <fmt/format.h>

#include <utility>

#include "apps/earlier_request.h"
#include "core/file_writer.h"
#include "core/texts.h"
#include "dealer/config/config_reader.h"

namespace tutti {

tl::expected<std::unique_ptr<EmbeddedDealer>, FileError> EmbeddedDealer::open(const TerminalOptions& options,
                                                                              const Clock& clock) {
  DealerConfig config = options.demo ? DealerConfig::demo() : DealerConfig::sample(options.sample_accounts);
  if (!options.dealer_file.empty()) {
    auto loaded = load_dealer_config(options.dealer_file);
    if (!loaded) return tl::unexpected(loaded.error());
    config = std::move(*loaded);
  }
  std::unique_ptr<EmbeddedDealer> dealer{new EmbeddedDealer(std::move(config), clock)};
  const auto left_out = dealer->server_.keep_book(options.home, options.fresh);
  if (!left_out) return tl::unexpected(left_out.error());
  for (const std::string& text : *left_out)
    dealer->notices_.push_back({text});
  if (auto looked = dealer->look_at_origin(options); !looked) return tl::unexpected(looked.error());
  return dealer;
}

tl::expected<void, FileError> EmbeddedDealer::look_at_origin(const TerminalOptions& options) {
  const std::filesystem::path file = options.home / "dealer-origin.txt";
  const std::string now = options.dealer_file.empty()
                              ? std::string{"the sample"}
                              : std::filesystem::weakly_canonical(options.dealer_file).string();
  const auto there = file_exists(file);
  if (!there) return tl::unexpected(there.error());
  if (options.fresh || !*there) return replace_file(file, now + "\n");
  const auto made_with = read_file(file);
  if (!made_with) return tl::unexpected(made_with.error());
  if (*made_with != now + "\n")
    notices_.push_back({fmt::format("The dealing server's book in {} was made with {}, and this run has {}",
                                    options.home.string(), split(*made_with, "\n")[0], now)});
  return {};
}

std::vector<LoginData> EmbeddedDealer::samples() const {
  std::vector<LoginData> out;
  for (const AccountConfig& account : server_.config().accounts)
    out.push_back({account.user, Secret{account.password}, account.number, {}});
  return out;
}

std::vector<BackendNotice> EmbeddedDealer::take_notices() {
  note_earlier_requests();
  watch_book();
  return std::exchange(notices_, {});
}

void EmbeddedDealer::note_earlier_requests() {
  const std::vector<Outcome> ended = server_.take_untold();
  const bool alone = ended.size() == 1;
  for (const Outcome& outcome : ended)
    notices_.push_back({.text = earlier_request_text(outcome), .account = outcome.account, .shown = alone});
  if (ended.size() > 1)
    notices_.push_back({.text = std::to_string(ended.size()) +
                                " requests from the earlier run have ended; the journal says how",
                        .journaled = false});
}

void EmbeddedDealer::watch_book() {
  const auto& failure = server_.book().failure();
  if (failure.has_value() == book_failed_) return;
  book_failed_ = failure.has_value();
  notices_.push_back(
      {book_failed_ ? "The dealing server stands still until it can store what happened: " + failure->text()
                    : "The dealing server can store what happens again and goes on"});
}

}  // namespace tutti
