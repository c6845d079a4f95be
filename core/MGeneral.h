#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "core/CLocalSettings.h"
#include "core/clock.h"
#include "core/frmMsgBox.h"
#include "core/journal.h"
#include "core/key_file.h"
#include "core/paths.h"
#include "core/row_list.h"
#include "core/text_box.h"
#include "core/text_file.h"
#include "core/totals.h"
#include "core/wave_control.h"

namespace tutti {

// Caption that stands for the default one.
inline constexpr std::string_view default_caption = "##DEF##";

// Tooltip of a column with times that the dealing server tells.
inline constexpr std::string_view server_time_tip = "As the dealing server tells it, in UTC";

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

  // Set by start-up, in its order.
  std::int32_t mode = 0;
  std::string account_file;      // full path of the account information file
  KeyFile key;                   // of the records in it
  std::string workstation_file;  // full path; nothing reads or writes the file
  CLocalSettings* locale = nullptr;
  Journal* journal = nullptr;
  std::function<void(std::string_view text)> outside;  // standard error of the program; may be empty

  Totals totals;             // sum over the connected sessions; only sessions change it
  std::string last_message;  // text of the last result message
  double minimum_lot = 0.0;  // lots; 0 until an account told it
  double maximum_lot = 0.0;

  // Decimals of distributed amounts, as the settings file has them. A value held for this run, as the command
  // line gives it, wins over what the file says later.
  const std::string& amount_precision() const { return amount_precision_; }
  void set_amount_precision(std::string_view text) {
    if (!precision_held_) amount_precision_ = text;
  }
  void hold_amount_precision(std::string_view text) {
    amount_precision_ = text;
    precision_held_ = true;
  }
  // Takes them over from the settings file. One that can't be read changes nothing and is journaled once.
  void read_settings();
  // The number of decimals: rounded half to even, held to 0..15.
  int amount_decimals() const;

  // Arms the switch and plays a file of the sounds folder, such as "\sounds\OrderOk.wav".
  void play_sound(std::string_view name);
  void play_sound_file(const std::string& full_name);
  // "yyyy-mm-dd hh:nn:ss" and "hh:nn" of a server time, in UTC whatever the zone of this machine.
  std::string full_time_text(TimePoint time) const;
  std::string short_time_text(TimePoint time) const;
  // "yyyy-mm-dd hh:nn:ss" of this moment on the operator's clock.
  std::string now_text() const;
  void select_text(TextBox& box) const;
  // Widths in percent from a text of numbers separated by ","; more numbers than columns are not used, and an
  // empty text spreads the columns evenly.
  void column_widths(RowList& list, std::string_view widths) const;
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
  // The summary row of a list: found by its label in column 0, made at the end when missing.
  Row& total_row(RowList& list) const;
  // True for a position that was opened from this terminal, by the side text in `column`.
  bool manage_side(const Row& row, std::size_t column) const;

 private:
  MessageQueue& messages_;
  std::string amount_precision_ = "1";
  bool precision_held_ = false;
  bool lines_skipped_ = false;
  std::string settings_fault_;
};

}  // namespace tutti
