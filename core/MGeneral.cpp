#include "core/MGeneral.h"

#include <utility>

namespace tutti {

MGeneral::MGeneral(const Paths& paths, const Clock& clock, SoundPort& sound, Prompt& prompt,
                   MessageQueue& messages)
    : paths(paths),
      clock(clock),
      prompt(prompt),
      wave(sound),
      files(paths),
      msg_box(prompt, messages),
      workstation_file(paths.full("\\manage\\wsinfo.dat")),
      messages_(messages) {}

void MGeneral::read_settings() {
  if (!std::exchange(settings_outdated_, false)) return;
  const std::string fault = precision.read(files, paths.full("\\manage\\settings.buf"));
  if (fault.empty()) return;
  log("Settings not read, shares keep " + std::to_string(precision.decimals()) + " decimals: " + fault,
      no_account);
}

void MGeneral::log_skipped(std::string_view text) {
  lines_skipped_ = true;
  log(text, no_account);
  tell_outside(text);
}

void MGeneral::play_sound(std::string_view name) {
  play_sound_file(paths.full(name));
}

void MGeneral::play_sound_file(const std::string& full_name) {
  wave.arm();
  wave.play(full_name);
}

void MGeneral::message_box(std::string_view text, std::string_view caption) {
  msg_box.MessageBox(
      {std::string{text}, std::string{caption == default_caption ? "Alert" : caption}, "OK", ""},
      frmMsgBox::Icon::stop);
}

void MGeneral::queue_message(std::string_view text) {
  messages_.post({std::string{text}, "Alert", "OK", ""});
}

}  // namespace tutti
