#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "core/CLocalSettings.h"
#include "core/amount_precision.h"
#include "core/clock.h"
#include "core/frmMsgBox.h"
#include "core/journal.h"
#include "core/key_file.h"
#include "core/lot_limits.h"
#include "core/paths.h"
#include "core/text_file.h"
#include "core/wave_control.h"

namespace tutti {

// Caption that stands for the default one.
inline constexpr std::string_view default_caption = "##DEF##";

// Shared values and helpers of all windows. Made once by start-up, which owns it; users get it by reference.
class MGeneral {
 public:
  MGeneral(const Paths& paths, const Clock& clock, SoundPort& sound, Prompt& prompt, MessageQueue& messages);

  const Paths& paths;
  const Clock& clock;
  Prompt& prompt;
  WaveControl wave;
  TextFile files;
  frmMsgBox msg_box;

  const std::int32_t mode = 3;         // nothing asks for it
  const std::string workstation_file;  // full path; nothing reads or writes the file

  // Set by start-up, in its order.
  std::string account_file;  // full path of the account information file
  KeyFile key;               // of the records in it
  CLocalSettings* locale = nullptr;
  Journal* journal = nullptr;
  std::function<void(std::string_view text)> outside;  // standard error of the program; may be empty

  std::string last_message;  // text of the last result message
  LotLimits lots;
  AmountPrecision precision;

  // An account's data have loaded: the settings file is to say the precision anew.
  void outdate_settings() { settings_outdated_ = true; }
  // Has it say that, once for all who asked. To be called when no more events wait, and before the precision
  // is used. A file that can't be read changes nothing and is journaled once.
  void read_settings();

  // Arms the switch and plays a file of the sounds folder, such as "\sounds\OrderOk.wav".
  void play_sound(std::string_view name);
  void play_sound_file(const std::string& full_name);
  // Box with one "OK" button; default_caption shows as "Alert".
  void message_box(std::string_view text, std::string_view caption);
  void message_box(std::string_view text) { message_box(text, default_caption); }
  // The same box without waiting for the button: it stands behind the messages of events.
  void queue_message(std::string_view text);
  // True while an event handler runs.
  bool in_handler() const { return messages_.in_handler(); }
  void log(std::string_view message, std::int32_t account) {
    if (journal != nullptr) journal->log(message, account);
  }
  // Says something where it is seen even though nobody reads the journal.
  void tell_outside(std::string_view text) {
    if (outside) outside(text);
  }
  // Journals that lines of a data file were skipped, and tells it outside.
  void log_skipped(std::string_view text);
  bool lines_skipped() const { return lines_skipped_; }

 private:
  MessageQueue& messages_;
  bool lines_skipped_ = false;
  bool settings_outdated_ = false;
};

}  // namespace tutti
