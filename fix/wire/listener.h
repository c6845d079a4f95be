#pragma once

#include <memory>
#include <string_view>

#include "fix/wire/byte_receiver.h"
#include "fix/wire/byte_stream.h"

namespace tutti {

// Takes connections that others begin. Called on the thread of the wire.
class Listener {
 public:
  virtual ~Listener() = default;

  // Gives the receiver of a connection from `address`, which owns the stream from now on and lives at least
  // until its on_closed was called or the stream is gone; nullptr turns the connection away.
  virtual ByteReceiver* on_connection(std::unique_ptr<ByteStream> stream, std::string_view address) = 0;
};

}  // namespace tutti
