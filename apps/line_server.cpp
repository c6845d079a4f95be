#include "apps/line_server.h"

#include "core/for_now.h"

namespace tutti {

void LineServer::poll() {
  if (polling_) return;
  const ForNow polling{polling_, true};
  while (connections_.size() < most_connections) {
    auto next = listener_.accept();
    if (!next) break;
    connections_.push_back({.socket = std::move(*next), .since = clock_.elapsed()});
  }
  connections_.remove_if([this](Connection& each) { return !step(each); });
}

bool LineServer::take_question(Connection& connection) {
  LocalSocket::Step step{};
  while ((step = connection.socket.read(connection.in, longest_question)) == LocalSocket::Step::done) {
  }
  const std::size_t end = connection.in.find('\n');
  if (end == std::string::npos)
    return step == LocalSocket::Step::later && connection.in.size() < longest_question;
  // One question: who says more is not understood.
  if (end + 1 < connection.in.size()) return false;
  connection.work = take_(std::string_view{connection.in}.substr(0, end));
  connection.in = {};
  return true;
}

bool LineServer::step(Connection& connection) {
  const bool asks = !connection.work && connection.out.empty();
  if (asks && !take_question(connection)) return false;
  if (connection.work) {
    // Nothing is done for who can't hear any more what came of it.
    if (connection.socket.gone()) return false;
    auto answer = connection.work();
    if (!answer) return clock_.elapsed() - connection.since < longest_work;
    if (answer->size() >= longest_answer) return false;
    connection.work = nullptr;
    connection.since = clock_.elapsed();
    connection.out = std::move(*answer) + "\n";
  }
  if (!connection.out.empty() && connection.socket.write(connection.out) != LocalSocket::Step::later)
    return false;
  return clock_.elapsed() - connection.since < patience;
}

}  // namespace tutti
