#pragma once

#include <cstddef>
#include <string_view>

#include "fix/session/fix_message.h"

namespace tutti {

// What the news of a seat need of its connection. Its end may be brought about in any of these.
class SeatWire {
 public:
  virtual ~SeatWire() = default;

  virtual void send(const FixMessage& message) = 0;
  // Bytes that wait for the reader.
  virtual std::size_t unsent() const = 0;
  // He does not read what he is sent.
  virtual void drop() = 0;
  // The login of the trading client has come to its end: it stands, or is refused, with a word that says why.
  virtual void on_loaded() = 0;
  virtual void on_refused(std::string_view why) = 0;
  // The session of the trading client was ended from behind.
  virtual void on_ended() = 0;
};

}  // namespace tutti
