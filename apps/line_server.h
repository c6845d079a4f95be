#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "core/clock.h"
#include "core/local_socket.h"

namespace tutti {

// Brings the questions of other programs of the same user to who answers them: one line each way, and one
// question, per connection. Works only while `poll` runs, never waits there, and holds no more than is said
// here, whatever the others do or leave undone.
class LineServer {
 public:
  static constexpr std::size_t most_connections = 16;         // at once; others wait to be taken
  static constexpr std::size_t longest_question = 64u << 10;  // bytes, with the end of its line
  static constexpr std::size_t longest_answer = 1u << 20;
  // So long a question may take to come, and an answer to be read.
  static constexpr std::chrono::seconds patience{5};
  // And an answer to be found.
  static constexpr std::chrono::seconds longest_work{60};

  // The answer, without an end of line, once there is one. Asked with every poll for as long as who put the
  // question is there: it may do something, but waits for nothing.
  using Work = std::function<std::optional<std::string>()>;
  // What answers a question, which is any bytes but an end of line.
  using Take = std::function<Work(std::string_view question)>;

  // The clock outlives it.
  LineServer(LocalListener listener, const Clock& clock, Take take)
      : listener_(std::move(listener)), clock_(clock), take_(std::move(take)) {}

  void poll();
  std::size_t connections() const { return connections_.size(); }

 private:
  struct Connection {
    LocalSocket socket;
    std::chrono::milliseconds since;  // by the clock's elapsed time
    std::string in{};
    Work work{};
    std::string out{};
  };

  // False when it is over: a question that is too long, or not whole in time, is not answered.
  bool step(Connection& connection);
  bool take_question(Connection& connection);

  LocalListener listener_;
  const Clock& clock_;
  Take take_;
  std::list<Connection> connections_;
  bool polling_ = false;
};

}  // namespace tutti
