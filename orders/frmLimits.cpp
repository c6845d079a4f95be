#include "orders/frmLimits.h"

#include <fmt/format.h>

#include "core/numbers.h"
#include "core/texts.h"

namespace tutti {

frmLimits::frmLimits(MGeneral& general, Admission& admission, const LimitsFile& file)
    : general_(general), admission_(admission), file_(file) {
  for (Line& line : lines)
    line.chkOn.on_click = [&line] { line.txtValue.set_enabled(line.chkOn.checked()); };
  cmdSave.on_click = [this] { save(); };
  cmdCancel.on_click = [this] { Displayed(false); };
}

void frmLimits::show() {
  for (std::size_t place = 0; place < set_limits; ++place) {
    const auto& value = admission_.limits()[static_cast<Limit>(place)];
    lines[place].chkOn.set_checked(value.has_value());
    lines[place].txtValue.set_enabled(value.has_value());
    lines[place].txtValue.set_text(value ? number_text(*value) : "");
  }
  Displayed(true);
}

std::optional<std::optional<double>> frmLimits::read(std::size_t place) {
  const LimitField& field = limit_fields()[place];
  const Line& line = lines[place];
  std::optional<double> out;
  if (!line.chkOn.checked()) return out;
  if (field.on_or_off()) {
    out = field.low;
    return out;
  }
  out = parse_number(line.txtValue.text());
  const bool whole = out && (!field.whole || *out == round_half_even(*out, 0));
  if (out && *out >= field.low && *out <= field.high && whole) return out;
  general_.message_box(fmt::format("{}: must be a {}number from {} to {}", field.name,
                                   field.whole ? "whole " : "", number_text(field.low),
                                   number_text(field.high)));
  return std::nullopt;
}

void frmLimits::save() {
  Limits limits;
  for (std::size_t place = 0; place < set_limits; ++place) {
    const auto value = read(place);
    if (!value) return;
    limits[static_cast<Limit>(place)] = *value;
  }
  if (const auto saved = file_.save(limits); !saved)
    return general_.message_box("The limits are as before, since they can't be saved: " +
                                saved.error().text());
  for (std::size_t place = 0; place < set_limits; ++place) {
    const auto which = static_cast<Limit>(place);
    if (limits[which] == admission_.limits()[which]) continue;
    const auto text = [](const std::optional<double>& value) {
      return value ? number_text(*value) : "never";
    };
    general_.log(fmt::format("Limit changed, {}: {}, was {}", limit_fields()[place].name, text(limits[which]),
                             text(admission_.limits()[which])),
                 no_account);
  }
  admission_.set_limits(limits);
  Displayed(false);
}

}  // namespace tutti
