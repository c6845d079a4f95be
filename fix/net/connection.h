#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <asio/ip/tcp.hpp>
#include <asio/ssl.hpp>
#include <asio/steady_timer.hpp>

#include "fix/wire/byte_receiver.h"
#include "fix/wire/byte_stream.h"
#include "fix/wire/peer.h"

namespace tutti {

// One socket, with TLS around it or without. Lives as long as an operation of it is under way; whoever uses
// it holds a ConnectionHandle. On the network's thread alone.
class Connection final : public std::enable_shared_from_this<Connection> {
 public:
  // Without a context there is no TLS. The context outlives the connection.
  Connection(asio::ip::tcp::socket socket, asio::ssl::context* tls);

  // Reaches a peer, proves who it is, and tells the receiver.
  void begin(const Peer& peer, ByteReceiver& receiver);
  // Takes a connection that was accepted: calls `ready` once it may carry bytes; never when it failed.
  void accept(std::function<void()> ready);
  // Bytes are read from now on.
  void serve(ByteReceiver& receiver);

  void write(std::string_view bytes);
  std::size_t unsent() const { return waiting_.size() + leaving_.size(); }
  void close();
  // Nobody wants to hear of it any more.
  void leave();

 private:
  void reach(const asio::ip::tcp::resolver::results_type& addresses);
  void shake_hands();
  void open();
  void read();
  void flush();
  void say_good_bye();
  void end(std::string_view why);
  template <class Act>
  void with_stream(Act act) {
    if (tls_)
      act(*tls_);
    else
      act(socket_);
  }
  asio::ip::tcp::socket::lowest_layer_type& lowest() {
    return tls_ ? tls_->lowest_layer() : socket_.lowest_layer();
  }

  asio::ip::tcp::socket socket_;  // moved into `tls_` where there is TLS
  std::optional<asio::ssl::stream<asio::ip::tcp::socket>> tls_;
  asio::ip::tcp::resolver resolver_;
  asio::steady_timer timer_;
  Peer peer_;
  ByteReceiver* receiver_ = nullptr;
  std::array<char, 16'384> input_{};
  std::string waiting_;  // that was written, and not handed on
  std::string leaving_;  // handed on, and not gone
  bool open_ = false;
  bool flushing_ = false;
  bool closing_ = false;
  bool ended_ = false;
};

// What a user of the network holds: its end closes the connection.
class ConnectionHandle final : public ByteStream {
 public:
  explicit ConnectionHandle(std::shared_ptr<Connection> connection) : connection_(std::move(connection)) {}
  ~ConnectionHandle() override { connection_->leave(); }
  ConnectionHandle(const ConnectionHandle&) = delete;
  ConnectionHandle& operator=(const ConnectionHandle&) = delete;

  void write(std::string_view bytes) override { connection_->write(bytes); }
  std::size_t unsent() const override { return connection_->unsent(); }
  void close() override { connection_->close(); }

 private:
  std::shared_ptr<Connection> connection_;
};

}  // namespace tutti
