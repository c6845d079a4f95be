#pragma once

#include <functional>

namespace tutti {

// State of a check box. set_checked is silent; click is the operator's.
class CheckBox {
 public:
  bool checked() const { return checked_; }
  bool enabled() const { return enabled_; }
  void set_checked(bool checked) { checked_ = checked; }
  void set_enabled(bool enabled) { enabled_ = enabled; }

  void click() {
    if (!enabled_) return;
    checked_ = !checked_;
    if (on_click) on_click();
  }
  std::function<void()> on_click;

 private:
  bool checked_ = false;
  bool enabled_ = true;
};

}  // namespace tutti
