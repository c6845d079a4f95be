#pragma once

#include <QElapsedTimer>
#include <QSoundEffect>
#include <filesystem>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

#include "core/paths.h"
#include "core/sound_port.h"

namespace tutti {

// Plays the wave files: the operator's own below the application folder, else the compiled-in one of that
// name. Returns at once; a machine without a sound card is silent.
class DesktopSound final : public SoundPort {
 public:
  explicit DesktopSound(std::filesystem::path application_folder) : paths_(std::move(application_folder)) {}

  // The same file within 150 ms sounds once.
  void play(const std::string& name) override;

  bool muted() const { return muted_; }
  void set_muted(bool muted) { muted_ = muted; }

 private:
  struct Sound {
    std::unique_ptr<QSoundEffect> effect;  // nullptr when there is no such file
    QElapsedTimer since;                   // its last start
  };

  std::unique_ptr<QSoundEffect> load(const std::string& name) const;

  Paths paths_;
  std::unordered_map<std::string, Sound> sounds_;  // by name as given
  bool muted_ = false;
};

}  // namespace tutti
