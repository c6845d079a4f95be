#pragma once

#include <cstddef>
#include <string_view>

namespace tutti {

// One end of a connection that carries bytes in their order, or ends. Owned by whoever talks over it;
// destroying it closes the connection at once.
class ByteStream {
 public:
  virtual ~ByteStream() = default;

  // Never blocks, and copies. After the end it does nothing.
  virtual void write(std::string_view bytes) = 0;
  // Bytes that were written and have not left yet.
  virtual std::size_t unsent() const = 0;
  // Lets what was written go out, then closes. The receiver hears of it as of any other end.
  virtual void close() = 0;
};

}  // namespace tutti
