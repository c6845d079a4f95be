#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tsl/robin_map.h>

#include "fix/client/line_inbox.h"
#include "fix/client/line_login.h"
#include "fix/client/login_gathering.h"
#include "fix/client/translation.h"
#include "fix/dialect/news_decoder.h"
#include "fix/dialect/wire_request.h"
#include "fix/profile/broker_profile.h"
#include "fix/session/fix_session.h"
#include "fix/wire/network.h"

namespace tutti {

// One login of one account: its connection, its session and the words they speak. Lives on the wire's thread
// and tells by the inbox. Never holds a request back.
class FixLine final : public ByteReceiver {
 public:
  // The references outlive the line. `changed` is called when its login has come to an end, either way, and
  // when it is over; it must not destroy the line.
  FixLine(std::uint64_t key, const BrokerProfile& profile, const FixDictionary& dictionary, LineInbox& inbox,
          LineLogin login, std::function<void()> changed);

  // A line that has not begun waits for its turn, for as long as that takes.
  void begin(Network& network);
  void send(const WireAsk& ask);
  void log_out();
  // About once a second.
  void tick();
  // Nothing comes from it any more, and it may go.
  bool over() const { return over_; }
  bool leaving() const { return leaving_ && !over_; }
  // It is logged in, or will never be.
  bool settled() const { return ready_ || told_end_; }
  std::int32_t account() const { return login_.account; }

  void on_open() override;
  void on_bytes(std::string_view bytes) override;
  void on_closed(std::string_view why) override;

 private:
  SessionSettings settings() const;
  double size_of(std::string_view symbol) const;
  // Writes what the session has written, and hears what it has to tell.
  void pump();
  void hear(const session_event::LogonAsked&) {}
  void hear(const session_event::LoggedOn&);
  void hear(const session_event::Received& received);
  void hear(const session_event::Rejected& rejected);
  void hear(const session_event::Trouble& trouble);
  void hear(const session_event::Silence& silence);
  void hear(const session_event::Ended& ended);
  void take(WireNews news);
  void take_fault(const FixMessage& message, const std::string& fault);
  void ask_on();
  void tell(LineNews news) { inbox_.put({key_, std::move(news)}); }
  void remark(std::string text);
  // The connection is given up; told once.
  void end(std::string why);
  void tell_end(LineNews last);

  const std::uint64_t key_;
  const BrokerProfile& profile_;
  LineInbox& inbox_;
  const std::function<void()> changed_;
  const LineLogin login_;
  Translation translation_;
  FixSession session_;
  NewsDecoder decoder_;
  std::unique_ptr<ByteStream> stream_;
  std::unique_ptr<LoginGathering> gathering_;
  tsl::robin_map<std::string, double> sizes_;
  std::deque<std::pair<int, RequestId>> sent_;  // the newest requests by the number of their message
  int stamps_ = 0;
  int remarks_ = 0;
  int waited_ = 0;  // seconds in this stage
  bool logged_on_ = false;
  bool ready_ = false;
  bool leaving_ = false;
  bool told_end_ = false;
  bool over_ = false;
};

}  // namespace tutti
