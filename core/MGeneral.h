#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/CLocalSettings.h"
#include "core/amount_precision.h"
#include "core/clock.h"
#include "core/key_file.h"
#include "core/lot_limits.h"
#include "core/notices.h"
#include "core/paths.h"
#include "core/text_file.h"
#include "core/wave_control.h"

namespace tutti {

// Shared values and helpers of all windows. Made once by start-up, which owns it; who needs one of them alone
// is given that one.
class MGeneral : public Notices {
 public:
  MGeneral(const Paths& paths, const CLocalSettings& locale, const Clock& clock, SoundPort& sound,
           Prompt& prompt, MessageQueue& messages);

  const Paths& paths;
  const CLocalSettings& locale;
  const Clock& clock;
  Prompt& prompt;
  WaveControl wave;
  TextFile files;

  const std::int32_t mode = 3;         // nothing asks for it
  const std::string workstation_file;  // full path; nothing reads or writes the file

  // Set by start-up, in its order.
  std::string account_file;  // full path of the account information file
  KeyFile key;               // of the records in it

  std::string last_message;  // text of the last result message
  LotLimits lots;
  AmountPrecision precision;

  // An account's data have loaded: the settings file is to say the precision anew.
  void outdate_settings() { settings_outdated_ = true; }
  // Has it say that, once for all who asked. To be called when no more events wait. A file that can't be read
  // changes nothing and is journaled once.
  void read_settings();
  // Of distributed amounts, as the settings have them now.
  int amount_decimals();

  // Arms the switch and plays a file of the sounds folder, such as "\sounds\OrderOk.wav".
  void play_sound(std::string_view name);
  void play_sound_file(const std::string& full_name);

 private:
  bool settings_outdated_ = false;
};

}  // namespace tutti
