// Both ends of the session layer, joined in memory, and what comes over a wire that no peer would send.

#include <gtest/gtest.h>

#include <fmt/format.h>

#include <string>
#include <utility>
#include <vector>

#include "fix/session/fix_dictionary.h"
#include "fix/session/fix_session.h"
#include "fix/session/frame_reader.h"

namespace tutti {
namespace {

namespace event = session_event;
using Words = std::vector<std::string>;

const FixDictionary& dictionary() {
  static const FixDictionary shared;
  return shared;
}

SessionSettings settings_of(const std::string& account) {
  SessionSettings settings;
  settings.sender = account;
  settings.target = "DEALER";
  settings.logon.set(553, "anna");
  settings.password = Secret{"pass=word"};
  return settings;
}

// The events of a session as words, and the messages that it received.
struct Ear {
  Words words;
  std::vector<FixMessage> messages;
  FixMessage logon;

  void hear(FixSession& session) {
    for (SessionEvent& each : session.take_events()) {
      if (auto* asked = std::get_if<event::LogonAsked>(&each)) {
        words.emplace_back("asked");
        logon = std::move(asked->logon);
      } else if (std::holds_alternative<event::LoggedOn>(each)) {
        words.emplace_back("on");
      } else if (auto* received = std::get_if<event::Received>(&each)) {
        words.push_back(received->message.type);
        messages.push_back(std::move(received->message));
      } else if (auto* rejected = std::get_if<event::Rejected>(&each)) {
        words.push_back(fmt::format("rejected {}", rejected->sequence));
      } else if (std::holds_alternative<event::Trouble>(each)) {
        words.emplace_back("trouble");
      } else if (auto* ended = std::get_if<event::Ended>(&each)) {
        const char* reasons[] = {"logged out: ", "left: ", "failed: "};
        words.push_back(reasons[static_cast<std::size_t>(ended->reason)] + ended->why);
      }
    }
  }
  Words take() { return std::exchange(words, {}); }
};

struct Pair {
  FixSession client = FixSession::initiator(dictionary(), settings_of("500100"));
  FixSession server = FixSession::acceptor(dictionary());
  Ear client_ear, server_ear;
  bool admits = true;

