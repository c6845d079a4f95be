#include "apps/terminal_link.h"

#include <optional>
#include <utility>

#include "apps/terminal_control.h"
#include "core/local_socket.h"

namespace tutti {
namespace {

using Step = LocalSocket::Step;

constexpr std::chrono::milliseconds between{10};

constexpr std::chrono::milliseconds between_looks{100};

}  // namespace

int tell_fault(Console& console, const TerminalLink::Fault& fault) {
  console.fail(fault.text);
  return fault.status;
}

bool TerminalLink::until(const std::function<bool()>& holds) const {
  const auto deadline = ports_.clock.elapsed() + most_;
  for (;; ports_.pause(between_looks)) {
    if (holds()) return true;
    if (ports_.signal() != 0 || ports_.clock.elapsed() >= deadline) return false;
  }
}

tl::expected<Json, TerminalLink::Fault> TerminalLink::ask(Json question, Effect effect) const {
  question["version"] = TerminalControl::version;
  std::string out = question.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
  if (out.size() > LineServer::longest_question)
    return tl::unexpected(Fault{"What is to be told to the terminal is too long", exit_status::usage});
  std::optional<LocalSocket> socket;
  std::string in;
  bool left = false;
  const auto fault = [&](const std::string& why) {
    const bool unsure = left && effect == Effect::acts;
    return tl::unexpected(Fault{
        "The terminal that has this folder " + why +
            (unsure ? ": what was asked may have been carried out; see tuttictl tickets and unknown" : ""),
        unsure ? exit_status::some_unknown : exit_status::unreadable_data});
  };
  const auto deadline = ports_.clock.elapsed() + most_;
  for (;; ports_.pause(between)) {
    if (!socket) {
      auto connected = LocalSocket::connect(home_, TerminalControl::socket_name);
      if (connected) {
        socket.emplace(std::move(*connected));
      } else if (connected.error() == LocalSocket::Fault::nobody) {
        return tl::unexpected(Fault{"No terminal runs in this folder", exit_status::unreadable_data, true});
      } else if (connected.error() == LocalSocket::Fault::other) {
        return fault("can't be reached by this user");
      }
    }
    Step step = Step::later;
    if (socket && !left) {
      step = socket->write(out);
      left = step == Step::done;
    }
    while (left && (step = socket->read(in, LineServer::longest_answer)) == Step::done) {
    }
    if (in.ends_with('\n')) break;
    if (step == Step::end || ports_.signal() != 0 || ports_.clock.elapsed() >= deadline)
      return fault("did not answer");
  }
  Json answer = Json::parse(in, nullptr, false);
  if (!answer.is_object()) return fault("did not answer in a way that is understood");
  if (const auto error = answer.find("error"); error != answer.end() && error->is_string())
    return tl::unexpected(
        Fault{error->get<std::string>(), answer.value("status", exit_status::unreadable_data)});
  return answer;
}

}  // namespace tutti
