#include "fix/net/asio_network.h"

#include <fmt/format.h>

#include <map>
#include <thread>
#include <utility>
#include <vector>

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/post.hpp>

#include "fix/net/connection.h"

namespace tutti {
namespace {

using Tcp = asio::ip::tcp;

void set_versions(asio::ssl::context& context) {
  context.set_options(asio::ssl::context::default_workarounds | asio::ssl::context::no_compression);
  SSL_CTX_set_min_proto_version(context.native_handle(), TLS1_2_VERSION);
}

}  // namespace

class AsioNetwork::Impl {
 public:
  struct Door {
    Tcp::acceptor acceptor;
    std::unique_ptr<asio::ssl::context> tls;
    Listener& listener;
  };

  // Made once for all who prove themselves in the same way: reading authorities takes a while.
  asio::ssl::context* context_for(const Peer& peer) {
    if (peer.proof == Peer::Proof::none) return nullptr;
    const auto key = std::pair{peer.proof, peer.ca_file};
    const auto at = contexts.find(key);
    if (at != contexts.end()) return at->second.get();
    auto context = std::make_unique<asio::ssl::context>(asio::ssl::context::tls_client);
    set_versions(*context);
    asio::error_code error;
    if (peer.proof == Peer::Proof::certificate && peer.ca_file.empty())
      context->set_default_verify_paths(error);
    else if (peer.proof == Peer::Proof::certificate)
      context->load_verify_file(peer.ca_file, error);
    // Authorities that can't be read prove nobody: the handshake says so.
    return contexts.emplace(key, std::move(context)).first->second.get();
  }

  void take(Door& door) {
    door.acceptor.async_accept([this, &door](const asio::error_code& error, Tcp::socket socket) {
      if (error == asio::error::operation_aborted) return;
      if (error) {
        // Out of descriptors, mostly: others may have gone by then.
        auto timer = std::make_shared<asio::steady_timer>(io, std::chrono::milliseconds{100});
        return timer->async_wait([this, &door, timer](const asio::error_code&) { take(door); });
      }
      asio::error_code failed;
      const Tcp::endpoint from = socket.remote_endpoint(failed);
      const auto connection = std::make_shared<Connection>(std::move(socket), door.tls.get());
      connection->accept([connection, from, &door] {
        auto handle = std::make_unique<ConnectionHandle>(connection);
        const std::string address = fmt::format("{}:{}", from.address().to_string(), from.port());
        ByteReceiver* receiver = door.listener.on_connection(std::move(handle), address);
        if (receiver != nullptr) connection->serve(*receiver);
      });
      take(door);
    });
  }

  asio::io_context io{1};
  asio::executor_work_guard<asio::io_context::executor_type> work{io.get_executor()};
  std::map<std::pair<Peer::Proof, std::string>, std::unique_ptr<asio::ssl::context>> contexts;
  std::vector<std::unique_ptr<Door>> doors;
  std::thread thread;
};

AsioNetwork::AsioNetwork() : impl_(std::make_unique<Impl>()) {}

AsioNetwork::~AsioNetwork() {
  stop();
}

void AsioNetwork::start() {
  impl_->thread = std::thread([this] { impl_->io.run(); });
}

void AsioNetwork::run() {
  impl_->io.run();
}

void AsioNetwork::stop() {
  impl_->io.stop();
  if (impl_->thread.joinable() && impl_->thread.get_id() != std::this_thread::get_id()) impl_->thread.join();
}

void AsioNetwork::post(std::function<void()> task) {
  asio::post(impl_->io, std::move(task));
}

void AsioNetwork::post_after(std::chrono::milliseconds wait, std::function<void()> task) {
  auto timer = std::make_shared<asio::steady_timer>(impl_->io, wait);
  timer->async_wait([timer, task = std::move(task)](const asio::error_code& error) {
    if (!error) task();
  });
}

std::unique_ptr<ByteStream> AsioNetwork::connect(const Peer& peer, ByteReceiver& receiver) {
  const auto connection = std::make_shared<Connection>(Tcp::socket{impl_->io}, impl_->context_for(peer));
  connection->begin(peer, receiver);
  return std::make_unique<ConnectionHandle>(connection);
}

tl::expected<std::uint16_t, std::string> AsioNetwork::listen(const std::string& address, std::uint16_t port,
                                                             const Certificate* certificate,
                                                             Listener& listener) {
  std::unique_ptr<asio::ssl::context> tls;
  try {
    if (certificate != nullptr) {
      tls = std::make_unique<asio::ssl::context>(asio::ssl::context::tls_server);
      set_versions(*tls);
      tls->use_certificate_chain(asio::buffer(certificate->pem));
      tls->use_private_key(asio::buffer(certificate->key_pem), asio::ssl::context::pem);
    }
    const Tcp::endpoint where{asio::ip::make_address(address), port};
    auto door = std::make_unique<Impl::Door>(
        Impl::Door{Tcp::acceptor{impl_->io, where, true}, std::move(tls), listener});
    const std::uint16_t bound = door->acceptor.local_endpoint().port();
    impl_->take(*impl_->doors.emplace_back(std::move(door)));
    return bound;
  } catch (const std::exception& error) {
    return tl::unexpected(fmt::format("{}:{} can't be listened at: {}", address, port, error.what()));
  }
}

}  // namespace tutti
