#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>

#include "core/MGeneral.h"
#include "core/button.h"
#include "core/check_box.h"
#include "core/displayable.h"
#include "core/text_box.h"
#include "limits/limits_file.h"
#include "sessions/admission.h"

namespace tutti {

// The limits that hold orders back: a tick and a number for each. What is not ticked is never judged.
class frmLimits final : public Displayable {
 public:
  // One of them, in the order of limit_fields(). Where there is nothing but on and off the box is not used.
  struct Line {
    CheckBox chkOn;
    TextBox txtValue;
  };

  frmLimits(MGeneral& general, Admission& admission, const LimitsFile& file);

  std::array<Line, set_limits> lines;
  Button cmdSave{"Save"};
  Button cmdCancel{"Cancel"};

  // Shows the limits as they are set.
  void show();

 private:
  void save();
  // What stands in a line; nothing, after a message, when it can't be.
  std::optional<std::optional<double>> read(std::size_t place);

  MGeneral& general_;
  Admission& admission_;
  const LimitsFile& file_;
};

}  // namespace tutti
