#include "core/MGeneral.h"

#include <utility>

namespace tutti {

MGeneral::MGeneral(const Paths& paths, const CLocalSettings& locale, const Clock& clock, SoundPort& sound,
                   Prompt& prompt, MessageQueue& messages)
    : Notices(prompt, messages),
      paths(paths),
      locale(locale),
      clock(clock),
      prompt(prompt),
      wave(sound),
      files(paths),
      workstation_file(paths.full("\\manage\\wsinfo.dat")) {}

void MGeneral::read_settings() {
  if (!std::exchange(settings_outdated_, false)) return;
  const std::string fault = precision.read(files, paths.full("\\manage\\settings.buf"));
  if (fault.empty()) return;
  log("Settings not read, shares keep " + std::to_string(precision.decimals()) + " decimals: " + fault,
      no_account);
}

int MGeneral::amount_decimals() {
  read_settings();
  return precision.decimals();
}

void MGeneral::play_sound(std::string_view name) {
  play_sound_file(paths.full(name));
}

void MGeneral::play_sound_file(const std::string& full_name) {
  wave.arm();
  wave.play(full_name);
}

}  // namespace tutti
