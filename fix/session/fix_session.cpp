#include "fix/session/fix_session.h"

#include <fmt/format.h>

#include <optional>
#include <utility>

#include "core/texts.h"
#include "fix/session/dictionary_content.h"
#include "fix/session/frame_reader.h"
#include "fix/session/message_conversion.h"

namespace tutti {
namespace {

namespace event = session_event;

// Keeps the numbers of one connection, and no messages: nothing is ever sent again. Its day never ends, since
// it is always as young as the moment that is asked about.
class NumberStore final : public FIX::MessageStore {
 public:
  explicit NumberStore(const FIX::UtcTimeStamp& moment) : moment_(moment) {}

  bool set(int, const std::string&) override { return true; }
  void get(int, int, std::vector<std::string>& messages) const override { messages.clear(); }
  int getNextSenderMsgSeqNum() const override { return next_sent_; }
  int getNextTargetMsgSeqNum() const override { return next_received_; }
  void setNextSenderMsgSeqNum(int number) override { next_sent_ = number; }
  void setNextTargetMsgSeqNum(int number) override { next_received_ = number; }
  void incrNextSenderMsgSeqNum() override { ++next_sent_; }
  void incrNextTargetMsgSeqNum() override { ++next_received_; }
  FIX::UtcTimeStamp getCreationTime() const override { return moment_; }
  void reset() override { next_sent_ = next_received_ = 1; }
  void refresh() override {}

 private:
  const FIX::UtcTimeStamp& moment_;
  int next_sent_ = 1;
  int next_received_ = 1;
};

class NumberStores final : public FIX::MessageStoreFactory {
 public:
  explicit NumberStores(const FIX::UtcTimeStamp& moment) : moment_(moment) {}
  FIX::MessageStore* create(const FIX::SessionID&) override { return new NumberStore{moment_}; }
  void destroy(FIX::MessageStore* store) override { delete store; }

 private:
  const FIX::UtcTimeStamp& moment_;
};

// Keeps what the library said last, which is why it ends a connection.
class LastWords final : public FIX::LogFactory, public FIX::Log {
 public:
  const std::string& text() const { return text_; }

 private:
  FIX::Log* create() override { return this; }
  FIX::Log* create(const FIX::SessionID&) override { return this; }
  void destroy(FIX::Log*) override {}
  void clear() override {}
  void backup() override {}
  void onIncoming(const std::string&) override {}
  void onOutgoing(const std::string&) override {}
  void onEvent(const std::string& text) override {
    if (text != "Disconnecting") text_ = text;
  }

  std::string text_;
};

std::string text_of(const FIX::FieldMap& map, int tag) {
  return map.isSetField(tag) ? map.getField(tag) : std::string{};
}

constexpr std::size_t longest_words = 200;  // of the other end, in a text of ours

std::string shortened(std::string text) {
  if (text.size() > longest_words) text = text.substr(0, longest_words) + "...";
  return text;
}

}  // namespace

// The library calls back for everything; what it says is kept until the owner asks.
class FixSession::Impl final : public FIX::Application, public FIX::Responder {
 public:
  explicit Impl(const FixDictionary& dictionary) : dictionary_(dictionary) {}
  ~Impl() override { session_.reset(); }

  void begin(SessionSettings settings) {
    settings_ = std::move(settings);
    make(settings_.sender, settings_.target, settings_.heartbeat);
    session_->setResetOnLogon(true);
    session_->setTimestampPrecision(settings_.time_digits);
  }
  void start() {
    started_ = true;
    guarded([&] { session_->next(now()); });
  }
  void feed(std::string_view bytes) {
    reader_.add(bytes);
    read();
  }
  void tick() {
    // Before its start a logon would go nowhere, and be taken for sent.
    if (started_ && !ended_) guarded([&] { session_->next(now()); });
  }
  void admit(const FixFields& answer) {
    settings_.logon = answer;
    go_on();
  }
  void refuse(std::string_view why) {
    refusal_ = why;
    go_on();
  }
  int send(const FixMessage& message);
  bool logged_on() const { return session_ && !ended_ && session_->isLoggedOn() && !session_->sentLogout(); }
  void log_out(std::string_view why);

  std::string output;
  std::vector<SessionEvent> events;

 private:
  // The library's clock reads the machine's; the store must not be older than what it is asked at.
  const FIX::UtcTimeStamp& now() {
    moment_ = FIX::UtcTimeStamp();
    return moment_;
  }
  void make(const std::string& sender, const std::string& target, int heartbeat);
  void read();
  void take_frame(const std::string& frame);
  void take_first(const std::string& frame);
  void go_on();
  void note_sign_of_life();
  void end(event::Ended::Reason reason, std::string why);
  // What the library throws is about what came, never about us.
  template <class Act>
  void guarded(Act act) {
    try {
      act();
    } catch (const std::exception& error) {
      end(event::Ended::Reason::failed, fmt::format("A message came that can't be read: {}", error.what()));
    }
    if (disconnected_ && !ended_) end_by_library();
  }
  void end_by_library();

