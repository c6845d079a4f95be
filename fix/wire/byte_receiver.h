#pragma once

#include <string_view>

namespace tutti {

// Who is told what a connection brings. Called on the thread of the wire, never inside a call of the stream,
// and not after the stream was destroyed. It may destroy the stream in any of these.
class ByteReceiver {
 public:
  virtual ~ByteReceiver() = default;

  // The other end is there and is who it should be; nothing may be written before.
  virtual void on_open() = 0;
  // At least one byte; lent for the call.
  virtual void on_bytes(std::string_view bytes) = 0;
  // Nothing comes any more, and nothing is carried; also when the other end was never reached. `why` is in
  // the operator's words. The last call.
  virtual void on_closed(std::string_view why) = 0;
};

}  // namespace tutti