  // Carries what both have written, in pieces, until both are quiet.
  void run(std::size_t piece = 1 << 20) {
    for (bool moved = true; moved;) {
      moved = pass(client, server, piece);
      server_ear.hear(server);
      if (admits && !server_ear.words.empty() && server_ear.words.back() == "asked") server.admit({});
      server_ear.hear(server);
      moved = pass(server, client, piece) || moved;
      client_ear.hear(client);
    }
  }
  void log_on() {
    client.start();
    run();
    client_ear = {};
    server_ear = {};
  }
  static bool pass(FixSession& from, FixSession& to, std::size_t piece) {
    const std::string bytes = from.take_output();
    for (std::size_t at = 0; at < bytes.size(); at += piece)
      to.feed(std::string_view{bytes}.substr(at, piece));
    return !bytes.empty();
  }
};

FixMessage order(const std::string& id, double units = 10'000) {
  FixMessage message{.type = "D"};
  message.set(11, id);
  message.set(55, "EURUSD");
  message.set(54, "1");
  message.set(38, std::to_string(units));
  message.set(40, "1");
  message.set(60, "20260101-00:00:00");
  return message;
}

// A frame with a right length and checksum around this body.
std::string frame_of(std::string body) {
  for (char& character : body)
    if (character == '|') character = '\x01';
  std::string text = fmt::format(
      "8=FIX.4.4\x01"
      "9={}\x01{}",
      body.size(), body);
  unsigned sum = 0;
  for (const char byte : text)
    sum += static_cast<unsigned char>(byte);
  return text + fmt::format("10={:03}\x01", sum % 256);
}

TEST(FixSession, LogsOnTradesAndLogsOutWhateverThePieces) {
  for (const std::size_t piece : {std::size_t{1}, std::size_t{7}, std::size_t{1} << 20}) {
    Pair pair;
    EXPECT_EQ(pair.client.send(order("EARLY")), 0) << "nothing is handed to a session that is not logged on";
    pair.client.tick();
    EXPECT_EQ(pair.client.take_output(), "") << "the logon waits for the connection";
    pair.client.start();
    pair.run(piece);
    EXPECT_EQ(pair.server_ear.take(), (Words{"asked", "on"}));
    EXPECT_EQ(pair.client_ear.take(), Words{"on"});
    EXPECT_EQ(pair.server_ear.logon.sender, "500100");
    EXPECT_EQ(pair.server_ear.logon.text(553), "anna");
    EXPECT_EQ(pair.server_ear.logon.text(554), "pass=word");
    EXPECT_EQ(pair.server_ear.logon.text(141), "Y");

    EXPECT_EQ(pair.client.send(order("A1")), 2);
    EXPECT_EQ(pair.client.send(order("A2")), 3);
    pair.run(piece);
    EXPECT_EQ(pair.server_ear.take(), (Words{"D", "D"}));
    EXPECT_EQ(pair.server_ear.messages[1].text(11), "A2");
    EXPECT_EQ(pair.server_ear.messages[1].sequence, 3);

    pair.client.log_out("done");
    EXPECT_EQ(pair.client.send(order("LATE")), 0) << "nothing goes out behind the good-bye";
    pair.run(piece);
    EXPECT_EQ(pair.server_ear.take(), Words{"left: done"});
    EXPECT_EQ(pair.client_ear.take(), Words{"logged out: Logged out"});
    EXPECT_EQ(pair.server.send(order("B1")), 0);
  }
}

TEST(FixSession, CarriesGroupsAndRefusesOnesThatAreCountedWrongly) {
  Pair pair;
  pair.log_on();
  FixMessage prices{.type = "W"};
  prices.set(55, "EURUSD");
  FixFields bid, offer;
  bid.set(269, "0");
  bid.set(270, "1.1");
  offer.set(269, "1");
  offer.set(270, "1.2");
  prices.groups.push_back({268, {bid, offer}});
  EXPECT_GT(pair.server.send(prices), 0);
  pair.run();
  ASSERT_EQ(pair.client_ear.take(), Words{"W"});
  EXPECT_EQ(pair.client_ear.messages[0].entries(268), (std::vector<FixFields>{bid, offer}));

  pair.client.feed(frame_of("35=W|34=3|49=DEALER|52=" + pair.client_ear.messages[0].sending_time +
                            "|56=500100|55=X|268=2|269=0|270=1|"));
  pair.run();
  EXPECT_EQ(pair.client_ear.take(), Words{"trouble"});
  EXPECT_EQ(pair.server_ear.take(), Words{"rejected 3"});
}

TEST(FixSession, TellsARefusedLogonWithItsWord) {
  Pair pair;
  pair.admits = false;
  pair.client.start();
  pair.run();
  EXPECT_EQ(pair.server_ear.take(), Words{"asked"});
  EXPECT_TRUE(pair.client_ear.take().empty())
      << "nothing is answered before somebody has said who may come in";
  pair.server.refuse("BAD_PASSWORD");
  pair.run();
  const Words told = pair.client_ear.take();
  ASSERT_EQ(told.size(), 1U);
  EXPECT_EQ(told[0].substr(0, 6), "left: ");
  EXPECT_NE(told[0].find("BAD_PASSWORD"), std::string::npos);
}

// What no peer would send ends the connection, and is told once.
TEST(FixSession, EndsAtGarbage) {
  const std::string good = frame_of("35=0|34=2|49=DEALER|52=20260101-00:00:00|56=500100|");
  struct Case {
    const char* what;
    std::string bytes;
  };
  std::string wrong_sum = good, wrong_length = good, wrong_version = good;
  wrong_sum[wrong_sum.size() - 2] = wrong_sum[wrong_sum.size() - 2] == '9' ? '8' : '9';
  wrong_length.replace(wrong_length.find("9="), 4, "9=49");
  wrong_version[6] = '2';
  const Case cases[] = {
      {"noise", std::string(400, '\xff')},
      {"another protocol", "GET / HTTP/1.1\r\n\r\n"},
      {"another version", wrong_version},
      {"a wrong checksum", wrong_sum},
      {"a wrong length", wrong_length},
      {"a length that is no number",
       "8=FIX.4.4\x01"
       "9=-5\x01"
       "35=0\x01"},
      {"no length",
       "8=FIX.4.4\x01"
       "9=\x01"
       "35=0\x01"},
      {"a length beyond all bounds",
       "8=FIX.4.4\x01"
       "9=999999999\x01"},
      {"a length of too many digits",
       "8=FIX.4.4\x01"
       "9=0000000000000005\x01"},
      {"a frame torn and begun anew", good.substr(0, good.size() - 9) + good},
      {"no sender", frame_of("35=0|34=2|52=20260101-00:00:00|56=500100|")},
      {"a number that came before", frame_of("35=0|34=1|49=DEALER|52=20260101-00:00:00|56=500100|")},
      {"an old time", good},
      {"a field without a value's end", frame_of("35=0|34")},
  };
  for (const Case& each : cases) {
    Pair pair;
    pair.log_on();
    pair.client.feed(each.bytes);
    for (int rest = 0; rest < 3; ++rest)
      pair.client.feed(good);
    pair.run();
    const Words told = pair.client_ear.take();
    ASSERT_FALSE(told.empty()) << each.what;
    EXPECT_TRUE(told.back().starts_with("failed: ")) << each.what << ": " << told.back();
    EXPECT_EQ(std::count_if(told.begin(), told.end(),
                            [](const auto& word) { return word.find(": ") != word.npos; }),
              1)
        << each.what;
    EXPECT_FALSE(pair.client.logged_on()) << each.what;
  }
}

TEST(FixSession, EndsWhenAMessageIsMissingInBetween) {
  Pair pair;
  pair.log_on();
  pair.server.send(order("A1"));
  pair.server.take_output();  // lost
  pair.server.send(order("A2"));
  pair.run();
  const Words told = pair.client_ear.take();
  ASSERT_EQ(told.size(), 1U) << "A2 is not told: what was before it is not known";
  EXPECT_EQ(told[0], "failed: Messages of the other end have not arrived: the numbers have a gap");
}

TEST(FixSession, TurnsStrangersAway) {
  const char* bodies[] = {
      "35=D|34=1|49=A|52=20260101-00:00:00|56=B|11=1|",              // an order before any logon
      "35=A|34=1|49=|52=20260101-00:00:00|56=B|98=0|108=30|",        // of nobody
      "35=A|34=1|49=A|52=20260101-00:00:00|56=B|98=0|108=0|141=Y|",  // no heartbeats
      "35=A|34=1|49=A|52=20260101-00:00:00|56=B|98=0|141=Y|",
  };
  for (const char* body : bodies) {
    FixSession server = FixSession::acceptor(dictionary());
    Ear ear;
    server.feed(frame_of(body));
    ear.hear(server);
    ASSERT_EQ(ear.words.size(), 1U) << body;
    EXPECT_TRUE(ear.words[0].starts_with("failed: ")) << body;
    EXPECT_TRUE(server.take_output().empty()) << "a stranger learns nothing";
  }
}

TEST(FixSession, KeepsTwoConnectionsOfOneAccountApart) {
  Pair first, second;
  first.log_on();
  second.log_on();
  second.client.send(order("B1"));
  second.run();
  first.client.send(order("A1"));
  first.run();
  EXPECT_EQ(first.server_ear.messages.at(0).text(11), "A1");
  EXPECT_EQ(second.server_ear.messages.at(0).text(11), "B1");
}

TEST(FrameReader, TakesPaddedLengthsAndMergedFrames) {
  std::string padded = frame_of("35=0|34=2|");
  padded.replace(padded.find("9=") + 2, 2, "000010");
  unsigned sum = 0;
  for (std::size_t i = 0; i < padded.size() - 7; ++i)
    sum += static_cast<unsigned char>(padded[i]);
  padded.replace(padded.size() - 4, 3, fmt::format("{:03}", sum % 256));
  FrameReader reader;
  reader.add(padded + padded + padded.substr(0, 10));
  for (int i = 0; i < 2; ++i) {
    const auto frame = reader.next();
    ASSERT_TRUE(frame) << frame.error();
    EXPECT_EQ(*frame, padded);
  }
  EXPECT_EQ(reader.next().value(), std::nullopt);
  reader.add(padded.substr(10));
  EXPECT_EQ(reader.next().value(), padded);
}

}  // namespace
}  // namespace tutti
