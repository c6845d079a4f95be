#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <tl/expected.hpp>

#include "apps/terminal.h"
#include "dealer/link/dealing_server.h"
#include "sessions/contract/backend.h"

namespace tutti {

// The dealing server within the program, with its book in the terminal's home folder.
class EmbeddedDealer final : public Backend {
 public:
  // Reads the configuration and the book. Fails, naming file and line, when one of them can't be read.
  static tl::expected<std::unique_ptr<EmbeddedDealer>, FileError> open(const TerminalOptions& options,
                                                                       const Clock& clock);

  const DealingServer& server() const { return server_; }

  std::unique_ptr<ClientAPI> make_client(const LoginData&) override { return server_.make_client(); }
  std::vector<EventSource*> events() override { return {&server_}; }
  Endpoint endpoint() const override { return server_.config().endpoint; }
  bool simulated() const override { return true; }
  std::vector<LoginData> samples() const override;
  void advance() override { server_.advance(); }
  std::optional<TimePoint> next_due() const override { return server_.next_due(); }
  // What is asked for is in the server at once.
  void flush() override {}
  std::vector<BackendNotice> take_notices() override;
  tl::expected<void, FileError> close() override { return server_.save_book(); }
  std::optional<int> credits(std::int32_t) const override { return std::nullopt; }
  // It keeps what it was asked for itself.
  void kept(std::uint64_t) override {}

 private:
  EmbeddedDealer(DealerConfig config, const Clock& clock) : server_(std::move(config), clock) {}
  // Notes what the book of this folder was made with; the operator is told when that was another server.
  tl::expected<void, FileError> look_at_origin(const TerminalOptions& options);
  // What came of requests whose outcome was unknown when the earlier run ended.
  void note_earlier_requests();
  // Tells once when the book can't be stored, and once when it can again.
  void watch_book();

  DealingServer server_;
  std::vector<BackendNotice> notices_;
  bool book_failed_ = false;  // as the operator was told last
};

}  // namespace tutti
