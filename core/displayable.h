#pragma once

namespace tutti {

// Whether a window is on screen.
class Displayable {
 public:
  bool Displayed() const { return displayed_; }
  void Displayed(bool displayed) { displayed_ = displayed; }

 private:
  bool displayed_ = false;
};

}  // namespace tutti
