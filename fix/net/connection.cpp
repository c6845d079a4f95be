#include "fix/net/connection.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include <asio/connect.hpp>
#include <asio/post.hpp>
#include <asio/write.hpp>

#include "core/texts.h"
#include "fix/net/fingerprint.h"

namespace tutti {
namespace {

constexpr std::chrono::seconds longest_handshake{10};
constexpr std::chrono::seconds longest_good_bye{1};

// The other end has closed, with a word of good-bye or without.
bool is_end(const asio::error_code& error) {
  return error == asio::error::eof || error == asio::ssl::error::stream_truncated;
}

std::string words_of(const asio::error_code& error) {
  return is_end(error) ? std::string{"The other end has closed the connection"} : error.message();
}

}  // namespace

Connection::Connection(asio::ip::tcp::socket socket, asio::ssl::context* tls)
    : socket_(std::move(socket)), resolver_(socket_.get_executor()), timer_(socket_.get_executor()) {
  if (tls != nullptr) tls_.emplace(std::move(socket_), *tls);
}

void Connection::begin(const Peer& peer, ByteReceiver& receiver) {
  peer_ = peer;
  receiver_ = &receiver;
  resolver_.async_resolve(
      peer.address, std::to_string(peer.port),
      [self = shared_from_this()](const asio::error_code& error, const auto& addresses) {
        if (self->ended_) return;
        if (error)
          return self->end(fmt::format("{} can't be found: {}", self->peer_.address, error.message()));
        self->reach(addresses);
      });
}

void Connection::reach(const asio::ip::tcp::resolver::results_type& addresses) {
  // The socket without TLS is empty where there is TLS around it.
  auto& socket = tls_ ? tls_->next_layer() : socket_;
  asio::async_connect(socket, addresses,
                      [self = shared_from_this()](const asio::error_code& error, const auto&) {
                        if (self->ended_) return;
                        if (error)
                          return self->end(fmt::format("{}:{} can't be reached: {}", self->peer_.address,
                                                       self->peer_.port, error.message()));
                        self->shake_hands();
                      });
}

void Connection::shake_hands() {
  if (!tls_) return open();
  const std::string& name = peer_.name.empty() ? peer_.address : peer_.name;
  SSL_set_tlsext_host_name(tls_->native_handle(), name.c_str());
  if (peer_.proof == Peer::Proof::certificate) {
    tls_->set_verify_mode(asio::ssl::verify_peer);
    tls_->set_verify_callback(asio::ssl::host_name_verification(name));
  }
  tls_->async_handshake(
      asio::ssl::stream_base::client, [self = shared_from_this()](const asio::error_code& error) {
        if (self->ended_) return;
        if (error) return self->end("The server does not prove who it is: " + error.message());
        if (self->peer_.proof == Peer::Proof::pinned) {
          X509* shown = SSL_get1_peer_certificate(self->tls_->native_handle());
          const std::string fingerprint = shown != nullptr ? fingerprint_of(shown) : std::string{};
          X509_free(shown);
          if (fingerprint.empty() || !same_letters(fingerprint, self->peer_.pin_sha256))
            return self->end("The server shows another certificate than the pinned one: " + fingerprint);
        }
        self->open();
      });
}

void Connection::open() {
  open_ = true;
  asio::error_code ignored;
  lowest().set_option(asio::ip::tcp::no_delay{true}, ignored);
  lowest().set_option(asio::socket_base::keep_alive{true}, ignored);
  read();
  if (receiver_ != nullptr) receiver_->on_open();
}

void Connection::accept(std::function<void()> ready) {
  if (!tls_) return ready();
  timer_.expires_after(longest_handshake);
  timer_.async_wait([self = shared_from_this()](const asio::error_code& error) {
    if (!error && !self->open_) self->end("No handshake in time");
  });
  tls_->async_handshake(asio::ssl::stream_base::server,
                        [self = shared_from_this(), ready = std::move(ready)](const asio::error_code& error) {
                          if (self->ended_) return;
                          if (error) return self->end(error.message());
                          self->timer_.cancel();
                          ready();
                        });
}

void Connection::serve(ByteReceiver& receiver) {
  receiver_ = &receiver;
  open();
}

void Connection::read() {
  with_stream([&](auto& stream) {
    stream.async_read_some(asio::buffer(input_),
                           [self = shared_from_this()](const asio::error_code& error, std::size_t count) {
                             if (self->ended_) return;
                             if (error) return self->end(words_of(error));
                             if (self->receiver_ != nullptr)
                               self->receiver_->on_bytes({self->input_.data(), count});
                             if (!self->ended_) self->read();
                           });
  });
}

// What one turn writes goes out together.
void Connection::write(std::string_view bytes) {
  if (ended_ || closing_ || !open_ || bytes.empty()) return;
  waiting_.append(bytes);
  if (std::exchange(flushing_, true)) return;
  asio::post(lowest().get_executor(), [self = shared_from_this()] { self->flush(); });
}

void Connection::flush() {
  if (ended_) return;
  if (waiting_.empty()) {
    flushing_ = false;
    if (closing_) say_good_bye();
    return;
  }
  leaving_ = std::exchange(waiting_, {});
  with_stream([&](auto& stream) {
    asio::async_write(stream, asio::buffer(leaving_),
                      [self = shared_from_this()](const asio::error_code& error, std::size_t) {
                        self->leaving_.clear();
                        if (self->ended_) return;
                        if (error) return self->end(words_of(error));
                        self->flush();
                      });
  });
}

void Connection::close() {
  if (ended_ || std::exchange(closing_, true)) return;
  // A reader that never reads does not hold the end up.
  timer_.expires_after(longest_good_bye);
  timer_.async_wait([self = shared_from_this()](const asio::error_code& error) {
    if (!error) self->end("The connection was closed");
  });
  if (!std::exchange(flushing_, true))
    asio::post(lowest().get_executor(), [self = shared_from_this()] { self->flush(); });
}

// Without it the other end takes the end for an accident.
void Connection::say_good_bye() {
  if (!tls_ || !open_) return end("The connection was closed");
  tls_->async_shutdown(
      [self = shared_from_this()](const asio::error_code&) { self->end("The connection was closed"); });
}

void Connection::leave() {
  receiver_ = nullptr;
  close();
}

void Connection::end(std::string_view why) {
  if (std::exchange(ended_, true)) return;
  timer_.cancel();
  resolver_.cancel();
  asio::error_code ignored;
  lowest().close(ignored);
  if (ByteReceiver* const receiver = std::exchange(receiver_, nullptr)) receiver->on_closed(why);
}

}  // namespace tutti
