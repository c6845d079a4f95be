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
  on_ = false;
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
  if (!on_ && ++waited_ > host_.settings.longest_logon) {
    remark("Did not log on in time");
    if (stream_) stream_->close();
    return;
  }
  session_.tick();
  pump();
  if (!on_ || !stream_ || stream_->unsent() > host_.settings.slow_from) return;
  for (const std::string& name : std::exchange(late_prices_, {}))
    if (const Symbol* symbol = client_->FindSymbol(name)) tell_price(*symbol);
  if (std::exchange(late_summary_, false)) tell_summary();
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
  client_->set_sink(this);
  client_->SetLoginData(
      {std::string{logon.text(tag::username)}, Secret{logon.text(tag::password)}, account_, {}});
  client_->Login();
}

void FixSeat::AllDataAreLoaded() {
  if (on_) return;
  FixFields answer;
  if (own_fields_) answer.set(tag::dialect, "1");
  session_.admit(answer);
  pump();
}

void FixSeat::InvalidUsernamePassword() {
  session_.refuse("BAD_PASSWORD");
  pump();
}

void FixSeat::ConnectionState(bool connected) {
  if (connected || on_) return;
  session_.refuse("UNAVAILABLE");
  pump();
}

void FixSeat::SessionDisconnected() {
  remark("The session was ended, or taken over by another");
  session_.log_out("SESSION_ENDED");
  pump();
  on_ = false;
  if (stream_) stream_->close();
}

void FixSeat::hear(const session_event::LoggedOn&) {
  on_ = true;
  memory_ = &host_.memory(account_);
  encoder_ =
      std::make_unique<NewsEncoder>([this](std::string_view symbol) { return size_of(symbol); }, own_fields_);
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

double FixSeat::size_of(std::string_view symbol) const {
  const Symbol* record = client_ ? client_->SymbolRecord(symbol) : nullptr;
  return record != nullptr ? record->contract_size : 0.0;
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
