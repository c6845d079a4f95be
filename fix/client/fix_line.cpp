#include "fix/client/fix_line.h"

#include <fmt/format.h>

#include <algorithm>

#include "fix/dialect/ask_codec.h"
#include "fix/dialect/tags.h"

namespace tutti {
namespace {

constexpr int longest_login = 30;    // seconds for each stage of a login
constexpr int longest_farewell = 2;  // seconds
constexpr int most_remarks = 20;     // on one connection
constexpr std::size_t kept_sent = 1'000;
constexpr int sender_sub_tag = 50, target_sub_tag = 57;

// What the caches are made of: after one of these that can't be read they are not right any more.
bool makes_state(const FixMessage& message) {
  return message.type == "AP" || message.type == "AO" || message.type == "y" || message.type == "BA" ||
         message.has(tag::order_kind);
}

}  // namespace

FixLine::FixLine(std::uint64_t key, const BrokerProfile& profile, const FixDictionary& dictionary,
                 LineInbox& inbox, LineLogin login, std::function<void()> changed)
    : key_(key),
      profile_(profile),
      inbox_(inbox),
      changed_(std::move(changed)),
      login_(std::move(login)),
      translation_(profile, login_.account),
      session_(FixSession::initiator(dictionary, settings())),
      decoder_([this](std::string_view symbol) { return size_of(symbol); }, login_.account) {}

SessionSettings FixLine::settings() const {
  SessionSettings settings;
  const BrokerProfile::Logon& logon = profile_.logon;
  settings.sender = translation_.sender();
  settings.target = logon.target;
  settings.heartbeat = logon.heartbeat;
  settings.time_digits = logon.timestamp_digits;
  if (!logon.sender_sub.empty()) settings.header.set(sender_sub_tag, logon.sender_sub);
  if (!logon.target_sub.empty()) settings.header.set(target_sub_tag, logon.target_sub);
  settings.logon.set(tag::username, logon.username.empty() ? login_.user : logon.username);
  if (logon.own_fields) settings.logon.set(tag::dialect, "1");
  for (const auto& [tag, value] : logon.extra)
    settings.logon.set(tag, value);
  settings.password = login_.password.copy();
  return settings;
}

double FixLine::size_of(std::string_view symbol) const {
  const auto at = sizes_.find(std::string{symbol});
  return at == sizes_.end() ? 0.0 : translation_.units_per_lot(symbol, at->second);
}

void FixLine::begin(Network& network) {
  stream_ = network.connect(profile_.connection.peer, *this);
}

void FixLine::on_open() {
  waited_ = 0;
  session_.start();
  pump();
}

void FixLine::on_bytes(std::string_view bytes) {
  if (told_end_) return;
  session_.feed(bytes);
  pump();
}

void FixLine::on_closed(std::string_view why) {
  tell_end(line::Ended{leaving_, std::string{why}});
  over_ = true;
  changed_();
}

void FixLine::send(const WireAsk& ask) {
  const auto* request = std::get_if<WireRequest>(&ask);
  const std::string stamp = std::to_string(++stamps_);
  FixMessage message = encode_ask(
      ask, [this](std::string_view symbol) { return size_of(symbol); }, stamp);
  translation_.outgoing(message);
  // Whoever reads this may be told in between that the connection ends: it is one thread that knows.
  const int number = leaving_ || told_end_ ? 0 : session_.send(message);
  if (request != nullptr && number == 0) tell(line::Unsent{request->id});
  if (request != nullptr && number != 0) {
    sent_.emplace_back(number, request->id);
    if (sent_.size() > kept_sent) sent_.pop_front();
  }
  pump();
}

void FixLine::log_out() {
  if (std::exchange(leaving_, true)) return;
  waited_ = 0;
  if (!stream_) {
    tell_end(line::Ended{true, "Logged out"});
    over_ = true;
    return changed_();
  }
  session_.log_out("Logged out");
  pump();
}

void FixLine::tick() {
  if (over_ || !stream_) return;
  ++waited_;
  if (leaving_ && waited_ >= longest_farewell) return end("Logged out");
  if (!leaving_ && !ready_ && waited_ >= longest_login)
    return end(gathering_ ? fmt::format("The server does not tell the {}", gathering_->missing())
                          : std::string{"The server does not answer"});
  session_.tick();
  pump();
}

void FixLine::pump() {
  for (bool again = true; again && !over_;) {
    const std::string bytes = session_.take_output();
    if (!bytes.empty() && stream_) stream_->write(bytes);
    auto events = session_.take_events();
    again = !events.empty();
    for (const SessionEvent& event : events)
      std::visit([&](const auto& each) { hear(each); }, event);
  }
}

void FixLine::hear(const session_event::LoggedOn&) {
  logged_on_ = true;
  waited_ = 0;
  const bool told = profile_.symbols.source != BrokerProfile::Symbols::Source::table;
  gathering_ = std::make_unique<LoginGathering>(told, profile_.orders.mass_status);
  if (told)
    ask_on();
  else
    take(translation_.table());
}

void FixLine::ask_on() {
  const bool singly = profile_.quotes && profile_.quotes->one_symbol_per_request;
  for (const WireAsk& ask : gathering_->take_asks()) {
    const auto* prices = std::get_if<ask::Prices>(&ask);
    if (prices == nullptr || !singly) {
      send(ask);
      continue;
    }
    for (const std::string& symbol : prices->symbols)
      send(ask::Prices{{symbol}});
  }
}

void FixLine::hear(const session_event::Received& received) {
  if (told_end_) return;
  FixMessage message = received.message;
  translation_.incoming(message);
  if (message.has(tag::account) && message.text(tag::account) != translation_.account_text())
    return end("A message for another account came");
  auto news = decoder_.decode(message);
  if (!news) return take_fault(message, news.error());
  if (!*news) return remark(fmt::format("A message of type {} came, which says nothing here", message.type));
  take(std::move(**news));
}

void FixLine::take_fault(const FixMessage& message, const std::string& fault) {
  const std::string text = fmt::format("A message of type {} can't be read: {}", message.type, fault);
  if (!ready_ || makes_state(message)) return end(text);
  remark(text);
}

void FixLine::take(WireNews news) {
  if (const auto* symbols = std::get_if<news::Symbols>(&news))
    for (const news::SymbolEntry& entry : symbols->entries)
      sizes_[entry.symbol.name] = entry.symbol.contract_size;
  if (!gathering_) {
    if (ready_) tell(std::move(news));
    return;
  }
  gathering_->take(news);
  ask_on();
  if (!gathering_ || !gathering_->complete()) return;
  const auto whole = std::move(gathering_);
  ready_ = true;
  tell(whole->take_ready());
  for (WireNews& later : whole->take_later())
    tell(std::move(later));
  changed_();
}

void FixLine::hear(const session_event::Rejected& rejected) {
  const auto at = std::find_if(sent_.begin(), sent_.end(),
                               [&](const auto& each) { return each.first == rejected.sequence; });
  if (at == sent_.end())
    return remark(fmt::format("The server can't read a message, which it does not name: {}", rejected.why));
  tell(WireNews{news::Refused{at->second, {}, request::silent, rejected.why}});
}

void FixLine::hear(const session_event::Trouble& trouble) {
  remark(trouble.why);
}

void FixLine::hear(const session_event::Silence& silence) {
  tell(line::Silence{silence.silent});
}

void FixLine::hear(const session_event::Ended& ended) {
  using Reason = session_event::Ended::Reason;
  if (ended.reason == Reason::left && !logged_on_) {
    const bool password =
        std::any_of(profile_.logon.refused_password.begin(), profile_.logon.refused_password.end(),
                    [&](const std::string& word) { return ended.why.find(word) != ended.why.npos; });
    if (password)
      tell_end(line::Refused{ended.why});
    else
      tell_end(line::Ended{false, "The logon was refused: " + ended.why});
  } else if (ended.reason == Reason::left) {
    tell_end(line::Ended{leaving_, "The server has logged the account out: " + ended.why});
  }
  end(ended.why);
}

void FixLine::remark(std::string text) {
  if (++remarks_ > most_remarks) return end("Too much came that can't be read; the last was: " + text);
  tell(line::Remark{std::move(text)});
}

void FixLine::tell_end(LineNews last) {
  if (std::exchange(told_end_, true)) return;
  gathering_.reset();
  tell(std::move(last));
  changed_();
}

void FixLine::end(std::string why) {
  tell_end(line::Ended{leaving_, std::move(why)});
  if (stream_) stream_->close();
}

}  // namespace tutti
