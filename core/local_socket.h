#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include <tl/expected.hpp>

#include "core/descriptor.h"

namespace tutti {

// One end of a connection between two programs on this machine. Nothing here ever waits.
class LocalSocket {
 public:
  // What a step has brought: the other end has gone with `end`, or the connection is of no use any more.
  enum class Step : std::uint8_t { done, later, end };
  enum class Fault : std::uint8_t {
    nobody,  // no program listens there
    later,   // it has more to do than it takes
    other    // it is another user's, or the machine refuses
  };

  explicit LocalSocket(Descriptor socket) : socket_(std::move(socket)) {}
  // To the program that listens in this folder under this name, which runs for this user, for root, or for
  // whom the folder belongs to.
  static tl::expected<LocalSocket, Fault> connect(const std::filesystem::path& folder,
                                                  const std::string& name);

  // Adds what has come, so that `in` holds no more than `most` bytes; `later` also where it does already.
  Step read(std::string& in, std::size_t most) const;
  // Takes what goes out from the front of `out`; `done` once all of it has.
  Step write(std::string& out) const;
  // The other end has hung up. What it had sent before may still be there to be read.
  bool gone() const;

 private:
  Descriptor socket_;
};

// Takes connections of programs on this machine that run for the same user or for root, through a socket in a
// folder, with mode 0600 from its first moment on. It goes with this object.
class LocalListener {
 public:
  // Takes the place of a socket that a program has left behind: whoever calls owns the folder. What is no
  // socket stays, and is an error. A folder's path may be of any length.
  static tl::expected<LocalListener, FileError> open(const std::filesystem::path& folder, std::string name);
  ~LocalListener();
  LocalListener(LocalListener&&) noexcept = default;
  LocalListener& operator=(LocalListener&&) = delete;

  // The next one that waits; one of another user is closed at once.
  std::optional<LocalSocket> accept() const;

 private:
  LocalListener(Descriptor folder, Descriptor socket, std::string name)
      : folder_(std::move(folder)), socket_(std::move(socket)), name_(std::move(name)) {}

  Descriptor folder_;
  Descriptor socket_;
  std::string name_;
};

}  // namespace tutti
