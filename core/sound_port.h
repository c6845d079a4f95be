#pragma once

#include <string>

namespace tutti {

// Port to the machine's wave player. A burst of the same file within a frame sounds once; a missing file or
// card is silence, never a delay.
class SoundPort {
 public:
  virtual ~SoundPort() = default;
  // `name` is a full text as Paths takes it.
  virtual void play(const std::string& name) = 0;
};

}  // namespace tutti
