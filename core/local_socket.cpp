#include "core/local_socket.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <initializer_list>

namespace tutti {
namespace {

constexpr mode_t private_socket = 0600;
// That wait to be taken; more are turned away by the system.
constexpr int backlog = 16;
constexpr std::size_t piece = 16u << 10;  // bytes

// An address has room for about a hundred bytes: a folder is named by its descriptor, whatever its path.
sockaddr_un address_in(const Descriptor& folder, const std::string& name) {
  sockaddr_un out{};
  out.sun_family = AF_UNIX;
  const std::string path = "/proc/self/fd/" + std::to_string(folder.get()) + "/" + name;
  std::memcpy(out.sun_path, path.c_str(), std::min(path.size(), sizeof out.sun_path - 1));
  return out;
}

Descriptor new_socket() {
  return Descriptor{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)};
}

const sockaddr* plain(const sockaddr_un& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}

bool runs_for(const Descriptor& socket, std::initializer_list<uid_t> users) {
  ucred peer{};
  socklen_t size = sizeof peer;
  return ::getsockopt(socket.get(), SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
         std::find(users.begin(), users.end(), peer.uid) != users.end();
}

LocalSocket::Step step_of(ssize_t count) {
  if (count > 0) return LocalSocket::Step::done;
  return count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR) ? LocalSocket::Step::later
                                                                                  : LocalSocket::Step::end;
}

}  // namespace

tl::expected<LocalSocket, LocalSocket::Fault> LocalSocket::connect(const std::filesystem::path& folder,
                                                                   const std::string& name) {
  const Descriptor in{::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)};
  struct stat owned {};
  if (!in.open() || ::fstat(in.get(), &owned) != 0) return tl::unexpected(Fault::nobody);
  Descriptor socket = new_socket();
  const sockaddr_un address = address_in(in, name);
  if (!socket.open()) return tl::unexpected(Fault::other);
  if (::connect(socket.get(), plain(address), sizeof address) != 0) {
    if (errno == ENOENT || errno == ECONNREFUSED) return tl::unexpected(Fault::nobody);
    return tl::unexpected(errno == EAGAIN || errno == EINTR ? Fault::later : Fault::other);
  }
  if (!runs_for(socket, {::geteuid(), 0, owned.st_uid})) return tl::unexpected(Fault::other);
  return LocalSocket{std::move(socket)};
}

LocalSocket::Step LocalSocket::read(std::string& in, std::size_t most) const {
  std::array<char, piece> taken;
  const std::size_t room = std::min(most - std::min(most, in.size()), taken.size());
  if (room == 0) return Step::later;
  const ssize_t count = ::recv(socket_.get(), taken.data(), room, 0);
  if (count > 0) in.append(taken.data(), static_cast<std::size_t>(count));
  return step_of(count);
}

LocalSocket::Step LocalSocket::write(std::string& out) const {
  while (!out.empty()) {
    const ssize_t count = ::send(socket_.get(), out.data(), out.size(), MSG_NOSIGNAL);
    if (count <= 0) return step_of(count);
    out.erase(0, static_cast<std::size_t>(count));
  }
  return Step::done;
}

bool LocalSocket::gone() const {
  char next = 0;
  return step_of(::recv(socket_.get(), &next, 1, MSG_PEEK)) == Step::end;
}

tl::expected<LocalListener, FileError> LocalListener::open(const std::filesystem::path& folder,
                                                           std::string name) {
  const auto failure = [file = folder / name] { return tl::unexpected(system_failure(file, errno)); };
  Descriptor in{::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)};
  if (!in.open()) return failure();
  struct stat found {};
  if (::fstatat(in.get(), name.c_str(), &found, AT_SYMLINK_NOFOLLOW) == 0) {
    if (!S_ISSOCK(found.st_mode)) return tl::unexpected(FileError{folder / name, "is no socket"});
    if (::unlinkat(in.get(), name.c_str(), 0) != 0) return failure();
  } else if (errno != ENOENT) {
    return failure();
  }
  Descriptor socket = new_socket();
  const sockaddr_un address = address_in(in, name);
  // The name gets the mode that the socket has when it is bound.
  if (!socket.open() || ::fchmod(socket.get(), private_socket) != 0 ||
      ::bind(socket.get(), plain(address), sizeof address) != 0 || ::listen(socket.get(), backlog) != 0)
    return failure();
  return LocalListener{std::move(in), std::move(socket), std::move(name)};
}

LocalListener::~LocalListener() {
  if (socket_.open()) ::unlinkat(folder_.get(), name_.c_str(), 0);
}

std::optional<LocalSocket> LocalListener::accept() const {
  for (;;) {
    Descriptor taken{::accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK)};
    if (!taken.open() && errno != ECONNABORTED && errno != EINTR) return std::nullopt;
    if (taken.open() && runs_for(taken, {::geteuid(), 0})) return LocalSocket{std::move(taken)};
  }
}

}  // namespace tutti