  void onCreate(const FIX::SessionID&) override {}
  void onLogon(const FIX::SessionID&) override { events.emplace_back(event::LoggedOn{answer_}); }
  void onLogout(const FIX::SessionID&) override {}
  void toAdmin(FIX::Message& message, const FIX::SessionID&) override;
  void toApp(FIX::Message& message, const FIX::SessionID&) override { add_header(message); }
  void fromAdmin(const FIX::Message& message, const FIX::SessionID&) override;
  void fromApp(const FIX::Message& message, const FIX::SessionID&) override;
  void add_header(FIX::Message& message) const {
    for (const FixField& field : settings_.header)
      message.getHeader().setField(field.tag, field.value);
  }

  bool send(const std::string& bytes) override {
    output += bytes;
    return true;
  }
  void disconnect() override { disconnected_ = true; }

  const FixDictionary& dictionary_;
  SessionSettings settings_;
  FIX::UtcTimeStamp moment_;
  NumberStores stores_{moment_};
  LastWords last_words_;
  FrameReader reader_;
  std::optional<std::string> first_frame_;  // of an acceptor, while nobody has said who may come in
  std::unique_ptr<FIX::Session> session_;
  FixMessage answer_;  // the logon that was received
  std::string refusal_;
  std::string logout_words_;  // of the other end
  std::string broken_rule_;
  bool started_ = false;
  bool left_ = false;     // the other end logged out
  bool leaving_ = false;  // we did
  bool gap_ = false;
  bool silent_ = false;
  bool disconnected_ = false;
  bool ended_ = false;
};

void FixSession::Impl::make(const std::string& sender, const std::string& target, int heartbeat) {
  now();
  // Two connections may have the same names; what the library keeps them by must differ.
  const std::string own = fmt::format("{}", static_cast<const void*>(this));
  const FIX::TimeRange always(FIX::UtcTimeOnly(0, 0, 0), FIX::UtcTimeOnly(0, 0, 0));
  session_ = std::make_unique<FIX::Session>(*this, stores_, FIX::SessionID("FIX.4.4", sender, target, own),
                                            dictionary_.content().provider, always, heartbeat, &last_words_);
  session_->setPersistMessages(false);
  session_->setResponder(this);
}

void FixSession::Impl::read() {
  while (!ended_ && !first_frame_) {
    auto frame = reader_.next();
    if (!frame) return end(event::Ended::Reason::failed, frame.error());
    if (!*frame) return;
    if (session_)
      take_frame(**frame);
    else
      take_first(**frame);
  }
}

void FixSession::Impl::take_frame(const std::string& frame) {
  guarded([&] { session_->next(frame, now()); });
  if (gap_ && !ended_)
    end(event::Ended::Reason::failed, "Messages of the other end have not arrived: the numbers have a gap");
}

// Who may come in is asked before anything is answered, so that a stranger learns nothing.
void FixSession::Impl::take_first(const std::string& frame) {
  guarded([&] {
    const FIX::Message message(frame, *dictionary_.content().messages, true);
    FixMessage logon;
    const auto wrong = read_message(message, logon);
    if (logon.type != "A" || wrong || logon.sender.empty() || logon.target.empty())
      return end(event::Ended::Reason::failed, "The connection does not begin with a logon");
    const std::string_view heartbeat = logon.text(FIX::FIELD::HeartBtInt);
    if (heartbeat.empty() || heartbeat.size() > 4 || heartbeat == "0")
      return end(event::Ended::Reason::failed, "The logon asks for no heartbeats");
    first_frame_ = frame;
    answer_ = logon;
    events.emplace_back(event::LogonAsked{std::move(logon)});
  });
}

void FixSession::Impl::go_on() {
  if (ended_ || !first_frame_) return;
  const std::string frame = *std::exchange(first_frame_, std::nullopt);
  make(answer_.target, answer_.sender, 0);
  started_ = true;
  take_frame(frame);
  if (!ended_ && !session_->isLoggedOn())
    return end(event::Ended::Reason::failed, "The logon breaks a rule: " + last_words_.text());
  read();
}

int FixSession::Impl::send(const FixMessage& message) {
  if (!logged_on()) return 0;
  const int number = session_->getExpectedSenderNum();
  FIX::Message made = library_message(message);
  if (message.possible_resend) made.getHeader().setField(FIX::FIELD::PossResend, "Y");
  bool sent = false;
  guarded([&] { sent = session_->send(made); });
  return sent ? number : 0;
}

void FixSession::Impl::log_out(std::string_view why) {
  if (ended_) return;
  leaving_ = true;
  if (!logged_on()) return end(event::Ended::Reason::logged_out, "Logged out");
  guarded([&] {
    session_->logout(std::string{why});
    session_->next(now());
  });
}

void FixSession::Impl::toAdmin(FIX::Message& message, const FIX::SessionID&) {
  add_header(message);
  const std::string type = text_of(message.getHeader(), FIX::FIELD::MsgType);
  if (type == "A") {
    for (const FixField& field : settings_.logon)
      message.setField(field.tag, field.value);
    if (!settings_.password.empty())
      message.setField(FIX::FIELD::Password, std::string{settings_.password.reveal()});
  } else if (type == "1") {
    silent_ = true;
    events.emplace_back(event::Silence{true});
  } else if (type == "2") {
    // An initiator begins with number 1 on both sides: what is missing was lost, and nobody has kept it.
    gap_ = session_ && session_->isInitiator();
  } else if (type == "5") {
    const std::string why = text_of(message, FIX::FIELD::Text);
    // The library says good-bye by itself when a rule was broken that nothing heals.
    if (!left_ && !leaving_ && refusal_.empty()) broken_rule_ = why.empty() ? last_words_.text() : why;
  } else if (type == "3") {
    events.emplace_back(event::Trouble{fmt::format("A message of the other end was refused: {}, field {}",
                                                   shortened(text_of(message, FIX::FIELD::Text)),
                                                   text_of(message, FIX::FIELD::RefTagID))});
  }
}

void FixSession::Impl::note_sign_of_life() {
  if (std::exchange(silent_, false)) events.emplace_back(event::Silence{false});
}

void FixSession::Impl::fromAdmin(const FIX::Message& message, const FIX::SessionID&) {
  note_sign_of_life();
  const std::string type = text_of(message.getHeader(), FIX::FIELD::MsgType);
  if (type == "A") {
    if (!refusal_.empty()) throw FIX::RejectLogon(refusal_);
    read_message(message, answer_);
  } else if (type == "3") {
    FIX::RefSeqNum number;
    event::Rejected rejected;
    if (message.getFieldIfSet(number)) rejected.sequence = number;
    rejected.why = shortened(text_of(message, FIX::FIELD::Text));
    events.emplace_back(std::move(rejected));
  } else if (type == "5") {
    left_ = true;
    logout_words_ = shortened(text_of(message, FIX::FIELD::Text));
  }
}

void FixSession::Impl::fromApp(const FIX::Message& message, const FIX::SessionID&) {
  note_sign_of_life();
  FixMessage read;
  if (const auto wrong = read_message(message, read)) throw FIX::IncorrectTagValue(*wrong);
  events.emplace_back(event::Received{std::move(read)});
}

void FixSession::Impl::end_by_library() {
  if (!broken_rule_.empty())
    return end(event::Ended::Reason::failed, "The other end broke a rule: " + broken_rule_);
  if (leaving_) return end(event::Ended::Reason::logged_out, "Logged out");
  if (left_) return end(event::Ended::Reason::left, logout_words_);
  if (!refusal_.empty()) return end(event::Ended::Reason::failed, "The logon was refused: " + refusal_);
  end(event::Ended::Reason::failed, last_words_.text());
}

void FixSession::Impl::end(event::Ended::Reason reason, std::string why) {
  if (std::exchange(ended_, true)) return;
  first_frame_.reset();
  events.emplace_back(event::Ended{reason, std::move(why)});
}

FixSession::FixSession(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
FixSession::~FixSession() = default;
FixSession::FixSession(FixSession&&) noexcept = default;
FixSession& FixSession::operator=(FixSession&&) noexcept = default;

FixSession FixSession::initiator(const FixDictionary& dictionary, SessionSettings settings) {
  auto impl = std::make_unique<Impl>(dictionary);
  impl->begin(std::move(settings));
  return FixSession{std::move(impl)};
}

FixSession FixSession::acceptor(const FixDictionary& dictionary) {
  return FixSession{std::make_unique<Impl>(dictionary)};
}

void FixSession::start() {
  impl_->start();
}

void FixSession::feed(std::string_view bytes) {
  impl_->feed(bytes);
}

void FixSession::tick() {
  impl_->tick();
}

void FixSession::admit(const FixFields& answer) {
  impl_->admit(answer);
}

void FixSession::refuse(std::string_view why) {
  impl_->refuse(why);
}

int FixSession::send(const FixMessage& message) {
  return impl_->send(message);
}

bool FixSession::logged_on() const {
  return impl_->logged_on();
}

void FixSession::log_out(std::string_view why) {
  impl_->log_out(why);
}

std::string FixSession::take_output() {
  return std::exchange(impl_->output, {});
}

std::vector<SessionEvent> FixSession::take_events() {
  return std::exchange(impl_->events, {});
}

}  // namespace tutti
