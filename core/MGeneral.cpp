#include "core/MGeneral.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>

#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {
namespace {

// Calendar and clock of a moment as it stands. The formatter would add the machine's zone to a moment itself.
std::tm broken_down(TimePoint time) {
  return fmt::gmtime(std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count());
}

}  // namespace

MGeneral::MGeneral(const Paths& paths_in, const Clock& clock_in, SoundPort& sound, Prompt& prompt_in,
                   MessageQueue& messages)
    : paths(paths_in),
      clock(clock_in),
      prompt(prompt_in),
      wave(sound),
      files(paths_in),
      msg_box(prompt_in, messages),
      messages_(messages) {}

int MGeneral::amount_decimals() const {
  return static_cast<int>(std::clamp(round_half_even(read_number(amount_precision_), 0), 0.0, 15.0));
}

void MGeneral::read_settings() {
  const auto lines = files.lines(paths.full("\\manage\\settings.buf"));
  const std::string fault = lines ? "" : lines.error().text();
  if (fault != settings_fault_ && !fault.empty()) {
    log("Settings not read, shares keep " + std::to_string(amount_decimals()) + " decimals: " + fault,
        no_account);
  }
  settings_fault_ = fault;
  if (!lines) return;
  const std::string_view value = lines->empty() ? std::string_view{} : trim(lines->front());
  set_amount_precision(parse_number(value) ? value : "1");
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

std::string MGeneral::full_time_text(TimePoint time) const {
  return fmt::format("{:%Y-%m-%d %H:%M:%S}", broken_down(time));
}

std::string MGeneral::short_time_text(TimePoint time) const {
  return fmt::format("{:%H:%M}", broken_down(time));
}

std::string MGeneral::now_text() const {
  const TimePoint now = clock.now();
  return full_time_text(now + clock.utc_offset(now));
}

void MGeneral::select_text(TextBox& box) const {
  box.select(0, box.text().size());
}

void MGeneral::column_widths(RowList& list, std::string_view widths) const {
  const std::size_t columns = list.columns().size();
  if (widths.empty()) {
    for (std::size_t column = 0; column < columns; ++column) {
      list.set_column_width(column, 100.0 / static_cast<double>(columns));
    }
    return;
  }
  const auto pieces = split(widths, ",");
  for (std::size_t column = 0; column < std::min(columns, pieces.size()); ++column) {
    list.set_column_width(column, read_number(pieces[column]));
  }
}

void MGeneral::message_box(std::string_view text, std::string_view caption) {
  msg_box.MessageBox(
      {std::string{text}, std::string{caption == default_caption ? "Alert" : caption}, "OK", ""},
      frmMsgBox::Icon::stop);
}

void MGeneral::queue_message(std::string_view text) {
  messages_.post({std::string{text}, "Alert", "OK", ""});
}

Row& MGeneral::total_row(RowList& list) const {
  constexpr std::string_view label = "Total(All Clients)";
  for (Row& row : list) {
    if (row.reads(0, label)) return row;
  }
  Row& row = *list.add();
  row.set_text(0, label);
  return row;
}

bool MGeneral::manage_side(const Row& row, std::size_t column) const {
  return row.reads(column, "Buy(Manage)") || row.reads(column, "Sell(Manage)");
}

}  // namespace tutti
