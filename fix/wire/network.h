#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "fix/wire/byte_receiver.h"
#include "fix/wire/byte_stream.h"
#include "fix/wire/peer.h"

namespace tutti {

// Where connections come from, and the thread that carries them. Everything but `post` is for tasks that run
// on that thread. At the end it is stopped, then the streams go, then it goes itself.
class Network {
 public:
  virtual ~Network() = default;

  // Has a task run on the wire's thread, after those posted before; never inside the call. From any thread.
  virtual void post(std::function<void()> task) = 0;
  // Runs a task on the wire's thread after a while, once.
  virtual void post_after(std::chrono::milliseconds wait, std::function<void()> task) = 0;
  // Begins a connection. The receiver outlives the stream.
  virtual std::unique_ptr<ByteStream> connect(const Peer& peer, ByteReceiver& receiver) = 0;
};

}  // namespace tutti
