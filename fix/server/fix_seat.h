#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "fix/dialect/ask_codec.h"
#include "fix/dialect/wire_request.h"
#include "fix/server/account_memory.h"
#include "fix/server/seat_news.h"
#include "fix/server/seat_wire.h"
#include "fix/server/server_settings.h"
#include "fix/session/fix_session.h"
#include "fix/wire/byte_receiver.h"
#include "fix/wire/byte_stream.h"
#include "sessions/contract/ClientAPI.h"

namespace tutti {

// One connection at the server: what comes over it becomes calls of a trading client, whose events SeatNews
// makes messages. It sees nothing but the contract.
class FixSeat final : public ByteReceiver, private SeatWire {
 public:
  // What a seat has from its server. All are kept by reference.
  struct Host {
    const ServerSettings& settings;
    const FixDictionary& dictionary;
    const std::function<std::unique_ptr<ClientAPI>()>& make_client;
    const std::function<AccountMemory&(std::int32_t account)>& memory;
    const std::function<void(std::string)>& remark;
    const std::function<void()>& wake;  // something came in
  };

  FixSeat(const Host& host, std::unique_ptr<ByteStream> stream, std::string_view address);
  ~FixSeat() override;

  // About once a second.
  void tick();
  // Nothing comes from it any more, and it may go.
  bool over() const { return over_; }
  bool on() const { return news_ && news_->on(); }
  // Logs the account out, in these words.
  void end(std::string_view why);

  void on_open() override {}
  void on_bytes(std::string_view bytes) override;
  void on_closed(std::string_view why) override;

 private:
  void pump();
  void hear(const session_event::LogonAsked& asked);
  void hear(const session_event::LoggedOn&);
  void hear(const session_event::Received& received);
  void hear(const session_event::Rejected& rejected);
  void hear(const session_event::Trouble& trouble);
  void hear(const session_event::Silence&) {}
  void hear(const session_event::Ended& ended);
  void remark(std::string_view text) const;
  void leave();

  void carry_out(const ask::Symbols&, const FixMessage& message);
  void carry_out(const ask::Prices& prices, const FixMessage& message);
  void carry_out(const ask::Positions&, const FixMessage& message);
  void carry_out(const ask::Orders&, const FixMessage& message);
  void carry_out(const ask::Summary&, const FixMessage& message);
  void carry_out(const ask::Request& request, const FixMessage& message);
  void carry_out(const ask::Fills& fills, const FixMessage& message);
  void carry_out(const WireRequest& asked, const FixMessage& message);
  RequestCode perform(WireRequest& request);
  double lots_of(const UnitsAsked& asked) const;
  const OpenPosition* position(std::int64_t ticket) const;
  const PendingOrder* order(std::int64_t number) const;
  news::SymbolEntry entry_of(const Symbol& symbol) const;

  void send(const FixMessage& message) override;
  std::size_t unsent() const override { return stream_ ? stream_->unsent() : 0; }
  void drop() override;
  void on_loaded() override;
  void on_refused(std::string_view why) override;
  void on_ended() override;

  const Host host_;
  const std::string address_;
  std::unique_ptr<ByteStream> stream_;
  FixSession session_;
  std::unique_ptr<ClientAPI> client_;
  AccountMemory* memory_ = nullptr;
  std::unique_ptr<SeatNews> news_;  // goes before the client whose sink it is
  std::int32_t account_ = -1;
  int waited_ = 0;  // seconds
  bool own_fields_ = false;
  bool over_ = false;
};

}  // namespace tutti
