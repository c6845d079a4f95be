#pragma once

#include <string>

#include "core/sound_port.h"

namespace tutti {

// The terminal's one wave player with its switch: a caller arms it, plays, and the switch falls back, so
// that every sound asks for itself.
class WaveControl {
 public:
  explicit WaveControl(SoundPort& port) : port_(port) {}

  void arm() { armed_ = true; }
  bool armed() const { return armed_; }
  // Plays when armed; disarms in every case.
  void play(const std::string& name) {
    if (armed_) port_.play(name);
    armed_ = false;
  }

 private:
  SoundPort& port_;
  bool armed_ = false;
};

}  // namespace tutti
