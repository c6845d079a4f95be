#pragma once

#include "core/colours.h"

namespace tutti {

// Shell colour helper: the two colours of the main window's labels.
class Culf {
 public:
  void set(Rgb highlighted, Rgb normal) {
    highlighted_ = highlighted;
    normal_ = normal;
  }
  Rgb highlighted() const { return highlighted_; }
  Rgb normal() const { return normal_; }

 private:
  Rgb highlighted_;
  Rgb normal_;
};

}  // namespace tutti
