#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fix/client/fix_hub.h"
#include "fix/dialect/news_encoder.h"
#include "fix/session/fix_dictionary.h"
#include "fix/wire/memory_network.h"
#include "tests/dealer_rig.h"

namespace tutti {

// Reading it takes longer than most tests.
inline const FixDictionary& shared_dictionary() {
  static const FixDictionary shared;
  return shared;
}

// Answers every question of a login, with one symbol and one position; of what else comes it keeps the last.
class Liar final : public Listener, public ByteReceiver {
 public:
  ByteReceiver* on_connection(std::unique_ptr<ByteStream> stream, std::string_view) override {
    stream_ = std::move(stream);
    session_ = FixSession::acceptor(dictionary_);
    return this;
  }
  void on_open() override {}
  void on_bytes(std::string_view bytes) override {
    session_.feed(bytes);
    pump();
  }
  void on_closed(std::string_view) override {}

  void tell(const WireNews& news, std::string_view stamp = {}) {
    if (const auto message = encoder_.encode(news, stamp)) say(*message);
  }
  void say(const FixMessage& message) {
    sent = session_.send(message);
    pump();
  }
  void write(std::string_view bytes) { stream_->write(bytes); }

  FixMessage last;
  int sent = 0;     // number of the message that was sent last
  FixFields spoil;  // fields of the position in the list, in place of the true ones

 private:
  void pump() {
    stream_->write(session_.take_output());
    for (const SessionEvent& event : session_.take_events()) {
      if (std::holds_alternative<session_event::LogonAsked>(event)) session_.admit({});
      if (const auto* received = std::get_if<session_event::Received>(&event)) answer(received->message);
      pump();
    }
  }
  void answer(const FixMessage& message) {
    last = message;
    if (message.type == "x") {
      Symbol symbol{.name = "EURUSD", .digits = 5, .contract_size = 100'000, .base = "EUR", .profit = "USD"};
      tell(news::Symbols{{{symbol, 20, 20, true}}, true}, "1");
    } else if (message.type == "AN") {
      tell(news::PositionList{1}, "3");
      OpenPosition position;
      position.ticket = 7;
      position.side = buy;
      position.symbol = "EURUSD";
      position.amount = 0.5;
      position.open_price = 1.1;
      FixMessage told = *encoder_.encode(news::Position{position, true, false}, "3");
      for (const FixField& field : spoil)
        told.set(field.tag, field.value);
      say(told);
    } else if (message.type == "AF") {
      news::Order none;
      none.listed = none.last = true;
      tell(none, "4");
    } else if (message.type == "BB") {
      news::Summary summary;
      summary.info.currency = "USD";
      summary.lots = {0.01, 100};
      tell(summary, "5");
    }
  }

  const FixDictionary& dictionary_ = shared_dictionary();
  FixSession session_ = FixSession::acceptor(dictionary_);
  NewsEncoder encoder_{[](std::string_view) { return 100'000.0; }, true};
  std::unique_ptr<ByteStream> stream_;
};

struct LiarRig {
  LiarRig() {
    network.set_listener(&liar);
    client = hub.make_client();
    client->set_sink(&seen);
    client->SetLoginData({"anna", "secret", 500'100, {}});
  }
  Words run() {
    for (bool moved = true; moved;) {
      moved = network.run();
      hub.advance();
      while (hub.deliver_next())
        moved = true;
    }
    return std::exchange(seen.events, {});
  }
  // What went out for the order last sent, and the texts for the journal.
  RequestId send() {
    const RequestId id = next_id();
    client->NewMarketOrder(buy, client->FindSymbol("EURUSD")->id, 0.5, "", "", id);
    run();
    return id;
  }
  Words notices() {
    Words texts;
    for (const BackendNotice& notice : hub.take_notices())
      texts.push_back(notice.text);
    return texts;
  }

  ManualClock clock;
  MemoryNetwork network;
  Liar liar;
  BrokerProfile profile;
  const FixDictionary& dictionary = shared_dictionary();
  FixLines lines{network, profile, dictionary};
  FixHub hub{lines, clock};
  DealerRecorder seen;
  std::unique_ptr<ClientAPI> client;
};

}  // namespace tutti
