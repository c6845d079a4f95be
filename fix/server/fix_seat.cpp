#include "fix/server/fix_seat.h"

#include <fmt/format.h>

#include <utility>

#include "core/numbers.h"
#include "fix/dialect/ask_codec.h"
#include "fix/dialect/tags.h"

namespace tutti {

FixSeat::FixSeat(const Host& host, std::unique_ptr<ByteStream> stream, std::string_view address)
    : host_(host),
      address_(address),
      stream_(std::move(stream)),
      session_(FixSession::acceptor(host.dictionary)) {}

FixSeat::~FixSeat() {
  if (client_) client_->set_sink(nullptr);
}

void FixSeat::remark(std::string_view text) const {
  const std::string who = account_ >= 0 ? fmt::format("account {}", account_) : std::string{"nobody as yet"};
  host_.remark(fmt::format("{} ({}): {}", address_, who, text));
}

void FixSeat::on_bytes(std::string_view bytes) {
  if (over_) return;
  session_.feed(bytes);
  pump();
  if (host_.wake) host_.wake();
}

void FixSeat::on_closed(std::string_view) {
  leave();
  over_ = true;
}

// The account is logged out at once; its requests go on.
void FixSeat::leave() {
  if (news_) news_->end();
  if (!client_) return;
  client_->set_sink(nullptr);
  client_->Logout();
}

void FixSeat::end(std::string_view why) {
  session_.log_out(why);
  pump();
  // Nobody waits for the other end's good-bye.
  leave();
  if (stream_) stream_->close();
}

void FixSeat::tick() {
  if (over_) return;
  if (!on() && ++waited_ > host_.settings.longest_logon) {
    remark("Did not log on in time");
    if (stream_) stream_->close();
    return;
  }
  session_.tick();
  pump();
  if (news_) news_->catch_up();
}

void FixSeat::pump() {
  for (bool again = true; again && !over_;) {
    const std::string bytes = session_.take_output();
    if (!bytes.empty() && stream_) stream_->write(bytes);
    const auto events = session_.take_events();
    again = !events.empty();
    for (const SessionEvent& event : events)
      std::visit([&](const auto& each) { hear(each); }, event);
  }
}

void FixSeat::hear(const session_event::LogonAsked& asked) {
  const FixMessage& logon = asked.logon;
  const auto account = parse_int32(logon.sender);
  if (logon.target != host_.settings.name) return session_.refuse("BAD_TARGET");
  if (!account || *account < 0) return session_.refuse("BAD_ACCOUNT");
  account_ = *account;
  own_fields_ = logon.text(tag::dialect) == "1";
  client_ = host_.make_client();
  memory_ = &host_.memory(account_);
  SeatWire& wire = *this;
  news_ = std::make_unique<SeatNews>(host_.settings, *client_, *memory_, account_, own_fields_, wire);
  client_->set_sink(news_.get());
  client_->SetLoginData(
      {std::string{logon.text(tag::username)}, Secret{logon.text(tag::password)}, account_, {}});
  client_->Login();
}

void FixSeat::on_loaded() {
  FixFields answer;
  if (own_fields_) answer.set(tag::dialect, "1");
  session_.admit(answer);
  pump();
}

void FixSeat::on_refused(std::string_view why) {
  session_.refuse(why);
  pump();
}

void FixSeat::on_ended() {
  remark("The session was ended, or taken over by another");
  session_.log_out("SESSION_ENDED");
  pump();
  news_->end();
  if (stream_) stream_->close();
}

void FixSeat::send(const FixMessage& message) {
  session_.send(message);
  pump();
}

void FixSeat::drop() {
  remark("Does not read what it is sent, and is dropped");
  leave();
  if (stream_) stream_->close();
}

void FixSeat::hear(const session_event::LoggedOn&) {
  news_->begin();
}

void FixSeat::hear(const session_event::Rejected& rejected) {
  remark("Can't read a message of ours: " + rejected.why);
}

void FixSeat::hear(const session_event::Trouble& trouble) {
  remark(trouble.why);
}

void FixSeat::hear(const session_event::Ended& ended) {
  if (ended.reason == session_event::Ended::Reason::failed) remark(ended.why);
  leave();
  if (stream_) stream_->close();
}

const OpenPosition* FixSeat::position(std::int64_t ticket) const {
  for (int i = 1; i <= client_->OpenPositionCount(); ++i)
    if (client_->OpenPositionItem(i)->ticket == ticket) return client_->OpenPositionItem(i);
  return nullptr;
}

const PendingOrder* FixSeat::order(std::int64_t number) const {
  for (int i = 1; i <= client_->PendingOrderCount(); ++i)
    if (client_->PendingOrderItem(i)->order == number) return client_->PendingOrderItem(i);
  return nullptr;
}

}  // namespace tutti
